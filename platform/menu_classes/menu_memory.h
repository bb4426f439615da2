// Gives the memory of large levels back to the machine once their popup is over: the allocator
// keeps free memory that lies between blocks in use. Main thread.
#pragma once

#include <Foundation/Foundation.h>

// Notes that a level with this many items has opened.
void note_opened_items(NSUInteger items);
// Called after a popup. Acts in a later turn of the run loop, when the popup's items have been
// released. Does nothing after small popups.
void give_memory_back_soon();
