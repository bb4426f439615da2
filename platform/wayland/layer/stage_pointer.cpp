#include "wayland/layer/stage_pointer.h"

#include <linux/input-event-codes.h>

#include <algorithm>

namespace {

StagePointer& of(void* data) { return *static_cast<StagePointer*>(data); }

int x_button(uint32_t code) {
    switch (code) {
        case BTN_LEFT:
            return 1;
        case BTN_RIGHT:
            return 3;
        default:
            return 2;
    }
}

// The wheel beside the menu turns nothing.
void ignore_axis(void*, wl_pointer*, uint32_t, uint32_t, wl_fixed_t) {}
void ignore_frame(void*, wl_pointer*) {}
void ignore_source(void*, wl_pointer*, uint32_t) {}
void ignore_stop(void*, wl_pointer*, uint32_t, uint32_t) {}
void ignore_steps(void*, wl_pointer*, uint32_t, int32_t) {}

}  // namespace

void StagePointer::listen(wl_seat* seat) {
    if (pointer_) return;
    static const wl_pointer_listener listener = {
        enter,        leave,         motion,      button,       ignore_axis,
        ignore_frame, ignore_source, ignore_stop, ignore_steps, ignore_steps};
    pointer_ = wl_seat_get_pointer(seat);
    wl_pointer_add_listener(pointer_, &listener, this);
}

StagePointer::~StagePointer() {
    if (pointer_) wl_pointer_destroy(pointer_);
}

void StagePointer::enter(void* data, wl_pointer* pointer, uint32_t serial, wl_surface* surface,
                         wl_fixed_t x, wl_fixed_t y) {
    StagePointer& self = of(data);
    self.output_ = self.surfaces_.output_of(surface);
    if (!self.output_) return;
    self.move_to(wl_fixed_to_double(x), wl_fixed_to_double(y));
    self.cursor_.show(pointer, serial, self.output_->scale);
}

// The menu's own windows have it now, or another program's.
void StagePointer::leave(void* data, wl_pointer*, uint32_t, wl_surface*) {
    of(data).output_ = nullptr;
    of(data).buttons_ = 0;
}

void StagePointer::motion(void* data, wl_pointer*, uint32_t, wl_fixed_t x, wl_fixed_t y) {
    if (of(data).output_) of(data).move_to(wl_fixed_to_double(x), wl_fixed_to_double(y));
}

void StagePointer::button(void* data, wl_pointer*, uint32_t, uint32_t, uint32_t code,
                          uint32_t state) {
    StagePointer& self = of(data);
    if (!self.place_) return;
    const bool down = state == WL_POINTER_BUTTON_STATE_PRESSED;
    self.buttons_ = std::max(0, self.buttons_ + (down ? 1 : -1));
    StageEvent event = {down ? StageEvent::button_down : StageEvent::button_up};
    event.at = *self.place_;
    event.button = x_button(code);
    self.events_.push_back(event);
}

void StagePointer::outputs_are_placed() {
    if (!output_) return;
    place_ = place_in(output_->place, across_, down_);
    for (StageEvent& event : events_) event.at = *place_;
}

void StagePointer::move_to(double x, double y) {
    across_ = x / std::max(1, output_->width);
    down_ = y / std::max(1, output_->height);
    place_ = place_in(output_->place, across_, down_);
    StageEvent event = {StageEvent::pointer_moved};
    event.at = *place_;
    events_.push_back(event);
}
