// Pointer and keyboard, held for one window. Main thread.
#pragma once

#include <AppKit/AppKit.h>

// Holds pointer and keyboard for a window from take() until it dies or release() is sent.
class input_grab_t {
  public:
    input_grab_t() = default;
    ~input_grab_t() { release(); }
    input_grab_t(const input_grab_t&) = delete;
    input_grab_t& operator=(const input_grab_t&) = delete;

    // False when another program holds the pointer and does not let go.
    bool take(NSWindow* window);
    // False while another program holds the keyboard. Does nothing once it is ours.
    bool take_keyboard();
    void release();

  private:
    NSWindow* window_ = nil;  // retained while held
    bool keyboard_ = false;
    bool became_key_ = false;
};
