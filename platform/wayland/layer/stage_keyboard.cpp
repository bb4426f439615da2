#include "wayland/layer/stage_keyboard.h"

#include <sys/mman.h>
#include <sys/timerfd.h>
#include <unistd.h>
#include <xkbcommon/xkbcommon.h>

#include <algorithm>

namespace {

constexpr uint32_t x_code_offset = 8;  // between a key's number in Linux and in X

StageKeyboard& of(void* data) { return *static_cast<StageKeyboard*>(data); }

timespec time_of(long milliseconds) { return {milliseconds / 1000, milliseconds % 1000 * 1000000}; }

}  // namespace

StageKeyboard::StageKeyboard(std::deque<StageEvent>& events,
                             void (*tell_symbols)(std::vector<uint32_t>))
    : events_(events),
      tell_symbols_(tell_symbols),
      timer_(timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK)) {}

StageKeyboard::~StageKeyboard() {
    tell_symbols_({});
    if (keyboard_) wl_keyboard_destroy(keyboard_);
    forget_keymap();
    xkb_context_unref(context_);
    if (timer_ >= 0) close(timer_);
}

void StageKeyboard::listen(wl_seat* seat) {
    if (keyboard_) return;
    static const wl_keyboard_listener listener = {keymap, enter,     leave,
                                                  key,    modifiers, repeat_info};
    keyboard_ = wl_seat_get_keyboard(seat);
    wl_keyboard_add_listener(keyboard_, &listener, this);
}

void StageKeyboard::keymap(void* data, wl_keyboard*, uint32_t format, int32_t file, uint32_t size) {
    StageKeyboard& self = of(data);
    self.forget_keymap();
    if (format == WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1 && size > 0) {
        void* text = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file, 0);
        if (text != MAP_FAILED) {
            self.keymap_text_.assign(static_cast<const char*>(text), size);
            self.keymap_text_.resize(self.keymap_text_.find('\0') != std::string::npos
                                         ? self.keymap_text_.find('\0')
                                         : size);
            munmap(text, size);
        }
    }
    close(file);
}

void StageKeyboard::forget_keymap() {
    xkb_state_unref(state_);
    xkb_keymap_unref(keymap_);
    state_ = nullptr;
    keymap_ = nullptr;
    keymap_text_.clear();
}

bool StageKeyboard::understands_keys() {
    if (state_) return true;
    if (keymap_text_.empty()) return false;
    if (!context_) context_ = xkb_context_new(XKB_CONTEXT_NO_FLAGS);
    keymap_ = context_ ? xkb_keymap_new_from_string(context_, keymap_text_.c_str(),
                                                    XKB_KEYMAP_FORMAT_TEXT_V1,
                                                    XKB_KEYMAP_COMPILE_NO_FLAGS)
                       : nullptr;
    keymap_text_.clear();
    if (keymap_) state_ = xkb_state_new(keymap_);
    if (!state_) return false;
    xkb_state_update_mask(state_, modifiers_.depressed, modifiers_.latched, modifiers_.locked, 0, 0,
                          modifiers_.group);
    return true;
}

// Keys that are held already, for example the ones of the shortcut that asked for the menu, press
// nothing in it.
void StageKeyboard::enter(void* data, wl_keyboard*, uint32_t, wl_surface*, wl_array* keys) {
    StageKeyboard& self = of(data);
    const auto* codes = static_cast<const uint32_t*>(keys->data);
    const size_t count = keys->size / sizeof(uint32_t);
    self.held_.clear();
    for (size_t i = 0; i < count; i++) self.held_.insert(codes[i] + x_code_offset);
    self.tell_held();
}

void StageKeyboard::leave(void* data, wl_keyboard*, uint32_t, wl_surface*) {
    StageKeyboard& self = of(data);
    self.stop_repeating();
    self.held_.clear();
    self.tell_held();
}

void StageKeyboard::modifiers(void* data, wl_keyboard*, uint32_t, uint32_t depressed,
                              uint32_t latched, uint32_t locked, uint32_t group) {
    StageKeyboard& self = of(data);
    self.modifiers_ = {depressed, latched, locked, group};
    if (self.state_) {
        xkb_state_update_mask(self.state_, depressed, latched, locked, 0, 0, group);
    }
}

void StageKeyboard::repeat_info(void* data, wl_keyboard*, int32_t rate, int32_t delay) {
    of(data).rate_ = rate;
    of(data).delay_ = delay;
}

void StageKeyboard::key(void* data, wl_keyboard*, uint32_t, uint32_t, uint32_t key,
                        uint32_t state) {
    StageKeyboard& self = of(data);
    const uint32_t code = key + x_code_offset;
    const bool down = state == WL_KEYBOARD_KEY_STATE_PRESSED;
    if (down) {
        self.held_.insert(code);
    } else {
        self.held_.erase(code);
        if (self.repeating_ == code) self.stop_repeating();
    }
    self.tell_held();
    self.tell(code, down, false);
    if (down) self.start_repeating(code);
}

void StageKeyboard::tell(uint32_t code, bool down, bool repeats) {
    if (!understands_keys()) return;
    StageEvent event = {down ? StageEvent::key_down : StageEvent::key_up};
    event.symbol = xkb_state_key_get_one_sym(state_, code);
    event.repeats = repeats;
    char text[64];
    const int length = xkb_state_key_get_utf8(state_, code, text, sizeof text);
    if (length > 0 && length < static_cast<int>(sizeof text)) event.text = text;
    events_.push_back(event);
}

// Each key in all layouts, without the effect of other keys: as the X server tells held keys.
void StageKeyboard::tell_held() {
    std::vector<uint32_t> symbols;
    if (!held_.empty() && understands_keys()) {
        for (const uint32_t code : held_) {
            const xkb_layout_index_t layouts = xkb_keymap_num_layouts_for_key(keymap_, code);
            for (xkb_layout_index_t layout = 0; layout < layouts; layout++) {
                const xkb_keysym_t* first = nullptr;
                const int count =
                    xkb_keymap_key_get_syms_by_level(keymap_, code, layout, 0, &first);
                symbols.insert(symbols.end(), first, first + count);
            }
        }
    }
    tell_symbols_(std::move(symbols));
}

void StageKeyboard::start_repeating(uint32_t code) {
    if (rate_ <= 0 || !understands_keys() || !xkb_keymap_key_repeats(keymap_, code)) return;
    repeating_ = code;
    const itimerspec times = {time_of(std::max(1, 1000 / rate_)), time_of(std::max(1, delay_))};
    timerfd_settime(timer_, 0, &times, nullptr);
}

void StageKeyboard::stop_repeating() {
    repeating_ = 0;
    const itimerspec never = {};
    timerfd_settime(timer_, 0, &never, nullptr);
}

// A busy program that has missed some repetitions makes up for one.
void StageKeyboard::repeat_if_due() {
    uint64_t times = 0;
    if (::read(timer_, &times, sizeof times) != sizeof times || !repeating_) return;
    tell(repeating_, true, true);
}
