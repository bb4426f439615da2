// Pointer and keyboard, held for one window. Main thread.
#pragma once

#include <AppKit/AppKit.h>

// GNUstep sets the mouse up at the first press, and handles the events that come meanwhile before
// that press: a quick click loses its release. So the mouse is set up before. Later calls do
// nothing.
void set_mouse_up();

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
