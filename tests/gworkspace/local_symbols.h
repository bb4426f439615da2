// Variables of a loaded library that it does not export, by the symbols in its file.
#pragma once

// The variable's address, or null. `library` is the end of the file's path.
const void* find_local_symbol(const char* library, const char* name);
