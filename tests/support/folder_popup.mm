#include "support/folder_popup.h"

#include <GNUstepGUI/GSDisplayServer.h>
#include <X11/Xlib.h>
#include <host/menu_tracking.h>
#include <stdio.h>
#include <unistd.h>

#include "finderkit/context_menu.h"
#include "finderkit/plug_in.h"
#include "menus/menu_run.h"
#include "support/right_click.h"

@implementation FolderPopup

- (instancetype)initWithFolder:(const std::string&)folder {
    if ((self = [super init])) _folder = new std::string(folder);
    return self;
}

- (void)dealloc {
    delete _folder;
    [super dealloc];
}

- (void)menuNeedsUpdate:(NSMenu*)menu {
    if (menu != _menu || [_menu nodes]) return;
    const TFENodeVector nodes = {{{*_folder}}};
    [_menu configureWithNodes:&nodes windowController:nil container:NO];
}

// Called by the first timer of the tracking: the menu is shown and has the pointer.
- (void)isTracking:(NSTimer*)timer {
    (void)timer;
    [self track:[MenuSession current]];
}

- (void)track:(MenuSession*)session {
    [session cancel];
}

- (void)run {
    @autoreleasepool {
        _menu = [[TContextMenu alloc] initWithTitle:@""];
        [_menu setAutoenablesItems:NO];
        [_menu setDelegate:(id)self];
        test::while_tracking(0, self, @selector(isTracking:), NO);
        [NSMenu popUpContextMenu:_menu
                       withEvent:test::right_click(NSMakePoint(100, 400))
                         forView:nil];
        [_menu setDelegate:nil];
        [_menu release];
    }
}

@end

void open_level(MenuSession* session, NSMenuItem* item) {
    if ([session openSubmenuOfItem:item]) return;
    while ([[session levels] indexOfObjectIdenticalTo:[item submenu]] == NSNotFound) {
        usleep(10000);
        MenuRun::current()->run_timers();
    }
}

NSMenuItem* open_first_submenu(MenuSession* session) {
    NSMenuItem* holder = [[[session rootMenu] itemArray] objectAtIndex:0];
    open_level(session, holder);
    show_open_levels();
    return [[[holder submenu] itemArray] lastObject];
}

void show_open_levels() {
    MenuRun::current()->synchronize();
    XSync(static_cast<Display*>([GSCurrentServer() serverDevice]), False);
}

bool start_with_plug_in(const char* bundle) {
    [NSApplication sharedApplication];
    [NSApp finishLaunching];
    std::string problem;
    if (load_plug_in(bundle, &problem)) return true;
    fprintf(stderr, "%s\n", problem.c_str());
    return false;
}
