#pragma once

extern "C" void __assert_rtn(const char* function, const char* file, int line, const char* text)
    __attribute__((noreturn));

#define assert(condition) \
    ((condition) ? (void)0 : __assert_rtn(__func__, __FILE__, __LINE__, #condition))
