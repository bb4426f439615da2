// The tips of rows.
#include "appkit/row_tips.h"
#include "platform/presenter.h"
#include "support/temp_folder.h"
#include "support/unprivileged.h"

#include <sys/stat.h>

namespace {

NSString* path_of_title(NSMenuItem* item) {
    return [[item title] hasPrefix:@"/"] ? [item title] : [item representedObject];
}

class RowTip : public Presenter {
  protected:
    void SetUp() override {
        Presenter::SetUp();
        [NSMenu setPathQuestion:path_of_title];
        long_ = [@"a very long name " stringByPaddingToLength:200
                                                   withString:@"and longer "
                                              startingAtIndex:0];
        [[recorder_ addItem:long_ toMenu:root_] setRepresentedObject:@"/where/it is"];
    }
    void TearDown() override {
        [NSMenu setPathQuestion:nullptr];
        Presenter::TearDown();
    }
    void tip(const std::string& text, MenuScript::Action action) {
        script_.when(
            "tip " + text, [text] { return shown_tip() == text; }, action);
    }
    NSString* long_;
};

}  // namespace

TEST_F(RowTip, ShowsTheWholeNameAndTheFolderOfAShortenedRowUntilAnotherIsHighlighted) {
    const std::string whole = std::string([long_ UTF8String]) + "\n/where";
    shown([this] { moveTo(long_); });
    tip(whole, [this] { moveTo(@"alpha"); });
    tip("", [this] {
        EXPECT_EQ(highlighted_title(0), "alpha");
        EXPECT_EQ(tip_of(shown_level(0), [root_ itemAtIndex:0]), "") << "it is not shortened";
        key("End");
    });
    tip(whole, [this] { key("Escape"); });
    run();
    EXPECT_EQ(shown_tip(), "") << "it closes with the menu";
}

TEST_F(RowTip, ShowsTheNameThatATitleAbbreviates) {
    const auto add = [this](NSString* title, NSString* path) {
        NSMenuItem* item = [recorder_ addItem:title toMenu:root_];
        [item setRepresentedObject:path];
        return item;
    };
    NSMenuItem* abbreviated = add(@"a lon...name", @"/where/a long long name/");
    NSMenuItem* dotted = add(@"wait...", @"/where/wait...");
    NSMenuItem* other = add(@"a lon...name", @"/where/other/than the title says");
    shown([=, this] {
        const auto tip = [](NSMenuItem* item) { return tip_of(shown_level(0), item); };
        EXPECT_EQ(tip(abbreviated), "a long long name\n/where");
        EXPECT_EQ(tip(dotted), "");
        EXPECT_EQ(tip(other), "");
        key("Escape");
    });
    run();
}

// A preview that stands beside the level hides nothing of the tip then.
TEST_F(RowTip, IsNoWiderThanItsLevel) {
    [root_ removeItem:(NSMenuItem*)[root_ itemWithTitle:long_]];
    [recorder_ addItem:@"a row that makes the level a little wider" toMenu:root_];
    NSMenuItem* item = [recorder_ addItem:@"a ver...longer " toMenu:root_];
    [item setRepresentedObject:[@"/where" stringByAppendingPathComponent:
                                              [long_ stringByAppendingString:@"longer "]]];
    shown([this] { moveTo(@"a ver...longer "); });
    script_.when(
        "the tip", [] { return !shown_tip().empty(); },
        [this] {
            const NSRect level = [shown_level(0).window() frame];
            NSRect tip = NSZeroRect;
            for (NSWindow* window in [NSApp windows]) {
                if ([[window title] isEqual:@"Tip"] && [window isVisible]) tip = [window frame];
            }
            EXPECT_GT(NSHeight(tip), 60) << "it has several lines";
            EXPECT_GE(NSMinX(tip), NSMinX(level));
            EXPECT_LE(NSMaxX(tip), NSMaxX(level));
            key("Escape");
        });
    run();
}

TEST_F(RowTip, SaysThatAFolderMayNotBeRead) {
    test::TempFolder folder;
    folder.folder("closed");
    ASSERT_EQ(chmod(folder.path("closed").c_str(), 0), 0);
    NSString* path = [NSString stringWithUTF8String:folder.path("closed").c_str()];
    [[recorder_ addItem:@"closed" toMenu:root_] setRepresentedObject:path];
    [[recorder_ addItem:@"open" toMenu:root_] setRepresentedObject:@"/"];
    shown([this] {
        const test::Unprivileged unprivileged;
        const auto tip = [this](NSString* title) {
            return tip_of(shown_level(0), (NSMenuItem*)[root_ itemWithTitle:title]);
        };
        EXPECT_EQ(tip(@"closed"), "You do not have permission to read this folder.");
        EXPECT_EQ(tip(@"open"), "");
        key("Escape");
    });
    run();
    chmod(folder.path("closed").c_str(), 0700);
}
