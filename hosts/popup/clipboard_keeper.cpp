#include "popup/clipboard.h"

#include <host/session_clipboard.h>

#include <X11/Xatom.h>
#include <X11/Xlib.h>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <vector>

namespace {

std::string read_all(int in) {
    std::string text;
    char block[4096];
    ssize_t count;
    while ((count = read(in, block, sizeof block)) > 0)
        text.append(block, static_cast<size_t>(count));
    return text;
}

const char* const text_type_names[] = {"UTF8_STRING", "text/plain;charset=utf-8", "text/plain",
                                       "STRING", "TEXT"};

struct Keeper {
    Display* display;
    Window window;
    std::string text;
    Time owned_since = CurrentTime;

    Atom atom(const char* name) const { return XInternAtom(display, name, False); }

    std::vector<Atom> text_types() const {
        std::vector<Atom> types;
        for (const char* name : text_type_names) types.push_back(atom(name));
        return types;
    }
};

// The server's time, which comes with the event about a changed property.
Time server_time(const Keeper& keeper) {
    XSelectInput(keeper.display, keeper.window, PropertyChangeMask);
    XChangeProperty(keeper.display, keeper.window, XA_WM_NAME, XA_STRING, 8, PropModeReplace,
                    nullptr, 0);
    XEvent event;
    XWindowEvent(keeper.display, keeper.window, PropertyChangeMask, &event);
    XSelectInput(keeper.display, keeper.window, NoEventMask);
    return event.xproperty.time;
}

bool own(Keeper& keeper) {
    const Atom clipboard = keeper.atom("CLIPBOARD");
    keeper.owned_since = server_time(keeper);
    XSetSelectionOwner(keeper.display, clipboard, keeper.window, keeper.owned_since);
    return XGetSelectionOwner(keeper.display, clipboard) == keeper.window;
}

void set_longs(const Keeper& keeper, const XSelectionRequestEvent& request, Atom property,
               Atom type, const std::vector<unsigned long>& values) {
    XChangeProperty(keeper.display, request.requestor, property, type, 32, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(values.data()),
                    static_cast<int>(values.size()));
}

bool set_property(const Keeper& keeper, const XSelectionRequestEvent& request, Atom property) {
    std::vector<Atom> types = keeper.text_types();
    if (request.target == keeper.atom("TARGETS")) {
        types.push_back(request.target);
        types.push_back(keeper.atom("TIMESTAMP"));
        set_longs(keeper, request, property, XA_ATOM, types);
        return true;
    }
    if (request.target == keeper.atom("TIMESTAMP")) {
        set_longs(keeper, request, property, XA_INTEGER, {keeper.owned_since});
        return true;
    }
    if (std::find(types.begin(), types.end(), request.target) == types.end()) return false;
    const bool any = request.target == keeper.atom("TEXT");
    XChangeProperty(keeper.display, request.requestor, property,
                    any ? keeper.atom("UTF8_STRING") : request.target, 8, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(keeper.text.data()),
                    static_cast<int>(keeper.text.size()));
    return true;
}

void answer(const Keeper& keeper, const XSelectionRequestEvent& request) {
    const Atom property = request.property == None ? request.target : request.property;
    XEvent reply = {};
    reply.xselection.type = SelectionNotify;
    reply.xselection.requestor = request.requestor;
    reply.xselection.selection = request.selection;
    reply.xselection.target = request.target;
    reply.xselection.time = request.time;
    reply.xselection.property = set_property(keeper, request, property) ? property : None;
    XSendEvent(keeper.display, request.requestor, False, NoEventMask, &reply);
}

// A requestor that has gone away must not end the keeper.
int ignore_error(Display*, XErrorEvent*) { return 0; }

void serve(const Keeper& keeper) {
    for (;;) {
        XEvent event;
        XNextEvent(keeper.display, &event);
        if (event.type == SelectionClear) return;
        if (event.type == SelectionRequest) answer(keeper, event.xselectionrequest);
    }
}

void leave_pipe(int descriptor) {
    const int nothing = open("/dev/null", O_RDWR);
    dup2(nothing, descriptor);
    close(nothing);
}

bool say_owned() {
    const bool said = write(STDOUT_FILENO, "", 1) == 1;
    leave_pipe(STDIN_FILENO);
    leave_pipe(STDOUT_FILENO);
    return said;
}

}  // namespace

int run_clipboard_keeper() {
    const std::string text = read_all(STDIN_FILENO);
    if (keep_on_session_clipboard(text, [] { say_owned(); })) return 0;
    Display* display = XOpenDisplay(nullptr);
    if (!display) return 1;
    XSetErrorHandler(ignore_error);
    const Window window =
        XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, 1, 1, 0, 0, 0);
    Keeper keeper{display, window, text};
    if (!own(keeper)) return 1;
    if (!say_owned()) return 1;
    serve(keeper);
    XCloseDisplay(display);
    return 0;
}
