#pragma once

#include <stdarg.h>
#include <stddef.h>

extern "C" {

typedef struct __sFILE FILE;
extern FILE* __stdoutp;
#define stdout __stdoutp

FILE* fopen(const char* path, const char* mode);
int fclose(FILE* file);
size_t fread(void* buffer, size_t size, size_t count, FILE* file);
int fputs(const char* text, FILE* file);
int printf(const char* format, ...) __attribute__((format(printf, 1, 2)));
int vfprintf(FILE* file, const char* format, va_list arguments)
    __attribute__((format(printf, 2, 0)));
}
