// Counts how often compiled code makes the run time look up a class by its name. The definition is
// in a file without such code: the linker leads only calls between files elsewhere.
#pragma once

#include <objc/runtime.h>

extern int class_lookups;

// What the compiler's call becomes.
extern "C" Class __wrap_objc_lookup_class(const char* name);
