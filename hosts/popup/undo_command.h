// delvio undo.
#pragma once

// Undoes the last operation of the engine. Returns the exit status; what stands in the way is
// written to standard error, a line each.
int RunUndoCommand();
