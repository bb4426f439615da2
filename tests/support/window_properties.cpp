#include "support/window_properties.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>

namespace test {

std::vector<long> numbers_of(Display* display, Window window, const char* property) {
    Atom type = None;
    int format = 0;
    unsigned long count = 0, left = 0;
    unsigned char* data = nullptr;
    XGetWindowProperty(display, window, XInternAtom(display, property, False), 0, 1024, False,
                       AnyPropertyType, &type, &format, &count, &left, &data);
    std::vector<long> numbers;
    if (data && format == 32) {
        const long* first = reinterpret_cast<const long*>(data);
        numbers.assign(first, first + count);
    }
    if (data) XFree(data);
    return numbers;
}

std::string title_of(Display* display, Window window) {
    XTextProperty text = {};
    if (!XGetTextProperty(display, window, &text, XInternAtom(display, "_NET_WM_NAME", False))) {
        return "";
    }
    const std::string title(reinterpret_cast<char*>(text.value), text.nitems);
    XFree(text.value);
    return title;
}

}  // namespace test
