// The smallest Xlib program that shows something: one window.
#include <X11/Xlib.h>

int main() {
    Display* display = XOpenDisplay(nullptr);
    if (!display) return 1;
    XSetWindowAttributes attributes = {};
    attributes.override_redirect = True;
    attributes.background_pixel = WhitePixel(display, DefaultScreen(display));
    const Window window =
        XCreateWindow(display, DefaultRootWindow(display), 100, 100, 200, 200, 0, CopyFromParent,
                      InputOutput, CopyFromParent, CWOverrideRedirect | CWBackPixel, &attributes);
    XMapWindow(display, window);
    for (XEvent event;;) XNextEvent(display, &event);
}
