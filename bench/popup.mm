// A popup in a running program: from the call that opens the menu until the menu is on the screen
// and answers to the pointer.
#include <AppKit/AppKit.h>
#include <GNUstepGUI/GSDisplayServer.h>
#include <X11/Xlib.h>
#include <host/menu_tracking.h>
#include <stdio.h>

#include "bench/harness.h"
#include "bench/test_folder.h"
#include "finderkit/context_menu.h"
#include "finderkit/plug_in.h"
#include "support/right_click.h"

namespace {

const int rounds = 30;
const double milliseconds_limit = 3;

}  // namespace

// Opens the contextual menu of a folder, with the plug-in's items, and ends it as soon as it
// tracks.
@interface Popup : NSObject {
  @private
    std::string* _folder;
    TContextMenu* _menu;
    bench::Times* _times;
    double _wall, _processor;
}
- (instancetype)initWithFolder:(const std::string&)folder times:(bench::Times*)times;
- (void)run;
@end

@implementation Popup

- (instancetype)initWithFolder:(const std::string&)folder times:(bench::Times*)times {
    if (!(self = [super init])) return nil;
    _folder = new std::string(folder);
    _times = times;
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
- (void)isShown:(NSTimer*)timer {
    (void)timer;
    XSync(static_cast<Display*>([GSCurrentServer() serverDevice]), False);
    _times->wall.push_back(bench::now() - _wall);
    _times->processor.push_back(bench::processor_time() - _processor);
    [[MenuSession current] cancel];
}

- (void)run {
    @autoreleasepool {
        _menu = [[TContextMenu alloc] initWithTitle:@""];
        [_menu setAutoenablesItems:NO];
        [(NSMenu*)_menu setDelegate:(id)self];
        NSEvent* event = test::right_click(NSMakePoint(100, 400));
        _processor = bench::processor_time();
        _wall = bench::now();
        test::while_tracking(0, self, @selector(isShown:), NO);
        [NSMenu popUpContextMenu:_menu withEvent:event forView:nil];
        [(NSMenu*)_menu setDelegate:nil];
        [_menu release];
    }
}

@end

int main() {
    @autoreleasepool {
        [NSApplication sharedApplication];
        [NSApp finishLaunching];
        std::string problem;
        if (!load_plug_in(DELVIO_BUNDLE, &problem)) {
            fprintf(stderr, "bench_popup: %s\n", problem.c_str());
            return 1;
        }
        const bench::TestFolder folder(10);
        bench::Times times;
        Popup* popup = [[[Popup alloc] initWithFolder:folder.path() times:&times] autorelease];
        [popup run];
        times = {};
        for (int round = 0; round < rounds; round++) [popup run];
        bench::print_times("popup in a running program", 10, "menu of a folder", times);
        bench::note("processor time of a popup in a running program", 10,
                    bench::median(times.processor) * 1e3, "ms", milliseconds_limit);
    }
    return bench::status();
}
