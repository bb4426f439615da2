// Preloaded into GWorkspace: keeps the type that each window has at the moment it first appears. A
// window manager may look at it then and never again.
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <dlfcn.h>

#include <map>
#include <string>

namespace {

// The program may have no X library, so the functions are looked up where they are called.
template <typename Function>
Function* next(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

std::map<Window, std::string>& types() {
    static std::map<Window, std::string> types;
    return types;
}

std::string type_of(Display* display, Window window) {
    const Atom property =
        next<decltype(XInternAtom)>("XInternAtom")(display, "_NET_WM_WINDOW_TYPE", False);
    Atom type = None;
    int format = 0;
    unsigned long count = 0, left = 0;
    unsigned char* data = nullptr;
    next<decltype(XGetWindowProperty)>("XGetWindowProperty")(
        display, window, property, 0, 1, False, XA_ATOM, &type, &format, &count, &left, &data);
    std::string text;
    if (data && count == 1) {
        char* name =
            next<decltype(XGetAtomName)>("XGetAtomName")(display, *reinterpret_cast<Atom*>(data));
        text = name;
        next<decltype(XFree)>("XFree")(name);
    }
    if (data) next<decltype(XFree)>("XFree")(data);
    return text;
}

}  // namespace

extern "C" {

int XMapWindow(Display* display, Window window) {
    if (!types().count(window)) types()[window] = type_of(display, window);
    return next<decltype(XMapWindow)>("XMapWindow")(display, window);
}

const char* type_when_shown(unsigned long window) { return types()[window].c_str(); }
}
