// The Objective-C language's own types. BOOL is a signed character on the Macs with Intel
// processors.
#pragma once

typedef signed char BOOL;
#define YES ((BOOL)1)
#define NO ((BOOL)0)
#define nil nullptr
#define Nil nullptr

typedef struct objc_selector* SEL;

#ifdef __OBJC__
typedef id (*IMP)(id, SEL, ...);

extern "C" SEL sel_registerName(const char* name);
#endif
