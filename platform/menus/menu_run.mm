#include "menus/menu_run.h"

#include <host/modifier_keys.h>

#include <algorithm>

#include "coregraphics/image.h"
#include "events/event_loop.h"
#include "menus/menu_changes.h"
#include "menus/menu_items.h"
#include "menus/menu_presenter.h"

namespace {

// What timers draw or ask the server while we sleep may swallow the announcement of an event.
const double longest_sleep = 0.02;

menu_run_t* current_run;

double now() { return [NSDate timeIntervalSinceReferenceDate]; }

void menu_has_changed(NSMenu* menu, NSMenuItem*) {
    if (current_run) current_run->menu_changed(menu);
}

}  // namespace

@interface MenuRunWatcher : NSObject <MenuSessionWatcher> {
  @private
    menu_run_t* _run;
}
- (instancetype)initWithRun:(menu_run_t*)run;
// The run is over; a last timer may still hold the watcher.
- (void)forgetRun;
// Ends the wait for events.
- (void)wake;
@end

@implementation MenuRunWatcher

- (instancetype)initWithRun:(menu_run_t*)run {
    if (!(self = [super init])) return nil;
    _run = run;
    // Menus that GNUstep shows too tell by notification only.
    [[NSNotificationCenter defaultCenter] addObserver:self
                                             selector:@selector(itemDidChange:)
                                                 name:NSMenuDidChangeItemNotification
                                               object:nil];
    return self;
}

- (void)forgetRun {
    [[NSNotificationCenter defaultCenter] removeObserver:self];
    _run = nullptr;
}

- (void)sessionDidChange:(MenuSession*)session {
    (void)session;
    _run->session_changed();
}

// The event ends the wait, the timer makes the run loop look: one that sleeps, or is about to
// after the timer that calls this, does not see the queue grow.
- (void)wake {
    wake_event_loop();
    NSTimer* timer = [NSTimer timerWithTimeInterval:0
                                             target:self
                                           selector:@selector(awake:)
                                           userInfo:nil
                                            repeats:NO];
    [[NSRunLoop currentRunLoop] addTimer:timer forMode:NSEventTrackingRunLoopMode];
}

- (void)awake:(NSTimer*)timer {
    (void)timer;
}

- (void)itemDidChange:(NSNotification*)notification {
    _run->menu_changed([notification object]);
}

@end

void menu_run_t::timer_t::start(double delay) { due = now() + delay; }

bool menu_run_t::timer_t::is_due() const { return due > 0 && due <= now(); }

menu_run_t* menu_run_t::current() { return current_run; }

menu_run_t::menu_run_t(MenuSession* session, NSFont* font)
    : session_([session retain]),
      watcher_([[MenuRunWatcher alloc] initWithRun:this]),
      style_{menu_look(font, server_resources()), windows_are_composed(), &images_},
      outer_(current_run) {
    current_run = this;
    set_display_scale(style_.look.scale);
    set_menu_change_listener(menu_has_changed);
    [session_ setWatcher:watcher_];
}

menu_run_t::~menu_run_t() {
    current_run = outer_;
    // The inner popup took the pointer from the outer one.
    if (outer_) {
        outer_->nested_ = true;
    } else {
        set_menu_change_listener(nullptr);
    }
    [session_ setWatcher:nil];
    [watcher_ forgetRun];
    [watcher_ release];
    [session_ release];
    [hovered_ release];
}

void menu_run_t::session_changed() {
    dirty_ = true;
    if (!awake_) [watcher_ wake];
}

void menu_run_t::menu_changed(NSMenu* menu) {
    for (const auto& level : levels_) {
        if (level->menu() != menu) continue;
        level->mark_changed();
        session_changed();
    }
    if (outer_) outer_->menu_changed(menu);
}

void menu_run_t::image_changed(NSImage* image) {
    images_.forget(image);
    for (const auto& level : levels_) level->redraw();
    session_changed();
    if (outer_) outer_->image_changed(image);
}

void menu_run_t::track(NSEvent* event) {
    open(event);
    if (!levels_.empty() && levels_[0]->is_shown() && grab_.take(levels_[0]->window())) {
        while (![session_ isEnding]) {
            NSAutoreleasePool* pool = [NSAutoreleasePool new];
            turn();
            [pool release];
        }
    }
    finish();
}

void menu_run_t::open(NSEvent* event) {
    const pointer_t pointer = current_pointer();
    pointer_ = origin_ = pointer.at;
    if (event) {
        NSWindow* window = [event window];
        const NSPoint at = [event locationInWindow];
        origin_ = server_point(window ? [window convertBaseToScreen:at] : at);
    }
    buttons_ = pointer.buttons;
    button_down_ = buttons_ != 0;
    opened_ = now();
    input(button_down_ ? input_open_pressed : input_open_free);
    [session_ open];
    synchronize();
}

void menu_run_t::turn() {
    if (nested_) {
        nested_ = false;
        grab_.take(levels_[0]->window());
    }
    deliver_queued_events();
    awake_ = false;
    NSEvent* event = [NSApp nextEventMatchingMask:NSAnyEventMask
                                        untilDate:next_date()
                                           inMode:NSEventTrackingRunLoopMode
                                          dequeue:YES];
    awake_ = true;
    if (event && ![session_ isEnding]) handle(event);
    if (![session_ isEnding]) run_timers();
    if (![session_ isEnding]) synchronize();
}

NSDate* menu_run_t::next_date() const {
    double due = now() + longest_sleep;
    for (const timer_t* timer : {&hover_timer_, &scroll_timer_}) {
        if (timer->due > 0) due = std::min(due, timer->due);
    }
    return [NSDate dateWithTimeIntervalSinceReferenceDate:due];
}

void menu_run_t::handle(NSEvent* event) {
    switch ([event type]) {
        case NSMouseMoved:
        case NSLeftMouseDragged:
        case NSRightMouseDragged:
        case NSOtherMouseDragged:
            pointer_moved(location(event));
            send_to_view(event, location(event));
            break;
        case NSLeftMouseDown:
        case NSRightMouseDown:
        case NSOtherMouseDown:
            pressed(event, location(event));
            break;
        case NSLeftMouseUp:
        case NSRightMouseUp:
        case NSOtherMouseUp:
            released(event, location(event));
            break;
        case NSScrollWheel:
            scrolled(location(event), [event deltaY]);
            break;
        case NSKeyDown:
            key_pressed(event);
            break;
        case NSAppKitDefined:
        case NSSystemDefined:
            [NSApp sendEvent:event];
            break;
        default:
            break;
    }
}

void menu_run_t::run_timers() {
    if (hover_timer_.is_due()) {
        hover_timer_.stop();
        rest();
    }
    if (scroll_timer_.is_due()) scroll_on();
}

void menu_run_t::finish() {
    for (const auto& level : levels_) level->hide();
    if (state_ == state_closing) wait_for_release();
    grab_.release();
    levels_.clear();
    images_.clear();
    input(input_closed);
    [session_ close];
}

// The rest of a click that closed the menu is for nobody else.
void menu_run_t::wait_for_release() {
    NSDate* limit = [NSDate dateWithTimeIntervalSinceNow:1];
    while (button_down_ && current_pointer().buttons) {
        NSEvent* event = [NSApp nextEventMatchingMask:NSAnyEventMask
                                            untilDate:limit
                                               inMode:NSEventTrackingRunLoopMode
                                              dequeue:YES];
        if (!event) break;
        const NSEventType type = [event type];
        if (type == NSLeftMouseUp || type == NSRightMouseUp || type == NSOtherMouseUp) break;
    }
}

void menu_run_t::synchronize() {
    modifiers_ = CurrentModifierFlags() & alternate_modifiers;
    // Following changed rows may change the session again; a delegate may do so for ever.
    for (int rounds = 0; rounds < 8; rounds++) {
        dirty_ = false;
        synchronize_levels();
        bool changed = false;
        for (size_t i = 0; i < levels_.size(); i++) changed = synchronize_rows(i) || changed;
        if (!changed && !dirty_) break;
    }
    for (const auto& level : levels_) {
        level->set_highlight([session_ highlightedItemOfMenu:level->menu()]);
    }
    for (const auto& level : levels_) display_menu_window(level->window());
    tell_open_levels_changed();
}

void menu_run_t::synchronize_levels() {
    NSArray* open = [session_ levels];
    size_t same = 0;
    while (same < levels_.size() && same < [open count] &&
           levels_[same]->menu() == [open objectAtIndex:same]) {
        same++;
    }
    while (levels_.size() > same) levels_.pop_back();
    for (size_t i = same; i < [open count]; i++) {
        levels_.push_back(std::make_unique<menu_level_t>([open objectAtIndex:i], style_));
        levels_[i]->refresh(modifiers_);
        show(i);
    }
}

void menu_run_t::show(size_t index) {
    if (index == 0) {
        levels_[0]->show_at_pointer(origin_);
    } else {
        levels_[index]->show_beside(*levels_[index - 1], parent_item(index));
    }
}

// While the user is in a deeper level, the alternate that led there stays, whatever keys are held.
NSUInteger menu_run_t::modifiers_for(size_t index) const {
    const menu_level_t& level = *levels_[index];
    const NSUInteger shown = level.layout().modifiers();
    if (shown == modifiers_ || index + 1 >= levels_.size()) return modifiers_;
    if (![session_ highlightedItemOfMenu:levels_[index + 1]->menu()]) return modifiers_;
    NSMenuItem* parent = parent_item(index + 1);
    NSArray* items = [level.menu() itemArray];
    const NSUInteger next = [items indexOfObjectIdenticalTo:parent] + 1;
    const bool has_alternate = next < [items count] && [static_cast<NSMenuItem*>([items
                                                           objectAtIndex:next]) isAlternate];
    return [parent isAlternate] || has_alternate ? shown : modifiers_;
}

bool menu_run_t::synchronize_rows(size_t index) {
    menu_level_t& level = *levels_[index];
    NSMenuItem* highlighted = [session_ highlightedItemOfMenu:level.menu()];
    const int row = level.layout().row_of(highlighted);
    const int row_open = level.layout().row_of(parent_item(index + 1));
    if (!level.refresh(modifiers_for(index))) return false;
    if (level.is_shown()) {
        level.resize();
    } else {
        show(index);
    }
    follow_rows(index, row);
    if (row_open >= 0 && level.layout().row_of(parent_item(index + 1)) < 0) {
        [session_ closeLevelsBelowMenu:level.menu()];
    }
    return true;
}

// After a change of the rows: another item may stand where the highlighted one stood.
void menu_run_t::follow_rows(size_t index, int row_before) {
    const menu_level_t& level = *levels_[index];
    NSMenuItem* highlighted = [session_ highlightedItemOfMenu:level.menu()];
    if (!highlighted || level.layout().row_of(highlighted) >= 0) return;
    NSMenuItem* item = nil;
    if (row_before >= 0 && row_before < static_cast<int>(level.layout().rows().size())) {
        item = level.layout().rows()[row_before].item;
    }
    [session_ highlightItem:item inMenu:level.menu()];
    if (!can_highlight(item)) return;
    [item retain];
    [hovered_ release];
    hovered_ = item;
    hover_timer_.start(0.2);
}
