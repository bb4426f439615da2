#include <dispatch/dispatch.h>

#include "dispatch/work.h"

struct dispatch_queue_s {
    void (*run)(void* context, dispatch_function_t work);
};

static dispatch_queue_s global_queue = {run_on_worker};
static dispatch_queue_s main_queue = {run_on_main_thread};

dispatch_queue_t dispatch_get_global_queue(long priority, unsigned long flags) {
    if (flags) return nullptr;
    switch (priority) {
        case DISPATCH_QUEUE_PRIORITY_HIGH:
        case DISPATCH_QUEUE_PRIORITY_DEFAULT:
        case DISPATCH_QUEUE_PRIORITY_LOW:
        case DISPATCH_QUEUE_PRIORITY_BACKGROUND:
            return &global_queue;
        default:
            return nullptr;
    }
}

dispatch_queue_t dispatch_get_main_queue(void) { return &main_queue; }

void dispatch_async_f(dispatch_queue_t queue, void* context, dispatch_function_t work) {
    if (queue && work) queue->run(context, work);
}
