#include "bench/driven_menu.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <unistd.h>

#include <algorithm>
#include <functional>
#include <stdexcept>

namespace bench {

namespace {

const double patience = 120;
// A level's first row lies within this part of its window.
const int inset = 12, part_width = 60, part_height = 24;
const int smallest_level = 40;
const double rest = 0.3;

void wait_for(const std::function<bool()>& happened, const char* what) {
    for (const double end = now() + patience; !happened(); usleep(200)) {
        if (now() > end) throw std::runtime_error(std::string("there is no ") + what);
    }
}

// A window may go while it is asked about.
int ignore_error(Display*, XErrorEvent*) { return 0; }

}  // namespace

DrivenMenu::DrivenMenu(_XDisplay* screen, _XDisplay* session,
                       const std::vector<std::string>& command)
    : screen_(screen), session_(session), program_(command) {
    XSetErrorHandler(ignore_error);
    XSelectInput(session_, DefaultRootWindow(session_), SubstructureNotifyMask);
    XSync(session_, True);
}

DrivenMenu::~DrivenMenu() {
    program_.end();
    const double end = now() + patience;
    do {
        take_events();
        usleep(1000);
    } while (!windows_.empty() && now() < end);
}

// Windows that are mapped, and among them the levels: no window manager manages menus.
void DrivenMenu::take_events() {
    while (XPending(session_)) {
        XEvent event;
        XNextEvent(session_, &event);
        if (event.type == MapNotify) {
            XWindowAttributes window = {};
            if (!XGetWindowAttributes(session_, event.xmap.window, &window)) continue;
            if (window.width < smallest_level || window.height < part_height) continue;
            windows_.push_back(event.xmap.window);
            if (window.override_redirect) levels_.push_back(event.xmap.window);
        } else if (event.type == UnmapNotify || event.type == DestroyNotify) {
            const Window gone =
                event.type == UnmapNotify ? event.xunmap.window : event.xdestroywindow.window;
            std::erase(windows_, gone);
            std::erase(levels_, gone);
        }
    }
}

// Whether a row stands there: one colour alone is the window's background, or what lies behind it.
bool DrivenMenu::is_painted(unsigned long window) const {
    XWindowAttributes place = {};
    if (!XGetWindowAttributes(session_, window, &place)) return false;
    // A shadow may lie beyond the screen's edge.
    XImage* image =
        XGetImage(screen_, DefaultRootWindow(screen_), std::max(place.x, 0) + inset,
                  std::max(place.y, 0) + inset, part_width, part_height, AllPlanes, ZPixmap);
    if (!image) return false;
    const unsigned long first = XGetPixel(image, 0, 0);
    bool painted = false;
    for (int pixel = 0; pixel < part_width * part_height && !painted; pixel++) {
        painted = XGetPixel(image, pixel % part_width, pixel / part_width) != first;
    }
    XDestroyImage(image);
    return painted;
}

void DrivenMenu::wait_for_paint(unsigned long level) {
    wait_for([&] { return is_painted(level); }, "row in a level");
}

void DrivenMenu::wait_for_window() {
    wait_for(
        [&] {
            take_events();
            return !windows_.empty();
        },
        "window");
    program_.wait_for_rest();
}

void DrivenMenu::wait_for_levels(size_t count) {
    wait_for(
        [&] {
            take_events();
            return levels_.size() == count;
        },
        "level");
    if (count) wait_for_paint(levels_.back());
    program_.wait_for_rest(rest);
    take_events();
    if (levels_.size() != count) throw std::runtime_error("the levels do not stay as they are");
}

void DrivenMenu::click(int x, int y) {
    XTestFakeMotionEvent(screen_, -1, x, y, CurrentTime);
    XTestFakeButtonEvent(screen_, 1, True, CurrentTime);
    XTestFakeButtonEvent(screen_, 1, False, CurrentTime);
    // Away from the menu, so that no row lies under the pointer.
    XTestFakeMotionEvent(screen_, -1, DisplayWidth(screen_, 0) - 2, DisplayHeight(screen_, 0) - 2,
                         CurrentTime);
    XSync(screen_, False);
}

void DrivenMenu::press(const std::vector<std::string>& keys) {
    for (const std::string& key : keys) {
        const unsigned code = XKeysymToKeycode(screen_, XStringToKeysym(key.c_str()));
        XTestFakeKeyEvent(screen_, code, True, CurrentTime);
        XTestFakeKeyEvent(screen_, code, False, CurrentTime);
    }
    XSync(screen_, False);
}

void DrivenMenu::time_level(const std::vector<std::string>& keys, Times* times,
                            std::vector<double>* until_rest) {
    const size_t before = levels_.size();
    const double processor = program_.usage().processor, begin = now();
    press(keys);
    wait_for(
        [&] {
            take_events();
            return levels_.size() > before;
        },
        "further level");
    wait_for_paint(levels_.back());
    const double end = now();
    times->processor.push_back(program_.usage().processor - processor);
    times->wall.push_back(end - begin);
    wait_for_levels(before + 1);
    if (until_rest) until_rest->push_back(program_.usage().processor - processor);
}

}  // namespace bench
