// Pointer and keyboard, held for one window. Main thread.
#pragma once

#include <AppKit/AppKit.h>

// Holds pointer and keyboard for a window from take() until it dies or release() is sent.
class InputGrab {
  public:
    InputGrab() = default;
    ~InputGrab() { release(); }
    InputGrab(const InputGrab&) = delete;
    InputGrab& operator=(const InputGrab&) = delete;

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
