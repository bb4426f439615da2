// A menu of two levels that opens at its own place, and a user for it. The messages of its delegate
// are the log of a case.
#pragma once

#include <AppKit/AppKit.h>
#include <gtest/gtest.h>
#include <host/menu_tracking.h>

#include "platform/menu_script.h"
#include "platform/recording_delegate.h"
#include "support/app.h"

const int left = 300, top = 200;

class Presenter : public testing::Test {
  protected:
    void SetUp() override {
        pool_ = [NSAutoreleasePool new];
        test::start_application();
        recorder_ = [RecordingDelegate new];
        root_ = [recorder_ menuNamed:@"root"];
        [recorder_ addItem:@"alpha" toMenu:root_];
        folder_ = addFolder(@"folder", root_);
        beta_ = [recorder_ addItem:@"beta" toMenu:root_];
        [root_ addItem:[NSMenuItem separatorItem]];
        [[recorder_ addItem:@"disabled" toMenu:root_] setEnabled:NO];
        [recorder_ addItem:@"gamma" toMenu:root_];
        [recorder_ addItem:@"inner" toMenu:[folder_ submenu]];
        addFolder(@"deeper", [folder_ submenu]);
        [recorder_ addItem:@"leaf" toMenu:[[[folder_ submenu] itemWithTitle:@"deeper"] submenu]];
        script_.input.move(10, 10);
    }
    void TearDown() override {
        EXPECT_TRUE(script_.input.pointer_is_free());
        EXPECT_TRUE(script_.input.keyboard_is_free());
        EXPECT_EQ([MenuSession current], nil);
        [recorder_ release];
        [pool_ release];
    }

    // A folder to browse has no action; pressing it opens it.
    NSMenuItem* addFolder(NSString* title, NSMenu* menu) {
        NSMenuItem* item = [[[NSMenuItem alloc] initWithTitle:title action:NULL
                                                keyEquivalent:@""] autorelease];
        NSMenu* submenu = [recorder_ menuNamed:title];
        [item setSubmenu:submenu];
        [menu addItem:item];
        return item;
    }
    void run(int x = left, int y = top) {
        [recorder_ takeLog];
        script_.run(root_, x, y);
    }
    std::string log() { return [recorder_ takeLog]; }
    void shown(MenuScript::Action action) {
        script_.when(
            "menu shown", [] { return level_is_shown(0); }, action);
    }
    void levels(size_t count, MenuScript::Action action) {
        script_.when(
            "levels", [count] { return shown_levels() == count; }, action);
    }
    void highlighted(const std::string& title, size_t level, MenuScript::Action action) {
        script_.when(
            "highlight " + title, [=] { return highlighted_title(level) == title; }, action);
    }
    void moveTo(NSString* title, size_t level = 0) {
        const MenuPoint at = row_point(level, title);
        script_.input.move(at.x, at.y);
    }
    void click(NSString* title, size_t level = 0, int button = 1) {
        const MenuPoint at = row_point(level, title);
        clickAt(at.x, at.y, button);
    }
    void clickAt(int x, int y, int button = 1) {
        script_.input.move(x, y);
        script_.input.click(button);
    }
    void key(const char* name) { script_.input.key(name); }

    NSAutoreleasePool* pool_;
    RecordingDelegate* recorder_;
    NSMenu* root_;
    NSMenuItem *folder_, *beta_;
    MenuScript script_;
};
