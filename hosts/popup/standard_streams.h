// Keeps the command's output its own.
#pragma once

// Moves standard output and error to descriptors that no child inherits and leaves /dev/null in
// their and standard input's place. The C streams stdout and stderr go on as before. A daemon or
// program that is started from here therefore never keeps a caller's pipe open.
// Sent once, before anything is started.
void KeepStreamsPrivate();
