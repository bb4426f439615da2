// Memory Manager: blocks that handles refer to. Any thread, one at a time for each block.
#pragma once

#include <Carbon/MacTypes.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef char* Ptr;
typedef Ptr* Handle;

// Zero-filled; null when there is no memory. Blocks never move here.
Handle NewHandleClear(Size size);
// 0 for null.
Size GetHandleSize(Handle handle);
// Null is ignored.
void DisposeHandle(Handle handle);

#ifdef __cplusplus
}
#endif
