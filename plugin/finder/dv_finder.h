// What the plug-in asks about its host, and the clock that its timing decisions share.
#pragma once

// Whether this process is the Finder: its signature is 'MACS'. Main thread.
bool dv_is_finder();

// Whether this process is the Finder and is in front. Main thread.
bool dv_finder_is_front();

// The time of day in seconds. Any thread.
double dv_double_time();
