// Observes once what each of GNUstep's menus would observe for itself, and tells the menus that it
// can concern: the main menu and its submenus.
#include "menu_classes/menu_storage.h"

@interface NSMenu (StockLaunch)
- (void)_showOnActivateApp:(NSNotification*)notification;
- (void)applicationDidFinishLaunching:(NSNotification*)notification;
@end

@implementation MenuLaunchObserver

static MenuLaunchObserver* observer;

void observe_launch() {
    if (!observer) [MenuLaunchObserver start];
}

+ (void)start {
    observer = [self new];
    NSNotificationCenter* center = [NSNotificationCenter defaultCenter];
    [center addObserver:observer
               selector:@selector(didFinishLaunching:)
                   name:NSApplicationDidFinishLaunchingNotification
                 object:nil];
    [center addObserver:observer
               selector:@selector(willBecomeActive:)
                   name:NSApplicationWillBecomeActiveNotification
                 object:nil];
}

- (void)tell:(NSMenu*)menu aboutLaunch:(NSNotification*)notification {
    [menu applicationDidFinishLaunching:notification];
    for (NSMenuItem* item in [NSArray arrayWithArray:[menu itemArray]]) {
        if ([item hasSubmenu]) [self tell:[item submenu] aboutLaunch:notification];
    }
}

- (void)didFinishLaunching:(NSNotification*)notification {
    if ([NSApp mainMenu]) [self tell:[NSApp mainMenu] aboutLaunch:notification];
}

- (void)willBecomeActive:(NSNotification*)notification {
    [[NSApp mainMenu] _showOnActivateApp:notification];
}

@end
