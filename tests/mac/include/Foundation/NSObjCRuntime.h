#pragma once

#include <objc/objc.h>

#if __LP64__
typedef long NSInteger;
typedef unsigned long NSUInteger;
#define NSIntegerMax __LONG_MAX__
#define NSUIntegerMax (__LONG_MAX__ * 2UL + 1UL)
#else
typedef int NSInteger;
typedef unsigned int NSUInteger;
#define NSIntegerMax __INT_MAX__
#define NSUIntegerMax (__INT_MAX__ * 2U + 1U)
#endif

typedef double NSTimeInterval;
