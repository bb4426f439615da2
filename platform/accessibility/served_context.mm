#include "accessibility/served_context.h"

#include "corefoundation/descriptor_watch.h"

namespace {

// The descriptor by which other threads tell that they have attached a source.
int wake_descriptor(GMainContext* context) {
    GPollFD polled = {-1, 0, 0};
    int priority, milliseconds;
    g_main_context_acquire(context);
    g_main_context_prepare(context, &priority);
    g_main_context_query(context, G_MAXINT, &milliseconds, &polled, 1);
    g_main_context_release(context);
    return polled.fd;
}

void serve(GMainContext* context) {
    const ContextScope scope(context);
    while (g_main_context_iteration(context, FALSE)) {
    }
}

GMainContext* make_context() {
    // Else a context wakes nobody but the thread that polls in it.
    GMainContext* context = g_main_context_new_with_flags(G_MAIN_CONTEXT_FLAGS_OWNERLESS_POLLING);
    new DescriptorWatch(wake_descriptor(context), [context] { serve(context); });
    return context;
}

}  // namespace

GMainContext* served_context() {
    static GMainContext* const context = make_context();
    return context;
}
