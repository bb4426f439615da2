// A menu's delegate has to say that it is one.
#include <AppKit/AppKit.h>

@interface Silent : NSObject
- (void)menuWillOpen:(NSMenu*)menu;
@end

@interface Declared : NSObject <NSMenuDelegate>
@end

void set_delegates(NSMenu* menu, Silent* silent, Declared* declared, id anything) {
    // all-error@+1 {{incompatible pointer types sending 'Silent *'}}
    [menu setDelegate:silent];
    [menu setDelegate:declared];
    [menu setDelegate:anything];
}
