// Draws with cairo in the toolkit's windows, and copies their pixels. Main thread.
#pragma once

#include <AppKit/AppKit.h>

#include "x11/menu_geometry.h"

struct _cairo;

// The cairo context of the window that has the drawing focus; null where it cannot be reached.
_cairo* focused_cairo();

// For the time in which a hidden window is drawn and shown: the server shows it with its pixels at
// once. Without this, the window is empty until the server has carried out the copying of the
// pixels. A compositor makes a picture of that, so that on Wayland they come a picture later.
class ShownWithPixels {
  public:
    explicit ShownWithPixels(NSWindow* window);
    ~ShownWithPixels();
    ShownWithPixels(const ShownWithPixels&) = delete;
    ShownWithPixels& operator=(const ShownWithPixels&) = delete;

    // False where the window's pixels cannot be reached; they come later then.
    bool is_possible() const { return window_; }

  private:
    unsigned long window_ = 0;  // the server's name of it
};

// Draws the window's present pixels at (x, y) of `cairo`.
void copy_window(NSWindow* window, const Area& part, _cairo* cairo, int x, int y);
