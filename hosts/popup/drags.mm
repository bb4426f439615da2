#include "popup/drags.h"

#include <AppKit/AppKit.h>
#include <AppKit/FileDrags.h>

#include "popup/exit_signals.h"

namespace {

constexpr NSTimeInterval turn = 0.02;
constexpr NSTimeInterval longest_fetch = 10;

}  // namespace

void FinishDrags() {
    if (![NSEvent pressedMouseButtons]) return;
    while ([NSEvent pressedMouseButtons] && !CaughtSignal()) {
        @autoreleasepool {
            [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode
                                     beforeDate:[NSDate dateWithTimeIntervalSinceNow:turn]];
        }
    }
    FinishFileDrops(longest_fetch);
}
