// Keeps other programs and libraries out of the command's output.
#pragma once

#include <stdio.h>

// Moves standard output and error to descriptors that no child inherits, and puts /dev/null in
// their and standard input's place. The C streams stdout and stderr still work. A daemon or program
// started from here therefore never keeps the caller's pipe open. Called once, before anything is
// started.
void keep_streams_private();

// From now on, other writes to `stdout`, such as the plug-in's log lines, go to standard error:
// standard output is for output_stream() alone.
void keep_output_pure();
// The stream for the results of the command.
FILE* output_stream();
