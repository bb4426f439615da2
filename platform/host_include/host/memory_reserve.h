// What happens when `new` gets no memory. Not a Mac interface.
#pragma once

// Keeps a block aside, or again one after it was used. A `new` that gets no memory uses the block
// up, and goes on. Without the block it does what the program has decided by std::set_new_handler,
// or throws std::bad_alloc. Objective-C++ can pass no exception of C++ on with this run time: the
// process ends.
void keep_memory_reserve();
