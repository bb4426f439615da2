// What happens when our code gets no memory. Not a Mac interface. Any thread.
#pragma once

#include <stddef.h>

// Keeps some blocks aside, or again those that were used. A `new`, and a call of `calloc`, `malloc`
// or `strdup` in the plug-in, that gets no memory uses a block up and goes on. Without a block a
// `new` does what the program has decided by std::set_new_handler, or throws std::bad_alloc.
// Objective-C++ can pass no exception of C++ on with this run time: the process ends.
void keep_memory_reserve();

// Whether a call of those in C has got no memory, in spite of the blocks, since the last question.
bool memory_was_short();

// As calloc, with the blocks.
void* zeroed_memory(size_t count, size_t size);
