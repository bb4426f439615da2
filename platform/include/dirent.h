// Folders: scandir as the Mac's C library has it, with the same order. It is quicker where names
// are sorted as people sort them, and it keeps what it saw, for the questions that follow at once.
// Main thread.
#pragma once

#include_next <dirent.h>

extern "C" int scandir(const char* path, struct dirent*** list, int (*filter)(const struct dirent*),
                       int (*compare)(const struct dirent**,
                                      const struct dirent**)) __asm__("ScanFolder");
