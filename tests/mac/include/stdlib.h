#pragma once

#include <stddef.h>

extern "C" {

void* malloc(size_t size);
void* calloc(size_t count, size_t size);
void free(void* memory);
char* getenv(const char* name);
}
