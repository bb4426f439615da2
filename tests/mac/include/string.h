#pragma once

#include <stddef.h>

extern "C" {

size_t strlen(const char* text);
int strcmp(const char* first, const char* second);
int strncmp(const char* first, const char* second, size_t count);
char* strcat(char* text, const char* end);
char* strdup(const char* text);
void* memcpy(void* to, const void* from, size_t count);
void* memmove(void* to, const void* from, size_t count);
void* memset(void* memory, int value, size_t count);
}
