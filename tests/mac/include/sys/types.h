// The C library's types, as far as the plug-in's headers use them.
#pragma once

#include <stddef.h>
#include <stdint.h>

typedef int64_t off_t;
typedef uint16_t mode_t;
typedef uint32_t useconds_t;
typedef long time_t;
typedef int suseconds_t;
typedef long ssize_t;
