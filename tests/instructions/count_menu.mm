// Opens and closes a folder's level a few times under valgrind, which counts the instructions.
// COUNT_FOLDER names the folder that contains the level's folder, COUNT_PLUG_IN the plug-in. (These
// are not arguments, because the toolkit opens files among its arguments.)
#include <AppKit/AppKit.h>
#include <host/menu_tracking.h>
#include <stdio.h>
#include <stdlib.h>
#include <valgrind/callgrind.h>

#include <string>

#include "finderkit/context_menu.h"
#include "finderkit/plug_in.h"
#include "menus/menu_run.h"
#include "support/right_click.h"

@interface Popup : NSObject {
  @private
    const char* _folder;
    TContextMenu* _menu;
}
- (instancetype)initWithFolder:(const char*)folder;
- (void)run;
@end

@implementation Popup

- (instancetype)initWithFolder:(const char*)folder {
    if ((self = [super init])) _folder = folder;
    return self;
}

- (void)menuNeedsUpdate:(NSMenu*)menu {
    if (menu != _menu || [_menu nodes]) return;
    const TFENodeVector nodes = {{{_folder}}};
    [_menu configureWithNodes:&nodes windowController:nil container:NO];
}

- (void)openLevel:(NSTimer*)timer {
    (void)timer;
    MenuSession* session = [MenuSession current];
    NSMenuItem* holder = [[[session rootMenu] itemArray] objectAtIndex:0];
    [session openSubmenuOfItem:holder];
    MenuRun::current()->synchronize();
    NSMenuItem* level = [[[holder submenu] itemArray] lastObject];
    CALLGRIND_DUMP_STATS_AT("-");
    @autoreleasepool {
        [session openSubmenuOfItem:level];
    }
    CALLGRIND_DUMP_STATS_AT("level, scanned and filled");
    MenuRun::current()->synchronize();
    CALLGRIND_DUMP_STATS_AT("level, shown");
    [session cancel];
}

- (void)run {
    @autoreleasepool {
        _menu = [[TContextMenu alloc] initWithTitle:@""];
        [_menu setAutoenablesItems:NO];
        [(NSMenu*)_menu setDelegate:(id)self];
        test::while_tracking(0.01, self, @selector(openLevel:), NO);
        [NSMenu popUpContextMenu:_menu
                       withEvent:test::right_click(NSMakePoint(100, 400))
                         forView:nil];
        [(NSMenu*)_menu setDelegate:nil];
        [_menu release];
    }
    CALLGRIND_DUMP_STATS_AT("level, closed");
}

@end

int main() {
    const char *plug_in = getenv("COUNT_PLUG_IN"), *folder = getenv("COUNT_FOLDER");
    if (!plug_in || !folder) return 2;
    @autoreleasepool {
        [NSApplication sharedApplication];
        [NSApp finishLaunching];
        std::string problem;
        if (!load_plug_in(plug_in, &problem)) {
            fprintf(stderr, "count_menu: %s\n", problem.c_str());
            return 1;
        }
        Popup* popup = [[[Popup alloc] initWithFolder:folder] autorelease];
        for (int round = 0; round < 4; round++) [popup run];
    }
}
