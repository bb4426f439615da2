// Scrolling a level of 100,000 entries: with the wheel from its top, with End, and with the wheel
// from its end. Each step is one frame, painted before the next step.
#include <AppKit/AppKit.h>
#include <GNUstepGUI/GSDisplayServer.h>
#include <X11/Xlib.h>
#include <host/menu_tracking.h>
#include <objc/runtime.h>
#include <stdio.h>

#include <stdexcept>
#include <string>

#include "bench/harness.h"
#include "bench/test_folder.h"
#include "menus/menu_level_view.h"
#include "menus/menu_run.h"
#include "support/folder_popup.h"

namespace {

constexpr int entries = 100000, steps = 600;
// 60 frames a second.
constexpr double longest_frame = 1000.0 / 60;

int frames = 0;

}  // namespace

@interface MenuLevelView (Counted)
- (void)drawCountedRect:(NSRect)rect;
@end

@implementation MenuLevelView (Counted)

- (void)drawCountedRect:(NSRect)rect {
    frames++;
    [self drawCountedRect:rect];
}

@end

// Scrolls the level of the large folder, in the menu of the folder that contains it.
@interface ScrolledPopup : FolderPopup
@end

@implementation ScrolledPopup

static MenuLevel& deepest_level() { return *MenuRun::current()->levels().back(); }

static void paint(const MenuLevel& level) {
    [level.window() displayIfNeeded];
    [level.window() flushWindow];
    XSync(static_cast<Display*>([GSCurrentServer() serverDevice]), False);
}

// Scrolls by `pixels` and paints, as often as `times` says.
static void scroll(MenuLevel& level, int pixels, int times, bench::Times* result) {
    for (int step = 0; step < times; step++) {
        @autoreleasepool {
            const bench::Moment begin;
            if (!level.scroll_by(pixels)) throw std::runtime_error("nothing to scroll");
            paint(level);
            bench::add_span(result, begin);
        }
    }
}

static void report(const char* what, const bench::Times& times) {
    bench::print_times(what, entries, "scroll, paint", times);
    const double median = bench::median(times.processor) * 1e3;
    bench::note(std::string(what) + ", processor time of a frame", entries, median, "ms",
                longest_frame);
}

- (void)track:(MenuSession*)session {
    open_level(session, open_first_submenu(session));
    show_open_levels();

    MenuLevel& level = deepest_level();
    paint(level);
    const int rows = static_cast<int>(level.layout().rows().size());
    const int notch = 3 * MenuRun::current()->style().look.row_height;
    frames = 0;
    bench::Times down, end, up;
    scroll(level, notch, steps, &down);
    scroll(level, rows * notch, 1, &end);
    scroll(level, -notch, steps, &up);
    printf("a level of %d rows\n", rows);
    report("scrolling down by the wheel", down);
    report("scrolling to the end at once", end);
    report("scrolling up by the wheel", up);
    bench::note("frames painted for each step", entries, double(frames) / (2 * steps + 1), "", 1);
    [session cancel];
}

@end

int main() {
    @autoreleasepool {
        if (!start_with_plug_in(DELVIO_BUNDLE)) return 1;
        const Class view = [MenuLevelView class];
        method_exchangeImplementations(class_getInstanceMethod(view, @selector(drawRect:)),
                                       class_getInstanceMethod(view, @selector(drawCountedRect:)));
        const bench::TestFolder folder(entries);
        ScrolledPopup* popup = [[[ScrolledPopup alloc] initWithFolder:folder.holder()] autorelease];
        [popup run];
    }
    return bench::status();
}
