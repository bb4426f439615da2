#include "gworkspace/question_keyboard.h"

#include <AppKit/AppKit.h>

#include "x11/server_windows.h"

namespace {

constexpr NSTimeInterval watch_interval = 0.1;

}  // namespace

@interface QuestionKeyboard : NSObject {
  @private
    NSWindow* _given;  // not retained; only compared
}
- (void)watch:(NSTimer*)timer;
@end

@implementation QuestionKeyboard

// Gives each question the focus once; afterwards the user may move the focus anywhere.
- (void)watch:(NSTimer*)timer {
    (void)timer;
    NSWindow* question = [NSApp modalWindow];
    if (![question isVisible] || [question isKeyWindow]) return;
    if (window_has_keyboard(question)) {
        // GNUstep heard too late that an earlier window lost the focus.
        [NSApp activateIgnoringOtherApps:YES];
        [question makeKeyWindow];
    } else if (question != _given) {
        _given = question;
        give_keyboard_to_window(question);
    }
}

@end

void GiveQuestionsTheKeyboard() {
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
