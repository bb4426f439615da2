#include "bench/display_main.h"

#include <X11/Xlib.h>
#include <errno.h>
#include <stdio.h>

#include <exception>
#include <memory>

#include "bench/harness.h"

int bench::run_on_display(const std::function<void(Display*)>& measure) {
    const std::unique_ptr<Display, int (*)(Display*)> display(XOpenDisplay(nullptr), XCloseDisplay);
    if (!display) {
        fprintf(stderr, "%s: there is no X server\n", program_invocation_short_name);
        return 1;
    }
    try {
        measure(display.get());
        return status();
    } catch (const std::exception& problem) {
        fprintf(stderr, "%s: %s\n", program_invocation_short_name, problem.what());
        return 1;
    }
}
