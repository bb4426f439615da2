// Keeps the command's output its own.
#pragma once

#include <stdio.h>

// Moves standard output and error to descriptors that no child inherits and leaves /dev/null in
// their and standard input's place. The C streams stdout and stderr go on as before. A daemon or
// program that is started from here therefore never keeps a caller's pipe open.
// Sent once, before anything is started.
void KeepStreamsPrivate();

// What else is written to `stdout` from now on, such as the lines of the plug-in's log, goes to
// standard error: standard output is for OutputStream() alone.
void KeepOutputPure();
// Where the command writes what it was asked for.
FILE* OutputStream();
