// Where the queues send their work.
#pragma once

#include <dispatch/dispatch.h>

void run_on_worker(void* context, dispatch_function_t work);
void run_on_main_thread(void* context, dispatch_function_t work);
