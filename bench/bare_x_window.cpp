// The smallest Xlib program that shows something: one window. bare_x_window [HEIGHT]
#include <X11/Xlib.h>
#include <stdlib.h>

int main(int count, char** arguments) {
    const unsigned width = 200;
    const unsigned height = count > 1 ? strtoul(arguments[1], nullptr, 10) : width;
    Display* display = XOpenDisplay(nullptr);
    if (!display) return 1;
    XSetWindowAttributes attributes = {};
    attributes.override_redirect = True;
    attributes.background_pixel = WhitePixel(display, DefaultScreen(display));
    const Window window = XCreateWindow(display, DefaultRootWindow(display), 100, 100, width,
                                        height, 0, CopyFromParent, InputOutput, CopyFromParent,
                                        CWOverrideRedirect | CWBackPixel, &attributes);
    XMapWindow(display, window);
    for (XEvent event;;) XNextEvent(display, &event);
}
