// The debug log: one printf-style function, and the level that says where its lines go.
//
// Every call site tests the level first, so that with logging off no argument is computed:
//     if (dvEnableDebugOutput) dvdprintf("Delvio: Created menu %p\n", menu);
// No lock: lines of several threads rely on the stream's own locking.
#pragma once

#include <stdint.h>
#include <stdio.h>

// 0 no logging, 1 standard output, 2 "Library/Logs/Delvio.log" under $HOME (appended to). Set from
// the preference "logLevel"; takes effect at the next dvdprintf. Lowered to 1 when the file cannot
// be opened.
extern int32_t dvEnableDebugOutput;

// The current sink: null, standard output, or the log file.
extern FILE* dvLogFile;

// Sets the sink for the current level, then writes the message as it is: no prefix, no newline.
// Returns the number of characters written; 0 when the message was dropped.
int dvdprintf(const char* format, ...) __attribute__((format(printf, 1, 2)));
