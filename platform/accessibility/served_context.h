// A GLib context that the main thread's run loop serves, in every mode: answers and questions of a
// bus are dealt with on the main thread, also while a menu is open. It wakes the run loop only when
// there is something to do. Main thread.
#pragma once

#include <glib.h>

// The one context of this process, made at the first call. It suits sources that other threads
// attach, as GIO does: it watches no descriptors of sources and no time-outs.
GMainContext* served_context();

// While it lives, GIO's calls of this thread answer in this context.
class ContextScope {
  public:
    explicit ContextScope(GMainContext* context) : context_(context) {
        g_main_context_push_thread_default(context_);
    }
    ~ContextScope() { g_main_context_pop_thread_default(context_); }
    ContextScope(const ContextScope&) = delete;
    ContextScope& operator=(const ContextScope&) = delete;

  private:
    GMainContext* context_;
};
