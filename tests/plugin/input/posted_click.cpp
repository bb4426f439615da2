#include "plugin/input/posted_click.h"

#include <CoreGraphics/CGRemoteOperation.h>
#include <dlfcn.h>
#include <stdarg.h>
#include <stdio.h>

#include <mutex>

namespace {

std::mutex access_to_calls;
std::string calls;

void note(const char* format, ...) {
    char text[100];
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    const std::lock_guard<std::mutex> lock(access_to_calls);
    calls.append(calls.empty() ? "" : ", ").append(text);
}

template <typename Function>
Function* platforms(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

std::string test::take_posting_calls() {
    const std::lock_guard<std::mutex> lock(access_to_calls);
    std::string taken;
    taken.swap(calls);
    return taken;
}

extern "C" {

CGError CGPostMouseEvent(CGPoint at, boolean_t update, CGButtonCount count, boolean_t left, ...) {
    va_list more;
    va_start(more, left);
    const boolean_t right = count > 1 ? va_arg(more, boolean_t) : false;
    va_end(more);
    note("post %g %g %d %d %d %d", at.x, at.y, static_cast<int>(update), static_cast<int>(count),
         static_cast<int>(left), static_cast<int>(right));
    static auto* next = platforms<decltype(CGPostMouseEvent)>("CGPostMouseEvent");
    return next(at, update, count, left, right);
}

CGError CGSetLocalEventsSuppressionInterval(double seconds) {
    note("interval %g", seconds);
    return kCGErrorSuccess;
}

CGError CGSetLocalEventsFilterDuringSuppressionState(CGEventFilterMask filter,
                                                     CGEventSuppressionState state) {
    note("filter %u %u", static_cast<unsigned>(filter), static_cast<unsigned>(state));
    return kCGErrorSuccess;
}

CGError CGEnableEventStateCombining(boolean_t combine) {
    note("combining %d", static_cast<int>(combine));
    return kCGErrorSuccess;
}

}  // extern "C"
