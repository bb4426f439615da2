// One popup on the screen: a loop that hands events to the trackers of pointer and keyboard and
// brings the levels in step with what the trackers do. It sleeps while nothing happens. Main
// thread.
#pragma once

#include "events/deadline.h"
#include "events/event_wait.h"
#include "menus/keyboard_tracker.h"
#include "menus/menu_levels.h"
#include "x11/input_grab.h"
#include "menus/pointer_tracker.h"
#include "menus/slow_levels.h"
#include "wayland/stage_input.h"

@class MenuRunWatcher;

class MenuRun {
  public:
    MenuRun(MenuSession* session, NSFont* font);
    ~MenuRun();
    MenuRun(const MenuRun&) = delete;
    MenuRun& operator=(const MenuRun&) = delete;

    // Runs from opening the session to closing it. Exceptions of delegates pass through.
    void track(NSEvent* event);

    // The innermost run, or null.
    static MenuRun* current();
    // A menu's items, or what they show, have changed.
    void menu_changed(NSMenu* menu);
    // An item's image has new pixels and the same size.
    void image_changed(NSImage* image);
    // The session changed: by this run, or by somebody while it sleeps.
    void session_changed() { levels_.session_changed(); }
    // Whether the submenu of an item can be opened now; otherwise this run opens it later.
    bool may_open(NSMenuItem* item) { return slow_levels_.may_open(item); }

    const MenuLevels::List& levels() const { return levels_.all(); }
    // The item whose submenu a level is, nil for none.
    NSMenuItem* parent_item(size_t level) const { return levels_.parent_item(level); }
    const MenuStyle& style() const { return levels_.style(); }
    TrackingState state() const { return pointer_.state(); }
    // Does what is due. A run that tracks does so at each turn.
    void run_timers();
    // Brings windows and rows in step with the session.
    void synchronize();

  private:
    void open(NSEvent* event);
    Pointer pointer_now() const;
    bool take_input();
    void take_keyboard();
    void turn();
    void handle(NSEvent* event);
    void settle();
    void end_stage();
    double due() const;
    bool has_work() const;
    void finish();
    void wait_for_release();

    MenuSession* session_;     // retained
    MenuRunWatcher* watcher_;  // retained
    MenuLevels levels_;
    SlowLevels slow_levels_;
    PointerTracker pointer_;
    KeyboardTracker keyboard_;
    InputGrab grab_;
    EventWait wait_;
    StageInput stage_;
    MenuRun* outer_;
    bool nested_ = false;      // a popup within has taken the input
    Deadline keyboard_timer_;  // until the keyboard is asked for again
    Deadline restless_timer_;  // until endless changes are looked at again
};
