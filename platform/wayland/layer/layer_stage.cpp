#include "wayland/layer/layer_stage.h"

#include <sys/epoll.h>
#include <unistd.h>

#include "events/deadline.h"

namespace {

// In seconds. If no menu is open by then, other programs get the keyboard back.
constexpr double longest_hold = 5;
// In seconds, for the compositor's answer to the wish to drag.
constexpr double longest_begin = 1;

void ignore_name(void*, wl_seat*, const char*) {}

}  // namespace

LayerStage::LayerStage(const StageSettings& settings)
    : settings_(settings),
      surfaces_(compositor_),
      pointer_(compositor_, surfaces_, events_),
      keyboard_(events_, settings.tell_symbols),
      drag_(compositor_),
      descriptor_(epoll_create1(EPOLL_CLOEXEC)) {}

LayerStage::~LayerStage() {
    if (descriptor_ >= 0) close(descriptor_);
}

bool LayerStage::open() {
    static const wl_seat_listener listener = {tell_devices, ignore_name};
    wl_seat_add_listener(compositor_.seat, &listener, this);
    if (!surfaces_.open(settings_.monitors)) return false;
    pointer_.outputs_are_placed();
    limit_.start(longest_hold, [this] {
        surfaces_.hold_keyboard(false);
        gave_back_ = true;
    });
    watch(wl_display_get_fd(compositor_.display));
    watch(keyboard_.repeat_descriptor());
    // The answers to what came so far are sent now, not when somebody reads next.
    wl_display_flush(compositor_.display);
    return true;
}

// A menu that comes late takes the keyboard again.
void LayerStage::menu_is_open() {
    limit_.stop();
    if (gave_back_) surfaces_.hold_keyboard(true);
    gave_back_ = false;
}

void LayerStage::watch(int descriptor) const {
    epoll_event event = {};
    event.events = EPOLLIN;
    epoll_ctl(descriptor_, EPOLL_CTL_ADD, descriptor, &event);
}

void LayerStage::tell_devices(void* data, wl_seat* seat, uint32_t devices) {
    auto& self = *static_cast<LayerStage*>(data);
    if (devices & WL_SEAT_CAPABILITY_POINTER) self.pointer_.listen(seat);
    if (devices & WL_SEAT_CAPABILITY_TOUCH) self.pointer_.listen_to_touches(seat);
    if (devices & WL_SEAT_CAPABILITY_KEYBOARD) self.keyboard_.listen(seat);
}

// The compositor takes the pointer from the stage when it begins the drag. Until then the stage
// stays, as the compositor looks whether the press was on it.
bool LayerStage::begin_drag(const StageDrag& drag) {
    const StagePress press = pointer_.press();
    if (!press.surface || !drag_.begin(drag, press.surface, press.serial)) return false;
    compositor_.wait(seconds_now() + longest_begin,
                     [this] { return !pointer_.buttons() || drag_.state() != carried; });
    if (pointer_.is_here() || drag_.state() != carried) return false;
    surfaces_.uncover();
    return true;
}

bool LayerStage::read() {
    const bool there = compositor_.read();
    keyboard_.repeat_if_due();
    return there;
}

std::optional<StageEvent> LayerStage::next_event() {
    if (events_.empty()) return std::nullopt;
    StageEvent event = std::move(events_.front());
    events_.pop_front();
    return event;
}

extern "C" __attribute__((visibility("default"))) MenuStage* delvio_open_layer_stage(
    const StageSettings& settings) {
    auto stage = std::make_unique<LayerStage>(settings);
    const bool is_open = stage->connect() && stage->has_layers() && stage->open();
    return is_open ? stage.release() : nullptr;
}
