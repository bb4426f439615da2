#include "preview/NSWindow+Fading.h"

namespace {

constexpr NSTimeInterval seconds_to_order_out = 1.0;

}  // namespace

@implementation NSWindow (DVWindowAdditions)

- (void)dvOrderFront:(id)sender {
    [self setAlphaValue:0];
    [self orderFront:sender];
    [[self animator] setAlphaValue:1];
}

- (void)dvOrderOut:(id)sender {
    [[self animator] setAlphaValue:0];
    [self performSelector:@selector(orderOut:) withObject:sender afterDelay:seconds_to_order_out];
}

@end
