// Gives the memory of large levels back to the machine once their popup is over: the allocator
// keeps what lies between things that stay. Main thread.
#pragma once

#include <Foundation/Foundation.h>

// A level with this many items has opened.
void note_opened_items(NSUInteger items);
// After a popup: in a later turn of the run loop, when those who hold its items have let go.
// Nothing happens after small ones.
void give_memory_back_soon();
