// The keyboard, while a stage has it: what keys mean and type, and their repetition.
#pragma once

#include <wayland-client.h>

#include <deque>
#include <set>
#include <string>

#include "wayland/menu_stage.h"

struct xkb_context;
struct xkb_keymap;
struct xkb_state;

class StageKeyboard {
  public:
    StageKeyboard(std::deque<StageEvent>& events, void (*tell_symbols)(std::vector<uint32_t>));
    ~StageKeyboard();
    StageKeyboard(const StageKeyboard&) = delete;
    StageKeyboard& operator=(const StageKeyboard&) = delete;

    void listen(wl_seat* seat);
    // Readable when a held key is to repeat.
    int repeat_descriptor() const { return timer_; }
    void repeat_if_due();

  private:
    static void keymap(void* data, wl_keyboard*, uint32_t format, int32_t file, uint32_t size);
    static void enter(void* data, wl_keyboard*, uint32_t serial, wl_surface*, wl_array* keys);
    static void leave(void* data, wl_keyboard*, uint32_t serial, wl_surface*);
    static void key(void* data, wl_keyboard*, uint32_t serial, uint32_t time, uint32_t key,
                    uint32_t state);
    static void modifiers(void* data, wl_keyboard*, uint32_t serial, uint32_t depressed,
                          uint32_t latched, uint32_t locked, uint32_t group);
    static void repeat_info(void* data, wl_keyboard*, int32_t rate, int32_t delay);
    bool understands_keys();
    void forget_keymap();
    void tell(uint32_t code, bool down, bool repeats);
    void tell_held();
    void start_repeating(uint32_t code);
    void stop_repeating();

    std::deque<StageEvent>& events_;
    void (*tell_symbols_)(std::vector<uint32_t>);
    wl_keyboard* keyboard_ = nullptr;
    std::string keymap_text_;  // reading it takes long, and many menus need no key
    xkb_context* context_ = nullptr;
    xkb_keymap* keymap_ = nullptr;
    xkb_state* state_ = nullptr;
    struct {
        uint32_t depressed, latched, locked, group;
    } modifiers_ = {};
    std::set<uint32_t> held_;  // X key codes
    uint32_t repeating_ = 0;
    int timer_ = -1;
    int rate_ = 25, delay_ = 600;  // repetitions a second, milliseconds before the first
};
