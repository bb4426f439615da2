#include "wayland/layer/stage_pointer.h"

#include <linux/input-event-codes.h>

#include <algorithm>

namespace {

constexpr double length_of_step = 15;  // of a wheel, in the compositor's units
constexpr int left_button = 1;

StagePointer& of(void* data) { return *static_cast<StagePointer*>(data); }

int x_button(uint32_t code) {
    switch (code) {
        case BTN_LEFT:
            return left_button;
        case BTN_RIGHT:
            return 3;
        default:
            return 2;
    }
}

// As XQueryPointer tells it.
unsigned mask_of(int button) { return 1u << (7 + button); }

int first_of(unsigned buttons) {
    for (int button = 1; button <= 3; button++) {
        if (buttons & mask_of(button)) return button;
    }
    return 0;
}

void ignore_source(void*, wl_pointer*, uint32_t) {}
void ignore_stop(void*, wl_pointer*, uint32_t, uint32_t) {}
void ignore_parts(void*, wl_pointer*, uint32_t, int32_t) {}
void ignore_touch_frame(void*, wl_touch*) {}
void ignore_shape(void*, wl_touch*, int32_t, wl_fixed_t, wl_fixed_t) {}
void ignore_orientation(void*, wl_touch*, int32_t, wl_fixed_t) {}

}  // namespace

void StagePointer::listen(wl_seat* seat) {
    if (pointer_) return;
    static const wl_pointer_listener listener = {
        enter, leave,         motion,      button,     axis,
        frame, ignore_source, ignore_stop, axis_steps, ignore_parts};
    pointer_ = wl_seat_get_pointer(seat);
    wl_pointer_add_listener(pointer_, &listener, this);
}

void StagePointer::listen_to_touches(wl_seat* seat) {
    if (touch_) return;
    static const wl_touch_listener listener = {touch_down,         touch_up,     touch_motion,
                                               ignore_touch_frame, touch_cancel, ignore_shape,
                                               ignore_orientation};
    touch_ = wl_seat_get_touch(seat);
    wl_touch_add_listener(touch_, &listener, this);
}

StagePointer::~StagePointer() {
    if (pointer_) wl_pointer_destroy(pointer_);
    if (touch_) wl_touch_destroy(touch_);
}

StagePress StagePointer::press() const {
    if (!output_ || !buttons_) return {};
    return {output_->surface, serial_};
}

void StagePointer::enter(void* data, wl_pointer* pointer, uint32_t serial, wl_surface* surface,
                         wl_fixed_t x, wl_fixed_t y) {
    StagePointer& self = of(data);
    self.output_ = self.surfaces_.output_of(surface);
    if (!self.output_) return;
    self.move_to(wl_fixed_to_double(x), wl_fixed_to_double(y));
    self.cursor_.show(pointer, serial, self.output_->scale);
}

// A window of another program has it now, or a drag.
void StagePointer::leave(void* data, wl_pointer*, uint32_t, wl_surface*) {
    of(data).output_ = nullptr;
    of(data).buttons_ = 0;
}

void StagePointer::motion(void* data, wl_pointer*, uint32_t, wl_fixed_t x, wl_fixed_t y) {
    if (of(data).output_) of(data).move_to(wl_fixed_to_double(x), wl_fixed_to_double(y));
}

void StagePointer::button(void* data, wl_pointer*, uint32_t serial, uint32_t, uint32_t code,
                          uint32_t state) {
    of(data).change_button(x_button(code), state == WL_POINTER_BUTTON_STATE_PRESSED, serial);
}

void StagePointer::change_button(int button, bool down, uint32_t serial) {
    if (!place_) return;
    if (down) serial_ = serial;
    buttons_ = down ? buttons_ | mask_of(button) : buttons_ & ~mask_of(button);
    StageEvent event = {down ? StageEvent::button_down : StageEvent::button_up};
    event.at = *place_;
    event.button = button;
    events_.push_back(event);
}

void StagePointer::axis(void* data, wl_pointer*, uint32_t, uint32_t axis, wl_fixed_t value) {
    if (axis == WL_POINTER_AXIS_VERTICAL_SCROLL) of(data).turned_ += wl_fixed_to_double(value);
}

void StagePointer::axis_steps(void* data, wl_pointer*, uint32_t axis, int32_t steps) {
    if (axis == WL_POINTER_AXIS_VERTICAL_SCROLL)
        of(data).steps_ = of(data).steps_.value_or(0) + steps;
}

void StagePointer::frame(void* data, wl_pointer*) {
    StagePointer& self = of(data);
    const double down = self.steps_ ? *self.steps_ : self.turned_ / length_of_step;
    self.steps_.reset();
    self.turned_ = 0;
    if (down == 0 || !self.place_) return;
    StageEvent event = {StageEvent::wheel_turned};
    event.at = *self.place_;
    event.steps = -down;
    self.events_.push_back(event);
}

void StagePointer::touch_down(void* data, wl_touch*, uint32_t serial, uint32_t, wl_surface* surface,
                              int32_t finger, wl_fixed_t x, wl_fixed_t y) {
    StagePointer& self = of(data);
    const CoveredOutput* output = self.surfaces_.output_of(surface);
    if (self.finger_ >= 0 || !output) return;
    self.finger_ = finger;
    self.output_ = output;
    self.move_to(wl_fixed_to_double(x), wl_fixed_to_double(y));
    self.change_button(left_button, true, serial);
}

void StagePointer::touch_up(void* data, wl_touch*, uint32_t serial, uint32_t, int32_t finger) {
    if (of(data).finger_ != finger) return;
    of(data).finger_ = -1;
    of(data).change_button(left_button, false, serial);
}

void StagePointer::touch_motion(void* data, wl_touch*, uint32_t, int32_t finger, wl_fixed_t x,
                                wl_fixed_t y) {
    StagePointer& self = of(data);
    if (self.finger_ != finger || !self.output_) return;
    self.move_to(wl_fixed_to_double(x), wl_fixed_to_double(y));
}

// The compositor has taken the touch for something else, or for a drag.
void StagePointer::touch_cancel(void* data, wl_touch*) {
    StagePointer& self = of(data);
    if (self.finger_ < 0) return;
    self.finger_ = -1;
    self.output_ = nullptr;
    self.buttons_ = 0;
}

void StagePointer::outputs_are_placed() {
    if (!output_) return;
    place_ = place_in(output_->place, across_, down_);
    for (StageEvent& event : events_) event.at = *place_;
}

// With a button held, the compositor goes on to count from the surface of the press, also over
// other outputs.
void StagePointer::move_to(double x, double y) {
    across_ = x / std::max(1, output_->width);
    down_ = y / std::max(1, output_->height);
    place_ = buttons_ ? place_beside(output_->place, across_, down_)
                      : place_in(output_->place, across_, down_);
    StageEvent event = {StageEvent::pointer_moved};
    event.at = *place_;
    event.button = first_of(buttons_);
    events_.push_back(event);
}
