// Work for other threads, and for the main one. Any thread.
//
// Work is always a function: the compiler for GNU's run time has no blocks.
#pragma once

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct dispatch_queue_s* dispatch_queue_t;
typedef void (*dispatch_function_t)(void* context);

#define DISPATCH_QUEUE_PRIORITY_HIGH 2
#define DISPATCH_QUEUE_PRIORITY_DEFAULT 0
#define DISPATCH_QUEUE_PRIORITY_LOW (-2)
#define DISPATCH_QUEUE_PRIORITY_BACKGROUND INT16_MIN

// Queues live for ever. A global queue starts its work in the order in which it was given, and runs
// it at the same time on the threads of a pool, each piece with an autorelease pool of its own. All
// priorities are the same here. Null for an unknown priority, or for flags that are not 0.
dispatch_queue_t dispatch_get_global_queue(long priority, unsigned long flags);
// The main queue runs its work on the main thread, one piece after the other, from the run loop in
// its common modes. That includes the time while menus track, once their mode is a common one.
dispatch_queue_t dispatch_get_main_queue(void);

// Returns at once; `work` is called with `context` later, never from within this call.
void dispatch_async_f(dispatch_queue_t queue, void* context, dispatch_function_t work);

#ifdef __cplusplus
}
#endif
