// The resident host: a program that stays, so that menus show at once. Main thread.
#pragma once

#include <string>

// Serves the socket that the program was started with until the host has been idle for ten minutes,
// its program or display has changed, or a signal arrives. `name` is the host's name at the meeting
// place of host and clients. Returns the exit status.
int run_resident_host(const std::string& name, char* program);
