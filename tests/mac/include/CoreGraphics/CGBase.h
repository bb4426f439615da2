#pragma once

#include <stddef.h>
#include <stdint.h>

// The Mac's C headers of the time know no "bool" but C's own.
#include <stdbool.h>

#if __LP64__
typedef double CGFloat;
typedef unsigned int boolean_t;
#else
typedef float CGFloat;
typedef int boolean_t;
#endif
