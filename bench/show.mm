// The first paint of a folder's level beside the scan of that folder: from the moment at which the
// submenu is asked to open until its rows are on the screen, scan and items included.
#include <AppKit/AppKit.h>
#include <host/menu_tracking.h>
#include <GNUstepGUI/GSDisplayServer.h>
#include <X11/Xlib.h>
#include <stdio.h>

#include <string>
#include <vector>

#include "bench/harness.h"
#include "bench/test_folder.h"
#include "finderkit/context_menu.h"
#include "finderkit/plug_in.h"
#include "menus/menu_run.h"
#include "support/right_click.h"
#include "tree/dv_scan.h"
#include "tree/dv_tree.h"

namespace {

const double paint_limit = 3;

}  // namespace

// One popup for a folder: opens its level, notes how long that took, closes.
@interface Popup : NSObject {
  @private
    std::string* _folder;
    TContextMenu* _menu;
    double _seconds;
    NSUInteger _rows;
}
- (instancetype)initWithFolder:(const std::string&)folder;
- (double)run;
- (NSUInteger)rows;
@end

@implementation Popup

- (instancetype)initWithFolder:(const std::string&)folder {
    if ((self = [super init])) _folder = new std::string(folder);
    return self;
}

- (void)dealloc {
    delete _folder;
    [super dealloc];
}

- (NSUInteger)rows {
    return _rows;
}

- (void)menuNeedsUpdate:(NSMenu*)menu {
    if (menu != _menu || [_menu nodes]) return;
    const TFENodeVector nodes = {{{*_folder}}};
    [_menu configureWithNodes:&nodes windowController:nil container:NO];
}

- (void)openLevel:(NSTimer*)timer {
    (void)timer;
    MenuSession* session = [MenuSession current];
    NSMenuItem* item = [[[session rootMenu] itemArray] objectAtIndex:0];
    const double begin = bench::now();
    [session openSubmenuOfItem:item];
    menu_run_t::current()->synchronize();
    XSync(static_cast<Display*>([GSCurrentServer() serverDevice]), False);
    _seconds = bench::now() - begin;
    _rows = menu_run_t::current()->levels().back()->layout().rows().size();
    [session cancel];
}

- (double)run {
    @autoreleasepool {
        _menu = [[TContextMenu alloc] initWithTitle:@""];
        [_menu setAutoenablesItems:NO];
        [(NSMenu*)_menu setDelegate:(id)self];
        test::while_tracking(0.05, self, @selector(openLevel:), NO);
        [NSMenu popUpContextMenu:_menu
                       withEvent:test::right_click(NSMakePoint(100, 400))
                         forView:nil];
        [(NSMenu*)_menu setDelegate:nil];
        [_menu release];
    }
    return _seconds;
}

@end

namespace {

double scan(const std::string& path) {
    const double begin = bench::now();
    dv_tree_t* root = dv_build_tree(path.c_str(), 0, 1, 0, 0);
    const double seconds = bench::now() - begin;
    dv_free_tree(root);
    return seconds;
}

void race(int entries, int rounds) {
    const bench::TestFolder folder(entries);
    Popup* popup = [[[Popup alloc] initWithFolder:folder.path()] autorelease];
    std::vector<double> scans, paints;
    for (int round = 0; round <= rounds; round++) {
        const double scanned = scan(folder.path()), painted = [popup run];
        if (round == 0) continue;
        scans.push_back(scanned);
        paints.push_back(painted);
    }
    const double scanned = bench::median(scans), painted = bench::median(paints);
    printf("level of %d entries (%lu rows), medians of %d rounds\n", entries,
           static_cast<unsigned long>([popup rows]), rounds);
    printf("  scan alone                            %10.1f us  x 1.00\n", scanned * 1e6);
    printf("  open: scan, items, layout, paint      %10.1f us  x %.2f\n", painted * 1e6,
           painted / scanned);
    if (entries >= 10000) {
        bench::check("first paint of " + std::to_string(entries) + " entries to the scan",
                     painted / scanned, paint_limit);
    }
}

}  // namespace

int main() {
    @autoreleasepool {
        [NSApplication sharedApplication];
        [NSApp finishLaunching];
        std::string problem;
        if (!LoadPlugIn(DELVIO_BUNDLE, &problem)) {
            fprintf(stderr, "bench_show: %s\n", problem.c_str());
            return 1;
        }
        race(10, 25);
        race(1000, 15);
        race(10000, 9);
    }
    return bench::status();
}
