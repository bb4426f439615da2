// The smallest host of the plug-in: an example for a new one, and a test of all that a host needs.
#include <host/forced_preferences.h>
#include <host/menu_tracking.h>
#include <gtest/gtest.h>

#include "finderkit/context_menu.h"
#include "finderkit/file_operations.h"
#include "finderkit/finder_events.h"
#include "finderkit/item_marks.h"
#include "finderkit/plug_in.h"
#include "finderkit/settings_file.h"
#include "operations/engine.h"
#include "operations_ui/operation_window.h"
#include "support/app.h"
#include "support/temp_folder.h"

#include <unistd.h>

#include <map>

// The delegate of the contextual menu. It is called several times for one popup, and fills the menu
// the first time; files that are set before the popup are ignored.
@interface SmallestHost : NSObject {
  @public
    TFENodeVector files;
}
@end

@implementation SmallestHost

- (void)menuNeedsUpdate:(NSMenu*)menu {
    TContextMenu* own = (TContextMenu*)menu;
    if ([own nodes]) return;
    [own removeAllItems];
    [own configureWithNodes:&files windowController:nil container:NO];
    [own addItemWithTitle:@"A row of the host" action:NULL keyEquivalent:@""];
}

@end

namespace {

// The engine carries out file operations, and shows its own windows.
void offer_file_operations() {
    FileOperationService service;
    service.carrier = operations::make_engine();
    service.observer = [](const operations::Request& request) {
        return operations::make_window_observer(request, [](const operations::Report&) {});
    };
    set_file_operation_service(service);
}

// Call this once, when the application object is there.
bool start_host(std::string* problem) {
    offer_file_operations();
    const std::string bundle = find_plug_in(problem);
    return !bundle.empty() && answer_finder_events(problem) && load_plug_in(bundle, problem);
}

void pop_up_menu(const std::vector<std::string>& files, NSEvent* event, NSView* view) {
    SmallestHost* host = [[SmallestHost new] autorelease];
    for (const std::string& file : files) host->files.nodes.push_back({file});
    TContextMenu* menu = [[[TContextMenu alloc] initWithTitle:@""] autorelease];
    [(NSMenu*)menu setDelegate:(id)host];
    [NSMenu popUpContextMenu:menu withEvent:event forView:view];
    [(NSMenu*)menu setDelegate:nil];
}

}  // namespace

// Reads the rows of the menu and of the first submenu, and shows nothing.
@interface RowReader : NSObject <MenuTracker> {
  @public
    std::vector<std::string> rows;
    std::map<std::string, MenuMark> marks;
}
@end

@implementation RowReader

- (void)readMenu:(NSMenu*)menu {
    for (NSMenuItem* item in [MenuSession visibleItemsOfMenu:menu withModifiers:0]) {
        if ([item isSeparatorItem]) continue;
        rows.push_back([[item title] UTF8String]);
        marks[[[item title] UTF8String]] = mark_of_item(item);
    }
}

- (void)trackSession:(MenuSession*)session
               event:(NSEvent*)event
                view:(NSView*)view
                font:(NSFont*)font {
    (void)event, (void)view, (void)font;
    [session open];
    NSMenu* root = [session rootMenu];
    [self readMenu:root];
    NSMenuItem* papers = static_cast<NSMenuItem*>([root itemWithTitle:@"Papers"]);
    [session openSubmenuOfItem:papers];
    if ([[session levels] count] > 1) [self readMenu:[[session levels] objectAtIndex:1]];
    [session close];
}

@end

static void expect_started() {
    static std::string problem;
    static const bool started = (test::start_application(), start_host(&problem));
    ASSERT_TRUE(started) << problem;
}

TEST(SmallestHost, ShowsTheFilesOfAFolderAboveItsOwnRow) {
    expect_started();
    test::TempFolder folder;
    folder.folder("Papers");
    folder.file("Papers/letter.txt", "text");

    RowReader* reader = [[RowReader new] autorelease];
    [NSMenu setContextMenuTracker:reader];
    pop_up_menu({folder.path("Papers")}, nil, nil);
    [NSMenu setContextMenuTracker:nil];

    ASSERT_GE(reader->rows.size(), 3u);
    EXPECT_EQ(reader->rows[0], "Papers");
    EXPECT_EQ(reader->rows[1], "A row of the host");
    EXPECT_EQ(reader->rows.back(), "letter.txt");
}

TEST(SmallestHost, MarksTheUsersFoldersAndLinks) {
    expect_started();
    test::TempFolder folder;
    folder.folder("Papers/plain folder");
    folder.folder("Chosen");
    folder.file("Papers/letter.txt", "text");
    ASSERT_EQ(symlink(folder.path("Chosen").c_str(), folder.path("Papers/to folder").c_str()), 0);
    ASSERT_EQ(symlink("letter.txt", folder.path("Papers/to file").c_str()), 0);
    NSArray* chosen = @[ [NSString stringWithUTF8String:folder.path("Chosen").c_str()] ];
    force_preference(CFSTR("folders"), chosen, (CFStringRef) @(settings_domain));

    RowReader* reader = [[RowReader new] autorelease];
    [NSMenu setContextMenuTracker:reader];
    pop_up_menu({folder.path("Papers")}, nil, nil);
    [NSMenu setContextMenuTracker:nil];
    force_preference(CFSTR("folders"), nullptr, (CFStringRef) @(settings_domain));

    const std::map<std::string, MenuMark> expected = {{"Chosen", menu_mark_bookmark},
                                                      {"Papers", menu_mark_none},
                                                      {"A row of the host", menu_mark_none},
                                                      {"plain folder", menu_mark_none},
                                                      {"to folder", menu_mark_link},
                                                      {"letter.txt", menu_mark_none},
                                                      {"to file", menu_mark_link}};
    EXPECT_EQ(reader->marks, expected);
}
