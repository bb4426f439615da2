// delvio undo.
#pragma once

// Undoes the last operation of the engine. Returns the exit status; prints what prevents the undo
// on standard error, one line each.
int run_undo_command();
