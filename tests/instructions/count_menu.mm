// Opens and closes a folder's level a few times under valgrind, which counts the instructions.
// COUNT_FOLDER names the folder that contains the level's folder, COUNT_PLUG_IN the plug-in. (These
// are not arguments, because the toolkit opens files among its arguments.)
#include <AppKit/AppKit.h>
#include <host/menu_tracking.h>
#include <stdlib.h>
#include <valgrind/callgrind.h>

#include "menus/menu_run.h"
#include "support/folder_popup.h"

@interface CountedPopup : FolderPopup
@end

@implementation CountedPopup

- (void)track:(MenuSession*)session {
    NSMenuItem* level = open_first_submenu(session);
    CALLGRIND_DUMP_STATS_AT("-");
    @autoreleasepool {
        open_level(session, level);
    }
    CALLGRIND_DUMP_STATS_AT("level, scanned and filled");
    MenuRun::current()->synchronize();
    CALLGRIND_DUMP_STATS_AT("level, shown");
    [session cancel];
}

- (void)run {
    [super run];
    CALLGRIND_DUMP_STATS_AT("level, closed");
}

@end

int main() {
    const char *plug_in = getenv("COUNT_PLUG_IN"), *folder = getenv("COUNT_FOLDER");
    if (!plug_in || !folder) return 2;
    @autoreleasepool {
        if (!start_with_plug_in(plug_in)) return 1;
        CountedPopup* popup = [[[CountedPopup alloc] initWithFolder:folder] autorelease];
        for (int round = 0; round < 4; round++) [popup run];
    }
}
