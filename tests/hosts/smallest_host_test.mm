// The smallest host of the plug-in: an example for a new one, and a test of all that a host needs.
#include <host/menu_tracking.h>
#include <gtest/gtest.h>

#include "finderkit/context_menu.h"
#include "finderkit/file_operations.h"
#include "finderkit/finder_events.h"
#include "finderkit/plug_in.h"
#include "operations/engine.h"
#include "operations_ui/operation_window.h"
#include "support/app.h"
#include "support/temp_folder.h"

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
}
@end

@implementation RowReader

- (void)readMenu:(NSMenu*)menu {
    for (NSMenuItem* item in [MenuSession visibleItemsOfMenu:menu withModifiers:0]) {
        if (![item isSeparatorItem]) rows.push_back([[item title] UTF8String]);
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
    [session openSubmenuOfItem:[root itemAtIndex:0]];
    if ([[session levels] count] > 1) [self readMenu:[[session levels] objectAtIndex:1]];
    [session close];
}

@end

TEST(SmallestHost, ShowsTheFilesOfAFolderAboveItsOwnRow) {
    test::start_application();
    test::TempFolder folder;
    folder.folder("Papers");
    folder.file("Papers/letter.txt", "text");
    std::string problem;
    ASSERT_TRUE(start_host(&problem)) << problem;

    RowReader* reader = [[RowReader new] autorelease];
    [NSMenu setContextMenuTracker:reader];
    pop_up_menu({folder.path("Papers")}, nil, nil);
    [NSMenu setContextMenuTracker:nil];

    ASSERT_GE(reader->rows.size(), 3u);
    EXPECT_EQ(reader->rows[0], "Papers");
    EXPECT_EQ(reader->rows[1], "A row of the host");
    EXPECT_EQ(reader->rows.back(), "letter.txt");
}
