// What the user sees of a menu while its levels open, are browsed and scroll: each picture that the
// program sends to the screen is looked at, so nothing depends on when somebody looks.
#include <AppKit/AppKit.h>
#include <CoreFoundation/CoreFoundation.h>
#include <GNUstepGUI/GSDisplayServer.h>
#include <gtest/gtest.h>
#include <host/menu_tracking.h>
#include <objc/runtime.h>

#include <algorithm>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "finderkit/settings_file.h"
#include "menus/menu_run.h"
#include "platform/menu_script.h"
#include "support/folder_popup.h"
#include "support/steps.h"
#include "support/temp_folder.h"
#include "support/x_input.h"
#include "x11/toolkit_display.h"

#include <X11/Xlib.h>  // its macros would break the test library's headers

namespace {

using Picture = std::vector<unsigned long>;

std::function<void()> look;  // after each picture that was sent

// All that the screen has shown of one row.
struct SeenRow {
    std::string title;
    std::set<Picture> pictures;
    bool was_highlighted = false, icon_is_missing = false;
};

bool is_one_colour(const Picture& pixels) {
    return std::all_of(pixels.begin(), pixels.end(),
                       [&](unsigned long pixel) { return pixel == pixels.front(); });
}

// A window draws before the server shows it.
bool is_on_screen(const MenuLevel& level) {
    XWindowAttributes window = {};
    return level.is_shown() &&
           XGetWindowAttributes(toolkit_display(), server_window(level.window()), &window) &&
           window.map_state == IsViewable;
}

class Watch {
  public:
    // Looks at every row that a level shows whole.
    void take_frame() {
        const MenuRun* run = MenuRun::current();
        if (!run) return;
        frames++;
        for (const auto& level : run->levels()) {
            if (is_on_screen(*level)) take_level(*level);
        }
    }
    std::map<std::pair<unsigned, int>, SeenRow> rows;
    int frames = 0;

  private:
    void take_level(const MenuLevel& level) {
        NSMenuItem* highlighted = [[MenuSession current] highlightedItemOfMenu:level.menu()];
        const std::vector<MenuRow>& all = level.layout().rows();
        for (size_t i = level.layout().first_row_below(level.scroll()); i < all.size(); i++) {
            const int row = static_cast<int>(i);
            const Area area = level.row_area(row);
            if (area.top >= level.panel().bottom()) break;
            if ([all[i].item isSeparatorItem] || !is_whole(level, area)) continue;
            SeenRow& seen = rows[{level.number(), row}];
            seen.title = [[all[i].item title] UTF8String];
            seen.was_highlighted = seen.was_highlighted || all[i].item == highlighted;
            // Levels cover one another's edges.
            const int edge = level.layout().look().inset;
            seen.pictures.insert(
                pixels({area.left + edge, area.top, area.width - 2 * edge, area.height}));
            if (![all[i].item image]) continue;
            const Area icon = {area.left + level.layout().image_left(), area.top + 4, 16,
                               area.height - 8};
            seen.icon_is_missing = seen.icon_is_missing || is_one_colour(pixels(icon));
        }
    }
    // Not below the strips at the edges, nor in a rounded corner.
    static bool is_whole(const MenuLevel& level, const Area& area) {
        const int middle = area.left + area.width / 2;
        return area.top >= level.panel().top && area.bottom() <= level.panel().bottom() &&
               !level.edge_at({middle, area.top}) && !level.edge_at({middle, area.bottom() - 1});
    }
    Picture pixels(const Area& area) {
        return hand_.pixels(area.left, area.top, area.width, area.height);
    }
    test::XInput hand_;
};

}  // namespace

// Both what a window draws and what the server asks for again reach the screen here.
@interface NSGraphicsContext (Watched)
+ (void)handleWatchedRect:(NSRect)rect forDriver:(void*)driver;
@end

@implementation NSGraphicsContext (Watched)
+ (void)handleWatchedRect:(NSRect)rect forDriver:(void*)driver {
    [self handleWatchedRect:rect forDriver:driver];
    XSync(toolkit_display(), False);
    if (look) look();
}
@end

// A folder's menu that the steps close.
@interface WatchedPopup : FolderPopup
@end

@implementation WatchedPopup
- (void)track:(MenuSession*)session {
    (void)session;
}
@end

namespace {

struct MenuFrames : testing::Test {
    static void SetUpTestSuite() {
        // No preview may cover a row.
        const CFStringRef domain = (CFStringRef)[NSString stringWithUTF8String:settings_domain];
        CFPreferencesSetAppValue((CFStringRef) @"hoverPreviews", @0, domain);
        CFPreferencesAppSynchronize(domain);
        ASSERT_TRUE(start_with_plug_in(DELVIO_BUNDLE));
        const Class context = [GSCurrentContext() class];
        Method sent =
            class_getClassMethod(context, sel_registerName("handleExposeRect:forDriver:"));
        Method watched = class_getClassMethod(context, @selector(handleWatchedRect:forDriver:));
        ASSERT_TRUE(sent && watched);
        method_exchangeImplementations(sent, watched);
        // What a level that is not painted shows.
        XSetWindowBackground(toolkit_display(), DefaultRootWindow(toolkit_display()), 0x305070);
        XClearWindow(toolkit_display(), DefaultRootWindow(toolkit_display()));
    }
    void TearDown() override { look = nullptr; }

    void when(const std::string& what, const std::function<bool()>& condition,
              const std::function<void()>& action) {
        steps.when(
            what,
            [condition] {
                MenuSession* session = [MenuSession current];
                return session && ![session isEnding] && condition();
            },
            action);
    }
    void run() {
        look = [this] { watch.take_frame(); };
        WatchedPopup* popup =
            [[[WatchedPopup alloc] initWithFolder:folder.path("top")] autorelease];
        steps.run_beside([popup] { [popup run]; });
    }
    void expect_steady_rows() const {
        for (const auto& [place, row] : watch.rows) {
            EXPECT_FALSE(row.icon_is_missing) << row.title;
            // Plain, highlighted, and highlighted as the way to a deeper level.
            EXPECT_LE(row.pictures.size(), row.was_highlighted ? 3u : 1u)
                << row.title << " in the menu number " << place.first;
        }
    }
    void point_at(size_t level, NSString* title) {
        const MenuPoint point = row_point(level, title);
        hand.move(point.x, point.y);
    }

    test::TempFolder folder;
    test::XInput hand;
    test::Steps steps;
    Watch watch;
};

bool is_scrolled(size_t level) { return level_is_shown(level) && shown_level(level).scroll() > 0; }

bool shows_last_row(size_t index) {
    if (!level_is_shown(index)) return false;
    const MenuLevel& level = shown_level(index);
    const int last = static_cast<int>(level.layout().rows().size()) - 1;
    return level.row_area(last).bottom() <= level.panel().bottom();
}

TEST_F(MenuFrames, ARowThatWasPaintedStaysAsItIsWhileLevelsOpenAndScroll) {
    folder.folder("top/a folder/inner");
    folder.file("top/a folder/inner/deep.txt", "text\n");
    folder.file("top/a folder/second.pdf", "%PDF-1.4\n");
    const char* const extensions[] = {"txt", "pdf", "jpg", "c", "desktop", "zip", "odt"};
    for (int number = 0; number < 90; number++) {
        folder.file("top/file " + std::to_string(100 + number) + "." + extensions[number % 7],
                    "[Desktop Entry]\nType=Application\nName=Entry\nExec=true\nIcon=folder\n");
    }

    when(
        "the menu", [] { return level_is_shown(0); }, [&] { point_at(0, @"top"); });
    when(
        "the folder's level", [] { return level_is_shown(1); }, [&] { point_at(1, @"a folder"); });
    when(
        "a level within", [] { return level_is_shown(2); }, [&] { point_at(2, @"inner"); });
    when(
        "the deepest level", [] { return level_is_shown(3); },
        [&] { point_at(1, @"file 100.txt"); });
    when(
        "the way back", [] { return shown_levels() == 2; },
        [&] {
            for (int notch = 0; notch < 4; notch++) hand.click(5);
        });
    when(
        "a scrolled level", [] { return is_scrolled(1); }, [&] { hand.key("End"); });
    when(
        "the end", [] { return shows_last_row(1); }, [&] { hand.key("Home"); });
    when(
        "the beginning", [] { return shown_levels() == 2 && !is_scrolled(1); },
        [&] { hand.key("Escape"); });
    run();

    expect_steady_rows();
    EXPECT_GT(watch.frames, 8);
    EXPECT_GT(watch.rows.size(), 60u) << "rows of four levels, and of a level's beginning and end";
}

}  // namespace
