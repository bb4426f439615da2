#include "popup/drags.h"

#include <AppKit/AppKit.h>
#include <host/file_drags.h>

#include "command/exit_signals.h"

namespace {

constexpr NSTimeInterval turn = 0.02;
constexpr NSTimeInterval longest_fetch = 10;

NSDate* after(NSTimeInterval time) { return [NSDate dateWithTimeIntervalSinceNow:time]; }

}  // namespace

void finish_drags() {
    if (![NSEvent pressedMouseButtons]) return;
    while ([NSEvent pressedMouseButtons] && !signal_caught()) {
        @autoreleasepool {
            [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode beforeDate:after(turn)];
        }
    }
    finish_file_drops(longest_fetch);
}
