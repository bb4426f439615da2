// Arguments and environment that may hold any bytes.
#pragma once

// Foundation reads the arguments and the environment while it loads, before main, and gives up on
// text that is not in its encoding. It therefore sees a question mark for each byte that is not
// ASCII, until this function restores the bytes. main() calls it first.
void restore_arguments();
