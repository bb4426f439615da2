#include "menus/menu_run.h"

#include "menu_classes/menu_changes.h"
#include "wayland/prepared_stage.h"
#include "x11/screens.h"

namespace {

// The time between two attempts to get the keyboard from another program.
const double keyboard_interval = 0.05;
// The time between two looks at a menu that changes at every look.
const double restless_interval = 0.02;

MenuRun* current_run;

void menu_has_changed(NSMenu* menu, NSMenuItem*) {
    if (current_run) current_run->menu_changed(menu);
}

// The next event, nil for none. Does not wait. Serves the run loop once if no event is queued.
NSEvent* next_event() {
    return [NSApp nextEventMatchingMask:NSAnyEventMask
                              untilDate:[NSDate distantPast]
                                 inMode:NSEventTrackingRunLoopMode
                                dequeue:YES];
}

bool is_release(NSEvent* event) {
    const NSEventType type = [event type];
    return type == NSLeftMouseUp || type == NSRightMouseUp || type == NSOtherMouseUp;
}

}  // namespace

@interface MenuRunWatcher : NSObject <MenuSessionWatcher> {
  @private
    MenuRun* _run;
}
- (instancetype)initWithRun:(MenuRun*)run;
- (void)stop;
@end

@implementation MenuRunWatcher

- (instancetype)initWithRun:(MenuRun*)run {
    if (!(self = [super init])) return nil;
    _run = run;
    // A menu that GNUstep shows too announces its changes by notification only.
    [[NSNotificationCenter defaultCenter] addObserver:self
                                             selector:@selector(itemDidChange:)
                                                 name:NSMenuDidChangeItemNotification
                                               object:nil];
    return self;
}

- (void)stop {
    [[NSNotificationCenter defaultCenter] removeObserver:self];
}

- (void)sessionDidChange:(MenuSession*)session {
    (void)session;
    _run->session_changed();
}

- (BOOL)session:(MenuSession*)session canOpenSubmenuOfItem:(NSMenuItem*)item {
    (void)session;
    return _run->may_open(item);
}

- (void)itemDidChange:(NSNotification*)notification {
    _run->menu_changed([notification object]);
}

@end

MenuRun* MenuRun::current() { return current_run; }

MenuRun::MenuRun(MenuSession* session, NSFont* font)
    : session_([session retain]),
      watcher_([[MenuRunWatcher alloc] initWithRun:this]),
      levels_(session, font),
      slow_levels_(session),
      pointer_(levels_),
      keyboard_(levels_, pointer_),
      wait_(NSEventTrackingRunLoopMode),
      stage_(take_prepared_stage(), NSEventTrackingRunLoopMode),
      outer_(current_run) {
    current_run = this;
    set_menu_change_listener(menu_has_changed);
    [session_ setWatcher:watcher_];
}

MenuRun::~MenuRun() {
    current_run = outer_;
    // The inner popup took the pointer from the outer one.
    if (outer_) {
        outer_->nested_ = true;
    } else {
        set_menu_change_listener(nullptr);
    }
    [session_ setWatcher:nil];
    [watcher_ stop];
    [watcher_ release];
    [session_ release];
}

void MenuRun::menu_changed(NSMenu* menu) {
    levels_.menu_changed(menu);
    if (outer_) outer_->menu_changed(menu);
}

void MenuRun::image_changed(NSImage* image) {
    levels_.image_changed(image);
    if (outer_) outer_->image_changed(image);
}

void MenuRun::track(NSEvent* event) {
    open(event);
    if (!levels_.empty() && levels_[0].is_shown() && take_input()) {
        while (![session_ isEnding]) {
            NSAutoreleasePool* pool = [NSAutoreleasePool new];
            turn();
            [pool release];
        }
    }
    finish();
}

void MenuRun::open(NSEvent* event) {
    pointer_.begin(event, pointer_now());
    levels_.set_origin(pointer_.origin());
    keyboard_.ask_modifiers();
    [session_ open];
    synchronize();
    pointer_.note_shown();
}

// The server's idea of the pointer is old when the pointer is over no X window.
Pointer MenuRun::pointer_now() const {
    Pointer pointer = current_pointer();
    if (const auto place = stage_.pointer()) pointer.at = {place->x, place->y};
    return pointer;
}

bool MenuRun::take_input() {
    nested_ = false;
    if (!grab_.take(levels_[0].window())) return false;
    take_keyboard();
    stage_.begin(levels_[0].window());
    return true;
}

// A program that shows the menu by a key may hold the keyboard until that key is released.
void MenuRun::take_keyboard() {
    keyboard_timer_.stop();
    if (!grab_.take_keyboard()) keyboard_timer_.start(keyboard_interval);
    keyboard_.ask_modifiers();
}

void MenuRun::turn() {
    if (nested_) take_input();
    NSEvent* event = next_event();
    if (event && ![session_ isEnding]) handle(event);
    if (![session_ isEnding]) run_timers();
    if (![session_ isEnding]) settle();
    if (event || [session_ isEnding]) return;
    wait_.sleep(due(), [this] { return has_work(); });
}

void MenuRun::handle(NSEvent* event) {
    keyboard_.handle(event);
    if (pointer_.handle(event)) keyboard_.yield_to_pointer();
    const NSEventType type = [event type];
    if (type == NSAppKitDefined || type == NSSystemDefined) [NSApp sendEvent:event];
}

void MenuRun::run_timers() {
    pointer_.run_timers();
    slow_levels_.run_timer();
    if (keyboard_timer_.is_due()) take_keyboard();
}

void MenuRun::synchronize() {
    levels_.synchronize();
    if (NSMenuItem* item = levels_.take_follower()) pointer_.rest_on(item);
}

// A menu that changes at every look would keep the process from sleeping, so a timer spaces the
// looks.
void MenuRun::settle() {
    synchronize();
    restless_timer_.stop();
    if (levels_.needs_synchronizing()) restless_timer_.start(restless_interval);
}

double MenuRun::due() const {
    return Deadline::earlier(Deadline::earlier(pointer_.due(), slow_levels_.due()),
                             Deadline::earlier(keyboard_timer_.due, restless_timer_.due));
}

bool MenuRun::has_work() const {
    if ([session_ isEnding] || nested_) return true;
    return !restless_timer_.is_running() && levels_.needs_synchronizing();
}

void MenuRun::finish() {
    levels_.hide();
    if (state() == state_closing) wait_for_release();
    grab_.release();
    end_stage();
    levels_.clear();
    pointer_.end();
    [session_ close];
}

// An event tap may have kept a press for itself, and a drag begins with it. A compositor goes on to
// tell the X server where the pointer is as long as the window of the press is there.
void MenuRun::end_stage() {
    if (pointer_.is_button_down() || !stage_.has_button()) return stage_.end();
    NSMutableArray* windows = [NSMutableArray array];
    for (const auto& level : levels()) {
        if (level->is_shown()) [windows addObject:[level->give_window() autorelease]];
    }
    stage_.end_after_drag(windows);
}

// Takes the rest of a click that closed the menu, so that nobody else gets it.
void MenuRun::wait_for_release() {
    Deadline limit;
    limit.start(1);
    const auto is_button_down = [this] {
        return pointer_.is_button_down() && current_pointer().buttons;
    };
    while (is_button_down() && !limit.is_due()) {
        NSEvent* event = next_event();
        if (is_release(event)) return;
        if (!event) wait_.sleep(limit.due, [] { return false; });
    }
}
