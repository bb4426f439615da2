#include "gworkspace/question_keyboard.h"

#include <AppKit/AppKit.h>

#include "x11/server_windows.h"

namespace {

constexpr NSTimeInterval watch_interval = 0.1;

bool own_window_has_keyboard() {
    for (NSWindow* window in [NSApp windows]) {
        if ([window isVisible] && window_has_keyboard(window)) return true;
    }
    return false;
}

}  // namespace

@interface QuestionKeyboard : NSObject
- (void)watch:(NSTimer*)timer;
@end

@implementation QuestionKeyboard

// Where the user takes the keyboard to another program is the user's affair; in this one nothing
// but the question can be answered.
- (void)watch:(NSTimer*)timer {
    (void)timer;
    NSWindow* question = [NSApp modalWindow];
    if (![question isVisible]) return;
    if (!window_has_keyboard(question)) {
        if (own_window_has_keyboard()) give_keyboard_to_window(question);
    } else if (![question isKeyWindow]) {
        // GNUstep has heard too late that an earlier window lost it.
        [NSApp activateIgnoringOtherApps:YES];
        [question makeKeyWindow];
    }
}

@end

void give_questions_the_keyboard() {
    static QuestionKeyboard* keyboard = nil;
    if (keyboard) return;
    keyboard = [QuestionKeyboard new];
    NSTimer* timer = [NSTimer timerWithTimeInterval:watch_interval
                                             target:keyboard
                                           selector:@selector(watch:)
                                           userInfo:nil
                                            repeats:YES];
    // The timer runs only while a question is open.
    [[NSRunLoop currentRunLoop] addTimer:timer forMode:NSModalPanelRunLoopMode];
}
