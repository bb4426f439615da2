// A popup in a running program: from the call that opens the menu until the menu is on the screen
// and answers to the pointer.
#include <AppKit/AppKit.h>
#include <host/menu_tracking.h>

#include "bench/harness.h"
#include "bench/test_folder.h"
#include "support/folder_popup.h"

namespace {

const int rounds = 30;
const double milliseconds_limit = 3;

bench::Moment begin;
bench::Times times;

}  // namespace

// Ends its menu as soon as it tracks.
@interface ShortPopup : FolderPopup
@end

@implementation ShortPopup

- (void)run {
    begin = bench::Moment();
    [super run];
}

- (void)track:(MenuSession*)session {
    show_open_levels();
    bench::add_span(&times, begin);
    [session cancel];
}

@end

int main() {
    @autoreleasepool {
        if (!start_with_plug_in(DELVIO_BUNDLE)) return 1;
        const bench::TestFolder folder(10);
        ShortPopup* popup = [[[ShortPopup alloc] initWithFolder:folder.path()] autorelease];
        [popup run];
        times = {};
        for (int round = 0; round < rounds; round++) [popup run];
        bench::print_times("popup in a running program", 10, "menu of a folder", times);
        bench::note("processor time of a popup in a running program", 10,
                    bench::median(times.processor) * 1e3, "ms", milliseconds_limit);
    }
    return bench::status();
}
