#pragma once

#include <sys/types.h>

extern "C" int usleep(useconds_t microseconds);
