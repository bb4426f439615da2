// A folder's level as a user opens it: a folder inside the clicked one, not read before. The first
// paint is measured from the request to open its submenu until its rows are on the screen, scan and
// items included. The closing is measured until the popup has returned.
#include <AppKit/AppKit.h>
#include <host/menu_tracking.h>
#include <malloc.h>
#include <stdio.h>
#include <stdlib.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/harness.h"
#include "bench/test_folder.h"
#include "menus/menu_run.h"
#include "support/folder_popup.h"
#include "tree/dv_scan.h"
#include "tree/dv_tree.h"

namespace {

const double paint_limit = 3, growth_limit = 11;
const double small_level_milliseconds = 4, closing_milliseconds = 15;
const double row_bytes_limit = 900, most_kept = 0.1;

// The memory that the program has allocated.
double heap_bytes() {
    const struct mallinfo2 heap = mallinfo2();
    return static_cast<double>(heap.uordblks + heap.hblkhd);
}

// The memory that the program takes from the machine for itself.
double private_bytes() {
    FILE* file = fopen("/proc/self/smaps_rollup", "re");
    if (!file) throw std::runtime_error("cannot read /proc/self/smaps_rollup");
    char line[256];
    long kilobytes = 0;
    while (fgets(line, sizeof line, file)) {
        const char begin[] = "Private_Dirty:";
        if (strncmp(line, begin, strlen(begin)) != 0) continue;
        kilobytes = strtol(line + strlen(begin), nullptr, 10);
        break;
    }
    fclose(file);
    return static_cast<double>(kilobytes) * 1024;
}

struct Memory {
    double heap = heap_bytes(), resident = private_bytes();
};

// All items of the menu, including those that modifier keys bring.
struct LevelSize {
    size_t rows = 0, items = 0;
};

struct LevelTimes {
    bench::Times open, close;
    LevelSize size;
    std::vector<double> row_bytes, kept;
};

}  // namespace

// Opens the level of the measured folder, in the menu of the folder that contains it.
@interface LevelPopup : FolderPopup {
  @private
    LevelTimes* _times;
    bench::Moment _closing;
    Memory _before, _shown;
}
- (instancetype)initWithFolder:(const bench::TestFolder&)folder times:(LevelTimes*)times;
@end

@implementation LevelPopup

- (instancetype)initWithFolder:(const bench::TestFolder&)folder times:(LevelTimes*)times {
    if ((self = [super initWithFolder:folder.holder()])) _times = times;
    return self;
}

- (void)track:(MenuSession*)session {
    NSMenuItem* item = open_first_submenu(session);
    if (![[item title] isEqualToString:@"entries"]) throw std::runtime_error("no folder within");
    _before = Memory();
    {
        NSAutoreleasePool* turn = [NSAutoreleasePool new];
        const bench::Moment begin;
        open_level(session, item);
        show_open_levels();
        bench::add_span(&_times->open, begin);
        [turn release];
    }
    _times->size.rows = MenuRun::current()->levels().back()->layout().rows().size();
    _times->size.items = [[item submenu] numberOfItems];
    _shown = Memory();
    _closing = bench::Moment();
    [session cancel];
}

- (void)run {
    [super run];
    bench::add_span(&_times->close, _closing);
    // One turn of the run loop, in which a running program gives memory back.
    [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode beforeDate:[NSDate distantPast]];
    const Memory after;
    _times->row_bytes.push_back((_shown.heap - _before.heap) / _times->size.rows);
    const double taken = std::max(1.0, _shown.resident - _before.resident);
    _times->kept.push_back(std::max(0.0, after.resident - _before.resident) / taken);
}

@end

namespace {

void scan(const std::string& path, bench::Times* times) {
    const bench::Moment begin;
    dv_tree_t* root = dv_build_tree(path.c_str(), 0, 1, 0, 0);
    bench::add_span(times, begin);
    dv_free_tree(root);
}

// Medians of processor time, in seconds.
struct LevelCosts {
    double scan, open, close;
};

LevelCosts measure(int entries, int rounds) {
    const bench::TestFolder folder(entries);
    LevelTimes times, warm_up;
    bench::Times scans, first_scan;
    for (int round = 0; round <= rounds; round++) {
        scan(folder.path(), round ? &scans : &first_scan);
        LevelPopup* popup = [[LevelPopup alloc] initWithFolder:folder
                                                         times:round ? &times : &warm_up];
        [popup run];
        [popup release];
    }
    bench::print_times("scan of a folder alone", entries, "dv_build_tree", scans);
    printf("its level as a submenu: %zu rows, %zu items with alternates\n", times.size.rows,
           times.size.items);
    bench::print_times("opening its level", entries, "scan, items, layout, paint", times.open);
    bench::print_times("closing it", entries, "rows, items, trees", times.close);
    const bool large = entries >= 10000;
    bench::note("memory a row", entries, bench::median(times.row_bytes), "bytes",
                large ? row_bytes_limit : 0);
    bench::note("part of its memory that is kept after it has closed", entries,
                bench::median(times.kept), "of 1", large ? most_kept : 0);
    return {bench::median(scans.processor), bench::median(times.open.processor),
            bench::median(times.close.processor)};
}

}  // namespace

// With DELVIO_BENCH_LEVEL set to a size, runs only a few rounds of that size, for profiles. An
// argument would be taken as a file to open.
int main() {
    @autoreleasepool {
        if (!start_with_plug_in(DELVIO_BUNDLE)) return 1;
        if (const char* size = getenv("DELVIO_BENCH_LEVEL")) {
            measure(static_cast<int>(strtol(size, nullptr, 10)), 3);
            return bench::status();
        }
        measure(10, 25);
        const LevelCosts small = measure(100, 25);
        measure(1000, 15);
        const LevelCosts large = measure(10000, 9);
        const LevelCosts huge = measure(100000, 3);
        bench::note("first paint, processor time", 100, small.open * 1e3, "ms",
                    small_level_milliseconds);
        bench::check("first paint of 10000 entries to their scan", large.open / large.scan,
                     paint_limit);
        bench::check("first paint of 100000 entries to that of 10000", huge.open / large.open,
                     growth_limit);
        bench::note("closing, processor time", 10000, large.close * 1e3, "ms",
                    closing_milliseconds);
    }
    return bench::status();
}
