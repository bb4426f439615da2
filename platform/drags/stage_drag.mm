#include "drags/stage_drag.h"

#include <poll.h>

#include <limits>

#include "events/deadline.h"
#include "look/menu_image.h"
#include "x11/pointer_place.h"

namespace {

constexpr int held_at = 16;      // pixels of the picture, from its upper left, under the pointer
constexpr int turn_length = 20;  // milliseconds between two looks at the run loop
// Seconds for a program to fetch what was dropped on it, and then to say that it is done.
constexpr double longest_fetch = 10, longest_end = 0.5;

void give_picture(StageDrag& drag, NSImage* image) {
    const NSSize size = [image size];
    ImageCache cache;
    cairo_surface_t* surface =
        cache.surface(image, static_cast<int>(size.width), static_cast<int>(size.height));
    if (!surface) return;
    cairo_surface_flush(surface);
    drag.width = cairo_image_surface_get_width(surface);
    drag.height = cairo_image_surface_get_height(surface);
    drag.held_at = {held_at, held_at};
    const unsigned char* pixels = cairo_image_surface_get_data(surface);
    const int stride = cairo_image_surface_get_stride(surface);
    for (int y = 0; pixels && y < drag.height; y++) {
        const auto* line = reinterpret_cast<const uint32_t*>(pixels + y * stride);
        drag.pixels.insert(drag.pixels.end(), line, line + drag.width);
    }
}

// How long the drag goes on at most in this state, in seconds; 0 for one that is over.
double longest_in(MenuStage::DragState state) {
    switch (state) {
        case MenuStage::carried:
            return std::numeric_limits<double>::infinity();
        case MenuStage::dropped:
            return longest_fetch;
        case MenuStage::fetched:
            return longest_end;
        default:
            return 0;
    }
}

// Serves the drag until its state is another, or has lasted too long. False when it is over.
bool serve(MenuStage& stage) {
    const MenuStage::DragState state = stage.drag_state();
    Deadline limit;
    limit.start(longest_in(state));
    while (stage.read() && stage.drag_state() == state) {
        if (limit.is_due()) return false;
        pollfd waiting = {stage.descriptor(), POLLIN, 0};
        poll(&waiting, 1, turn_length);
        @autoreleasepool {
            [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode
                                     beforeDate:[NSDate distantPast]];
        }
    }
    return stage.drag_state() != state;
}

}  // namespace

bool drag_on_stage(MenuStage& stage, const std::string& uri_list, NSImage* image,
                   NSDragOperation* result) {
    StageDrag drag = {uri_list};
    give_picture(drag, image);
    if (!stage.begin_drag(drag)) return false;
    end_telling_pointer();
    while (serve(stage)) {
    }
    const MenuStage::DragState end = stage.drag_state();
    const bool has_files = end == MenuStage::fetched || end == MenuStage::taken;
    *result = has_files ? NSDragOperationCopy : NSDragOperationNone;
    return true;
}
