// The resident host's log: one short line for each thing that happens to it. Main thread.
#pragma once

#include <string>

#include "file_steps/descriptor.h"

// From now on the log is this file; what libraries write to standard error between two calls goes
// there too. Null for a log that cannot be opened: all of it is dropped then.
void begin_host_log(operations::Descriptor file);

// Writes a line with the time. Without a log it does nothing. The log starts anew when it is long.
void log_line(const std::string& text);
// The log's descriptor, -1 for none.
int host_log_file();
