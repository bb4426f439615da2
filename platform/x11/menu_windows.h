// Everything about menus and alerts that is the X server's: windows that no window manager touches,
// grabs, screens, the pointer. Coordinates are the server's: pixels from the upper left. Main
// thread.
#pragma once

#include <AppKit/AppKit.h>

#include <vector>

#include "x11/menu_geometry.h"

struct pointer_t {
    point_t at;
    unsigned buttons;  // that are down: 1 left, 2 right, 4 any other
};

// The resource string of the server, null for none.
const char* server_resources();
// Whether windows are composed, so that they may be transparent.
bool windows_are_composed();

pointer_t current_pointer();
// Between the server's points and GNUstep's, which count from the lower left.
point_t server_point(NSPoint point);
NSPoint screen_point(point_t point);

// The screen under a point, or the nearest.
area_t screen_at(point_t point);

// A window of a menu, at `area`, not yet visible; retained for the caller.
NSWindow* new_menu_window(const area_t& area);
void move_menu_window(NSWindow* window, const area_t& area);
// Cuts the window's corners; radius 0 makes it whole.
void shape_menu_window(NSWindow* window, int radius);
// Leaves nothing of the window to be seen, without taking it from the screen: a grab stays.
void hide_shape_of_menu_window(NSWindow* window);
void show_menu_window(NSWindow* window);
// Draws what needs it; nobody else does. What a view raises passes, and takes its focus along.
void display_menu_window(NSWindow* window);

// Takes a window that is not yet visible out of the window manager's hands.
void free_from_window_manager(NSWindow* window);
// The same for one that stands beside or above menus.
void make_tip_window(NSWindow* window);
// Says how far a shadow reaches that the window draws itself, as GTK's windows do: compositors
// put none of their own around it then.
void tell_drawn_shadow(NSWindow* window, int extent);
// Cuts the window to these rectangles, which count from its upper left corner.
void cut_window(NSWindow* window, const std::vector<area_t>& parts);

// For windows that the window manager does touch: as a dialog, before it is shown; and with the
// keyboard once it is, also when the manager would rather leave that elsewhere.
void make_dialog_window(NSWindow* window);
void give_keyboard_to_window(NSWindow* window);
bool window_has_keyboard(NSWindow* window);

// Draws into the window that has the focus of drawing; null where it cannot be reached.
struct _cairo;
_cairo* focused_cairo();

// Draws the window's present pixels at (x, y) of `cairo`.
void copy_window(NSWindow* window, const area_t& part, _cairo* cairo, int x, int y);

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
