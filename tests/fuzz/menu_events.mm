// Sequences of X events into the menu that is shown: from a hand that is on mouse and keyboard, and
// with any fields, from another program. Meanwhile the host changes the menu.
#include "tried_menu.h"

#include <host/menu_tracking.h>
#include <sys/eventfd.h>

#include <algorithm>

#include "menus/menu_run.h"
#include "moved_clock.h"
#include "require.h"
#include "support/app.h"
#include "x11/toolkit_display.h"

// Xlib's headers come after AppKit's, as some of their names are the same.
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

#include "sent_event.h"

using fuzz::Input;
using fuzz::require;

namespace {

const int most_steps = 40, most_popups = 2;

const KeySym keys[] = {XK_Up,
                       XK_Down,
                       XK_Left,
                       XK_Right,
                       XK_Escape,
                       XK_Return,
                       XK_space,
                       XK_Home,
                       XK_End,
                       XK_Prior,
                       XK_Next,
                       XK_Tab,
                       XK_a,
                       XK_d,
                       XK_f,
                       XK_r,
                       XK_period,
                       XK_BackSpace,
                       XK_Delete,
                       XK_F1,
                       XK_Shift_L,
                       XK_Control_L,
                       XK_Alt_L,
                       XK_Super_L,
                       XK_Meta_L,
                       XK_Hyper_L,
                       XK_KP_Enter,
                       XK_Caps_Lock,
                       XK_ISO_Level3_Shift};

// What a try does beside the menu, step by step.
class Hand {
  public:
    Hand(Input& input, TriedMenu* menu) : input_(input), menu_(menu) {}
    void press(unsigned button, bool down) {
        if (down == ((buttons_ >> button & 1) != 0)) return;
        buttons_ ^= 1u << button;
        XTestFakeButtonEvent(toolkit_display(), button, down, CurrentTime);
    }
    void move(int x, int y) { XTestFakeMotionEvent(toolkit_display(), -1, x, y, CurrentTime); }
    // Nothing stays pressed.
    void let_go();
    bool has_steps() const { return input_.left() > 0 && steps_ < most_steps; }
    void step();

  private:
    void turn_key(KeySym key, bool down);
    void send_event();
    void move_to_row();
    const MenuLevel* a_level();

    Input& input_;
    TriedMenu* menu_;
    int steps_ = 0, turns_without_steps_ = 0;
    unsigned buttons_ = 0;
    std::vector<KeyCode> keys_down_;
};

void Hand::turn_key(KeySym key, bool down) {
    const KeyCode code = XKeysymToKeycode(toolkit_display(), key);
    if (!code) return;
    const auto known = std::find(keys_down_.begin(), keys_down_.end(), code);
    if (down == (known != keys_down_.end())) return;
    if (down) {
        keys_down_.push_back(code);
    } else {
        keys_down_.erase(known);
    }
    XTestFakeKeyEvent(toolkit_display(), code, down, CurrentTime);
}

void Hand::let_go() {
    for (unsigned button = 1; button < 10; button++) press(button, false);
    for (const KeyCode code : keys_down_) {
        XTestFakeKeyEvent(toolkit_display(), code, False, CurrentTime);
    }
    keys_down_.clear();
    XSync(toolkit_display(), False);
}

const MenuLevel* Hand::a_level() {
    const MenuRun* run = MenuRun::current();
    if (!run || run->levels().empty()) return nullptr;
    return run->levels()[input_.byte() % run->levels().size()].get();
}

void Hand::move_to_row() {
    const MenuLevel* level = a_level();
    const size_t rows = level ? level->layout().rows().size() : 0;
    if (rows == 0) return;
    const Area row = level->row_area(static_cast<int>(input_.byte() % rows));
    move(row.left + row.width / 2, row.top + row.height / 2);
}

void Hand::send_event() {
    std::vector<Window> windows = {DefaultRootWindow(toolkit_display())};
    for (NSWindow* window in [NSApp windows]) {
        if (server_window(window)) windows.push_back(server_window(window));
    }
    const MenuLevel* level = a_level();
    if (!level || !level->window()) return;
    fuzz::SentEvent sent(input_, toolkit_display(), windows);
    XSendEvent(toolkit_display(), server_window(level->window()), False, NoEventMask,
               &sent.event());
}

void Hand::step() {
    if (!has_steps()) {
        let_go();
        [[MenuSession current] cancel];
        fuzz::milliseconds_ahead += 100;
        require(++turns_without_steps_ < 1000, "a menu that is cancelled closes");
        return;
    }
    steps_++;
    const uint8_t what = input_.byte();
    switch (what % 10) {
        case 0:
            move_to_row();
            break;
        case 1: {
            const int x = input_.byte() * 2, y = input_.byte() * 2;  // of a screen of 500 x 400
            move(x, y);
            break;
        }
        case 2:
            press(1 + what / 10 % 9, true);
            break;
        case 3:
            press(1 + what / 10 % 9, false);
            break;
        case 4:
            press(1 + what / 10 % 5, true);
            press(1 + what / 10 % 5, false);
            break;
        case 5: {
            const KeySym key = keys[input_.byte() % std::size(keys)];
            turn_key(key, true);
            turn_key(key, false);
            break;
        }
        case 6:
            turn_key(keys[input_.byte() % std::size(keys)], what / 10 & 1);
            break;
        case 7:
            fuzz::milliseconds_ahead += input_.byte() * 5;
            break;
        case 8:
            send_event();
            break;
        default:
            [menu_ changeBy:input_];
            break;
    }
    XSync(toolkit_display(), False);
}

}  // namespace

// Lets the hand make a step each time that the run loop looks for events.
@interface HandWatcher : NSObject <RunLoopEvents> {
  @public
    Hand* _hand;
}
@end

@implementation HandWatcher
- (void)receivedEvent:(void*)data
                 type:(RunLoopEventType)type
                extra:(void*)extra
              forMode:(NSString*)mode {
    (void)data, (void)type, (void)extra, (void)mode;
    if (_hand) _hand->step();
}
@end

namespace {

HandWatcher* watcher() {
    static HandWatcher* only = [] {
        test::start_application();
        XTestGrabControl(toolkit_display(), True);
        HandWatcher* made = [HandWatcher new];
        [[NSRunLoop currentRunLoop] addEvent:reinterpret_cast<void*>(intptr_t{eventfd(1, 0)})
                                        type:ET_RDESC
                                     watcher:made
                                     forMode:NSEventTrackingRunLoopMode];
        return made;
    }();
    return only;
}

bool input_is_free() {
    static Display* const other = XOpenDisplay(nullptr);
    const Window root = DefaultRootWindow(other);
    const bool pointer = XGrabPointer(other, root, False, ButtonPressMask, GrabModeAsync,
                                      GrabModeAsync, None, None, CurrentTime) == GrabSuccess;
    const bool keyboard =
        XGrabKeyboard(other, root, False, GrabModeAsync, GrabModeAsync, CurrentTime) == GrabSuccess;
    XUngrabPointer(other, CurrentTime);
    XUngrabKeyboard(other, CurrentTime);
    XSync(other, False);
    return pointer && keyboard;
}

void take_events() {
    while ([NSApp nextEventMatchingMask:NSAnyEventMask
                              untilDate:[NSDate distantPast]
                                 inMode:NSDefaultRunLoopMode
                                dequeue:YES]) {
    }
}

void pop_up(TriedMenu* menu, Hand& hand, uint8_t how) {
    hand.move(40 + how, 40 + how / 2);
    if (how & 1) hand.press(3, true);
    XSync(toolkit_display(), False);
    NSEvent* event = right_click_event(NSMakePoint(40 + how, 100), 0);
    [NSMenu popUpContextMenu:[menu root] withEvent:how & 2 ? event : nil forView:nil];
    hand.let_go();
    require(![MenuSession current] && !MenuRun::current(), "no menu is open");
    require(input_is_free(), "mouse and keyboard are free");
    [menu checkClosed];
}

BOOL one_level() { return YES; }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    @autoreleasepool {
        HandWatcher* const hands = watcher();
        const uint8_t how = input.byte();
        TriedMenu* menu = [[[TriedMenu alloc] initLong:(how & 4) != 0] autorelease];
        [NSMenu setEscapeQuestion:how & 8 ? one_level : nullptr];
        Hand hand(input, menu);
        hands->_hand = &hand;
        for (int i = 0; i < most_popups && (i == 0 || hand.has_steps()); i++) {
            pop_up(menu, hand, how);
        }
        hands->_hand = nullptr;
        take_events();
    }
    @autoreleasepool {
        for (NSWindow* window in [NSApp windows]) {
            require(![[window title] isEqualToString:@"Menu"], "no window is left");
        }
    }
    return 0;
}
