// What the Mac's compiler knows in neither word size, or in one alone.
#include <AppKit/AppKit.h>

// The 32-bit run time has no instance variables but those of the class's interface.
@interface Small : NSObject
@property (assign) int number;
@end

@implementation Small
// i386-error@+1 {{synthesized property 'number' must either be named the same as a compatible}}
@synthesize number;
@end

void messages(NSMenu* menu, NSWindow* window) {
    // all-error@+1 {{instance method '-rearrange' not found}}
    [menu rearrange];
    // all-error@+1 {{cannot initialize a parameter of type 'CGFloat'}}
    [window setAlphaValue:menu];
}
