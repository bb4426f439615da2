#include "menus/DVDelvio+PreviewMenu.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "items/DVImageItem.h"
#include "items/DVMenu.h"
#include "menus/DVDelvio+Population.h"
#include "menus/DVDelvio+Proxy.h"
#include "plugin/menu_fixture.h"
#include "plugin/preview/images_alive.h"
#include "preview/DVDelvio+HoverPreview.h"

namespace {

class PreviewMenu : public test::MenuTest {
  protected:
    // The Option alternate of a file in the root menu, and its submenu.
    NSMenuItem* option_item(const std::string& path) {
        return test::alternate_of(select({path}), "file");
    }
    DVMenu* preview_of(const std::string& path) {
        return static_cast<DVMenu*>([option_item(path) submenu]);
    }
    static DVImageItem* image_item(DVMenu* menu) {
        return static_cast<DVImageItem*>([menu itemAtIndex:0]);
    }
    template <typename condition>
    static void run_until(condition done) {
        while (!done()) {
            [[NSRunLoop currentRunLoop] runMode:NSEventTrackingRunLoopMode
                                     beforeDate:[NSDate dateWithTimeIntervalSinceNow:0.05]];
        }
    }
};

}  // namespace

TEST_F(PreviewMenu, IsTheSubmenuOfAFilesOptionAlternate) {
    NSMenuItem* item = option_item(folder_.file("file"));
    EXPECT_EQ([item keyEquivalentModifierMask], 0x80000u);
    EXPECT_EQ([item tag], 1);
    DVMenu* menu = static_cast<DVMenu*>([item submenu]);
    EXPECT_STREQ([[menu title] UTF8String], "");
    EXPECT_TRUE([menu dvIsPreviewMenu]);
    EXPECT_FALSE([menu dvDidPopulate]);
    EXPECT_EQ([menu delegate], controller_);
    EXPECT_EQ([menu tree], [static_cast<DVMenuItem*>(item) tree]);
    EXPECT_EQ([menu numberOfItems], 0);
}

TEST_F(PreviewMenu, ThePictureComesWhileMenusTrackAndIsLogged) {
    DVMenu* menu = preview_of(folder_.file("file", test::plain_bytes));
    const std::string log = log_of([&] {
        [controller_ menuWillOpen:menu];
        run_until([&] { return [image_item(menu) image] != nil; });
    });
    EXPECT_EQ(log, "Delvio: Populating preview item\n"
                   "Delvio: Falling back to old-skool text preview\n"
                   "Delvio: Got preview image\n");
}

TEST_F(PreviewMenu, ADiscTurnsUntilThePictureIsThere) {
    DVMenu* menu = preview_of(folder_.file("file", test::plain_bytes));
    [controller_ menuWillOpen:menu];
    ASSERT_EQ([menu numberOfItems], 1);
    EXPECT_TRUE([image_item(menu) isKindOfClass:[DVImageItem class]]);
    EXPECT_NE([image_item(menu) view], nil);
    EXPECT_TRUE([menu dvDidPopulate]);
    run_until([&] { return [image_item(menu) image] != nil; });
    EXPECT_EQ([image_item(menu) view], nil);
    EXPECT_TRUE(NSEqualSizes([[image_item(menu) image] size], NSMakeSize(256, 256)));
}

TEST_F(PreviewMenu, ThePicturesImageIsReleased) {
    const int before = test::images_alive();
    DVMenu* menu = preview_of(folder_.file("file", test::plain_bytes));
    [controller_ menuWillOpen:menu];
    run_until([&] { return [image_item(menu) image] != nil; });
    EXPECT_EQ(test::images_alive(), before);
}

TEST_F(PreviewMenu, OpenedAgainItStartsNoNewWork) {
    const std::string path = folder_.file("file", test::plain_bytes);
    DVMenu* menu = preview_of(path);
    [controller_ menuWillOpen:menu];
    run_until([&] { return [image_item(menu) image] != nil; });
    NSImage* image = [image_item(menu) image];
    const NSUInteger owners = [menu retainCount];
    [controller_ menuWillOpen:menu];
    EXPECT_EQ([menu numberOfItems], 1);
    EXPECT_EQ([image_item(menu) image], image);
    EXPECT_EQ([menu retainCount], owners);
}

TEST_F(PreviewMenu, AFileThatCannotBeReadHasOneDisabledLine) {
    const std::string path = folder_.path("file");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    DVMenu* menu = preview_of(path);
    [controller_ menuWillOpen:menu];
    run_until([&] { return [[[menu itemAtIndex:0] title] length] > 0; });
    EXPECT_EQ(test::titles_of(menu), test::Titles({"No preview available"}));
    EXPECT_FALSE([[menu itemAtIndex:0] isEnabled]);
    EXPECT_EQ([[menu itemAtIndex:0] action], static_cast<SEL>(nullptr));
}

TEST_F(PreviewMenu, AFileThatIsRemovedMeanwhileHasNoPreview) {
    const std::string path = folder_.file("file", test::plain_bytes);
    DVMenu* menu = preview_of(path);
    unlink(path.c_str());
    [controller_ menuWillOpen:menu];
    run_until([&] { return [[[menu itemAtIndex:0] title] length] > 0; });
    EXPECT_EQ(test::titles_of(menu), test::Titles({"No preview available"}));
}

TEST_F(PreviewMenu, AHighlightedDiscThatGoesIsNoLongerLookedAt) {
    const std::string path = folder_.path("file");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    DVMenu* menu = preview_of(path);
    [controller_ menuWillOpen:menu];
    [controller_ menu:menu willHighlightItem:[menu itemAtIndex:0]];
    ASSERT_NE([controller_ previewItemURL], nil);
    run_until([&] { return [[[menu itemAtIndex:0] title] length] > 0; });
    EXPECT_EQ([controller_ previewItemURL], nil);
}

TEST_F(PreviewMenu, AMenuThatHasClosedStillGetsItsResult) {
    DVMenu* menu = [[preview_of(folder_.file("file", test::plain_bytes)) retain] autorelease];
    [controller_ menuWillOpen:menu];
    release();  // frees the trees while the picture is being made
    run_until([&] { return [image_item(menu) image] != nil; });
    EXPECT_NE([image_item(menu) image], nil);
}

TEST_F(PreviewMenu, AnotherSizeHoldsFromTheNextPreviewOn) {
    for (const int size : {64, 300}) {
        release();
        set("preview_size", size);
        DVMenu* menu = preview_of(folder_.file("file", test::plain_bytes));
        [controller_ menuWillOpen:menu];
        run_until([&] { return [image_item(menu) image] != nil; });
        EXPECT_EQ([[image_item(menu) image] size].width, size);
    }
}
