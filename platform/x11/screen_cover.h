// Two transparent windows for the time that a menu is open on Xwayland: one over the whole screen,
// because Xwayland tells X programs where the pointer is only while it is over one of their
// windows; and one that asks the compositor for the keyboard as any program's window does, because
// a grab holds only keys that the compositor gives to X programs. Main thread.
#pragma once

#include <xcb/xcb.h>

#include <vector>

class ScreenCover {
  public:
    ScreenCover() = default;
    ~ScreenCover();
    ScreenCover(const ScreenCover&) = delete;
    ScreenCover& operator=(const ScreenCover&) = delete;

    // False where the server has no transparent windows.
    bool open();
    // Gives the X server's keyboard back to the window that has the compositor's, when another
    // window of this program has taken it.
    void take_keyboard();
    // Readable when the pointer may have told its place.
    int descriptor() const { return xcb_get_file_descriptor(server_); }
    // Takes what has arrived. False once the server has gone.
    bool read();
    // Whether the pointer has moved over the cover since it was opened; (x, y) is where to.
    bool knows_pointer(int* x, int* y) const;

  private:
    xcb_window_t add_window(bool managed, uint16_t width, uint16_t height);
    void cover_screen();
    void ask_for_keyboard();
    xcb_atom_t atom(const char* name) const;
    void set(xcb_window_t window, const char* property, xcb_atom_t type,
             const std::vector<uint32_t>& values) const;

    xcb_connection_t* server_ = nullptr;
    const xcb_screen_t* screen_ = nullptr;
    xcb_visualid_t visual_ = XCB_NONE;
    xcb_colormap_t colors_ = XCB_NONE;
    xcb_window_t dialog_ = XCB_NONE;
    bool moved_ = false;
    int x_ = 0, y_ = 0;
};
