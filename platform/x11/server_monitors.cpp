#include "x11/server_monitors.h"

#include <X11/Xlib.h>
#include <X11/extensions/Xrandr.h>
#include <string.h>

#include "x11/question_connection.h"

namespace {

std::string name_of(Display* display, Atom atom) {
    char* const name = XGetAtomName(display, atom);
    const std::string text = name ? name : "";
    if (name) XFree(name);
    return text;
}

// Older versions of Xwayland tell of themselves only in the names of their outputs.
bool is_named_after_xwayland(Display* display) {
    constexpr const char* beginning = "XWAYLAND";
    XRRScreenResources* resources =
        XRRGetScreenResourcesCurrent(display, DefaultRootWindow(display));
    if (!resources) return false;
    bool named = false;
    for (int i = 0; i < resources->noutput && !named; i++) {
        XRROutputInfo* output = XRRGetOutputInfo(display, resources, resources->outputs[i]);
        named = output && strncmp(output->name, beginning, strlen(beginning)) == 0;
        if (output) XRRFreeOutputInfo(output);
    }
    XRRFreeScreenResources(resources);
    return named;
}

}  // namespace

std::vector<Monitor> server_monitors() {
    std::vector<Monitor> monitors;
    Display* display = question_connection();
    if (!display) return monitors;
    int count = 0;
    XRRMonitorInfo* infos = XRRGetMonitors(display, DefaultRootWindow(display), True, &count);
    for (int i = 0; i < count; i++) {
        const XRRMonitorInfo& info = infos[i];
        if (info.width <= 0 || info.height <= 0) continue;
        monitors.push_back(
            {name_of(display, info.name), {info.x, info.y, info.width, info.height}});
    }
    if (infos) XRRFreeMonitors(infos);
    return monitors;
}

bool server_is_xwayland() {
    Display* display = question_connection();
    if (!display) return false;
    int opcode, event, error;
    return XQueryExtension(display, "XWAYLAND", &opcode, &event, &error) ||
           is_named_after_xwayland(display);
}
