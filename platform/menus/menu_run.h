// One popup on the screen: shows what its session has open and turns pointer and keyboard into
// changes of the session. Main thread.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "menus/menu_level.h"
#include "menus/menu_session.h"
#include "menus/menu_states.h"
#include "x11/menu_windows.h"

@class MenuRunWatcher;

class menu_run_t {
  public:
    menu_run_t(MenuSession* session, NSFont* font);
    ~menu_run_t();
    menu_run_t(const menu_run_t&) = delete;
    menu_run_t& operator=(const menu_run_t&) = delete;

    // From opening the session to closing it. Exceptions of delegates pass through.
    void track(NSEvent* event);

    // The innermost run, or null.
    static menu_run_t* current();
    // Run that shows this menu, or null.
    void menu_changed(NSMenu* menu);
    // The pixels of an item's image are others now, its size is not.
    void image_changed(NSImage* image);
    // The session changed: by this run, or by somebody while it sleeps.
    void session_changed();

    const std::vector<std::unique_ptr<menu_level_t>>& levels() const { return levels_; }
    const menu_style_t& style() const { return style_; }
    tracking_state_t state() const { return state_; }
    // Brings windows and rows in step with the session.
    void synchronize();

  private:
    struct timer_t {
        double due = 0;  // 0: not running
        void start(double delay);
        void stop() { due = 0; }
        bool is_due() const;
    };

    // menu_run.mm: the loop
    void open(NSEvent* event);
    void turn();
    NSDate* next_date() const;
    void handle(NSEvent* event);
    void run_timers();
    void finish();
    void wait_for_release();
    void synchronize_levels();
    NSUInteger modifiers_for(size_t index) const;
    bool synchronize_rows(size_t index);
    void follow_rows(size_t index, int row_before);
    void show(size_t index);

    // menu_run_pointer.mm
    point_t location(NSEvent* event) const;
    void input(tracking_input_t input);
    void pointer_moved(point_t point);
    void point_to(point_t point);
    void pressed(NSEvent* event, point_t point);
    void released(NSEvent* event, point_t point);
    void scrolled(point_t point, double lines);
    void hover(point_t point);
    void hover_over(int level, point_t point);
    void leave();
    bool is_aiming(int level, point_t point);
    void rest();
    void scroll_on();
    int level_at(point_t point) const;
    NSMenuItem* parent_item(size_t index) const;
    void open_submenu(NSMenuItem* item);
    bool send_to_view(NSEvent* event, point_t point);
    tracking_input_t release_input(point_t point) const;

    // menu_run_keys.mm
    void key_pressed(NSEvent* event);
    size_t focus_level() const;
    void take_focus();
    void move_highlight(int step, bool wraps);
    void move_to(int row, int step, bool wraps);
    void enter_submenu();
    void leave_submenu();
    void choose();
    void type(NSString* characters);

    MenuSession* session_;     // retained
    MenuRunWatcher* watcher_;  // retained
    image_cache_t images_;
    menu_style_t style_;
    std::vector<std::unique_ptr<menu_level_t>> levels_;
    input_grab_t grab_;
    menu_run_t* outer_;

    tracking_state_t state_ = state_closed;
    bool dirty_ = false, awake_ = true, nested_ = false;
    NSUInteger modifiers_ = 0;

    point_t origin_ = {}, pointer_ = {};
    bool button_down_ = false, armed_ = false, moved_ = false;
    unsigned buttons_ = 0;  // whose release is ours: see pointer_t
    double opened_ = 0;
    NSMenuItem* hovered_ = nil;  // retained; what the hover timer waits for
    timer_t hover_timer_, scroll_timer_;
    point_t aim_from_ = {};
    bool aiming_ = false;
    int scroll_level_ = -1, scroll_direction_ = 0;
    double scroll_started_ = 0;

    int key_level_ = -1;  // where keys have led; -1 once the pointer has moved since
    std::string typed_;
    double typed_at_ = 0;
};
