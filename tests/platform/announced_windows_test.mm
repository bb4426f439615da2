// What menus and the windows beside them announce to window managers and compositors.
#include <AppKit/AppKit.h>
#include <CoreGraphics/CoreGraphics.h>
#include <host/window_placement.h>
#include <gtest/gtest.h>

#include <optional>

#include "platform/menu_script.h"
#include "support/announced_window.h"
#include "support/app.h"

using test::AnnouncedWindow;

namespace {

class AnnouncedWindows : public testing::Test {
  protected:
    void SetUp() override {
        test::start_application();
        menu_ = [[NSMenu alloc] initWithTitle:@"root"];
        [menu_ addItemWithTitle:@"alpha" action:@selector(terminate:) keyEquivalent:@""];
        tip_ = [[NSWindow alloc] initWithContentRect:NSMakeRect(700, 100, 64, 64)
                                           styleMask:NSBorderlessWindowMask
                                             backing:NSBackingStoreBuffered
                                               defer:NO];
        [tip_ setReleasedWhenClosed:NO];
        [tip_ setLevel:CGWindowLevelForKey(kCGPopUpMenuWindowLevelKey) + 1];
    }
    void TearDown() override {
        place_windows_beside_menus(nullptr);
        [tip_ close];
        [tip_ release];
        [menu_ release];
        [pool_ release];
    }
    static std::optional<AnnouncedWindow> of_type(const std::string& type) {
        for (const AnnouncedWindow& window : test::announced_windows()) {
            if (window.type == "_NET_WM_WINDOW_TYPE_" + type) return window;
        }
        return {};
    }
    // With the menu open, and the other window in front.
    void look_at_both() {
        const auto both_are_shown = [&] {
            menu_told_ = of_type("POPUP_MENU");
            tip_told_ = of_type("TOOLTIP");
            return menu_told_ && tip_told_;
        };
        script_.when(
            "menu shown", [] { return level_is_shown(0); }, [&] { [tip_ orderFront:nil]; });
        script_.when("both shown", both_are_shown, [&] { script_.input.key("Escape"); });
        script_.run(menu_, 300, 200);
        ASSERT_TRUE(menu_told_ && tip_told_);
    }

    NSAutoreleasePool* pool_ = [NSAutoreleasePool new];
    NSMenu* menu_ = nil;
    NSWindow* tip_ = nil;
    MenuScript script_;
    std::optional<AnnouncedWindow> menu_told_, tip_told_;
};

}  // namespace

TEST_F(AnnouncedWindows, MenusAndWhatStandsBesideThemAreNoWindowManagers) {
    look_at_both();
    EXPECT_EQ(menu_told_->title, "Menu");
    EXPECT_TRUE(menu_told_->is_unmanaged);
    EXPECT_EQ(tip_told_->title, "Preview");
    EXPECT_TRUE(tip_told_->is_unmanaged);
}

TEST_F(AnnouncedWindows, WithoutACompositorThereAreNoShadows) {
    look_at_both();
    EXPECT_EQ(menu_told_->shadow, 0);
    EXPECT_EQ(tip_told_->shadow, 0);
}

TEST_F(AnnouncedWindows, ShadowsThatAreDrawnAreToldSoThatNoOtherIsAdded) {
    const test::Compositor compositor;
    place_windows_beside_menus([]() -> BOOL { return YES; });
    look_at_both();
    EXPECT_GT(menu_told_->shadow, 0);
    EXPECT_EQ(tip_told_->shadow, menu_told_->shadow);
}

TEST_F(AnnouncedWindows, AWindowThatItsProgramPlacesHasTheSameShadow) {
    const test::Compositor compositor;
    look_at_both();
    EXPECT_GT(menu_told_->shadow, 0);
    EXPECT_EQ(tip_told_->shadow, menu_told_->shadow);
}
