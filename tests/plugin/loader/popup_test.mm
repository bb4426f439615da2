#include "loader/NSMenu+Popup.h"

#include <host/modifier_keys.h>
#include <host/process.h>
#include <objc/runtime.h>

#include "finderkit/context_menu.h"
#include "items/DVMenuItem.h"
#include "loader/NSPasteboard+Selection.h"
#include "loader/dv_load.h"
#include "menus/DVDelvio+Population.h"
#include "menus/DVDelvio+Selection.h"
#include "plugin/loader/recording_host.h"
#include "plugin/loader/walking_tracker.h"
#include "plugin/menu_fixture.h"
#include "plugin/replaced_method.h"
#include "support/dv_log.h"
#include "tree/dv_tree.h"

@interface NSPasteboard (HostWriting)
- (BOOL)writeObjects:(NSArray*)objects;
@end

namespace {

using test::item_titled;
using test::titles_of;
using test::Titles;
using test::urls_of;

// The host's own methods, in place before the plug-in is loaded. They record their calls.
BOOL write_result = NO;
NSArray* written = nil;
int descriptors_set = 0;

BOOL host_write_objects(id, SEL, NSArray* objects) {
    written = objects;
    return write_result;
}

void host_set_descriptor(id, SEL, const void*) { descriptors_set++; }

void install_host_methods() {
    class_replaceMethod([NSPasteboard class], @selector(writeObjects:),
                        reinterpret_cast<IMP>(host_write_objects), "c@:@");
    class_replaceMethod([NSMenu class], @selector(_setContextMenuPluginAEDesc:),
                        reinterpret_cast<IMP>(host_set_descriptor), "v@:^v");
}

class Popup : public test::MenuTest {
  protected:
    Popup() : tracker_([WalkingTracker new]), host_([RecordingHost new]) {
        static const bool installed = (install_host_methods(), true);
        (void)installed;
        declare_process_signature('MACS');
        dv_load_delvio();
        [NSMenu setContextMenuTracker:tracker_];
        menu_ = [[TContextMenu alloc] initWithTitle:@"context"];
        [menu_ addItemWithTitle:@"Open" action:nullptr keyEquivalent:@""];
        [menu_ setDelegate:(id)host_];
    }
    ~Popup() override {
        set_held_modifier_flags(0);
        [NSMenu setContextMenuTracker:nil];
        [menu_ setDelegate:nil];
        [menu_ release];
        [host_ release];
        [tracker_ release];
    }
    void walk(const Walk& walk) { [tracker_ setWalk:walk]; }
    void pop_up() { [NSMenu popUpContextMenu:menu_ withEvent:nil forView:nil]; }
    void pop_up_with_font(NSFont* font) {
        [NSMenu popUpContextMenu:menu_ withEvent:nil forView:nil withFont:font];
    }
    // Configures the menu with nodes, as the host does while filling it.
    void configure(const std::vector<std::string>& paths) {
        TFENodeVector nodes;
        for (const std::string& path : paths) nodes.nodes.push_back({path});
        [menu_ configureWithNodes:&nodes windowController:nil container:NO];
    }

    WalkingTracker* tracker_;
    RecordingHost* host_;
    TContextMenu* menu_;
};

}  // namespace

TEST_F(Popup, OurItemsAreThereWhileTheMenuIsOpenAndGoneAfter) {
    const std::string path = folder_.folder("a");
    Titles shown;
    walk([&](MenuSession*) {
        configure({path});
        shown = titles_of(menu_);
    });
    pop_up();
    EXPECT_EQ(shown, Titles({"a", "-", "Open"}));
    EXPECT_EQ(titles_of(menu_), Titles({"Open"}));
    EXPECT_EQ([menu_ delegate], host_);
    EXPECT_EQ(dvIsActive, 0);
    EXPECT_EQ(dv_->count, 0);
    EXPECT_EQ(dv_->root, nullptr);
}

TEST_F(Popup, TheClassPopupTakesTheMenuOverOnceAndTheInstancePopupUpdatesTheHost) {
    int count = 0;
    walk([&](MenuSession*) { count = dv_->count; });
    pop_up();
    EXPECT_EQ(count, 1);
    EXPECT_EQ([tracker_ popups], 1);
    // The take-over forces an update, the instance method forces one, then the menu opens.
    EXPECT_EQ([host_ log], "open update open update update open close");
}

TEST_F(Popup, TheInstancePopupTakesItsReceiverOver) {
    int count = 0;
    walk([&](MenuSession*) { count = dv_->count; });
    NSMenu* other = [[[NSMenu alloc] initWithTitle:@"other"] autorelease];
    [menu_ _popUpContextMenu:other withEvent:nil forView:nil withFont:nil];
    EXPECT_EQ(count, 1);
    EXPECT_EQ([tracker_ menu], menu_);
    EXPECT_EQ([menu_ delegate], host_);
    EXPECT_EQ(dvIsActive, 0);
}

TEST_F(Popup, TheHostsFontIsPassedOn) {
    NSFont* font = [NSFont systemFontOfSize:9];
    pop_up_with_font(font);
    EXPECT_EQ([tracker_ font], font);
    pop_up();
    EXPECT_EQ([tracker_ font], nil);
    [menu_ _popUpContextMenu:menu_ withEvent:nil forView:nil withFont:font];
    EXPECT_EQ([tracker_ font], font);
}

TEST_F(Popup, ThePreferredSizeReplacesTheFont) {
    set("font_size", 14);
    NSFont* expected = [NSFont systemFontOfSize:14];
    pop_up_with_font([NSFont systemFontOfSize:9]);
    EXPECT_EQ([tracker_ font], expected);
    pop_up();
    EXPECT_EQ([tracker_ font], expected);
    [menu_ _popUpContextMenu:menu_ withEvent:nil forView:nil withFont:nil];
    EXPECT_EQ([tracker_ font], expected);
}

TEST_F(Popup, SwitchedOffShowsTheHostsMenuAlone) {
    set("delvio_is_on", 0);
    Titles shown;
    walk([&](MenuSession*) { shown = titles_of(menu_); });
    pop_up();
    EXPECT_EQ(shown, Titles({"Open"}));
    EXPECT_EQ([tracker_ popups], 1);
    EXPECT_EQ(dvIsActive, 0);
    EXPECT_EQ(dv_->count, 0);
}

TEST_F(Popup, ShiftShowsTheHostsMenuAlone) {
    set_held_modifier_flags(NSShiftKeyMask);
    Titles shown;
    walk([&](MenuSession*) { shown = titles_of(menu_); });
    pop_up();
    EXPECT_EQ(shown, Titles({"Open"}));
    EXPECT_EQ([menu_ delegate], host_);
    EXPECT_EQ(dvIsActive, 0);
}

TEST_F(Popup, APopupWithinAnotherIsShownAsItIs) {
    NSMenu* inner = [[[NSMenu alloc] initWithTitle:@"inner"] autorelease];
    [inner addItemWithTitle:@"x" action:nullptr keyEquivalent:@""];
    Titles shown;
    int count = 0;
    walk([&](MenuSession*) {
        walk([&](MenuSession*) {
            shown = titles_of(inner);
            count = dv_->count;
        });
        [NSMenu popUpContextMenu:inner withEvent:nil forView:nil];
        [NSMenu popUpContextMenu:inner withEvent:nil forView:nil withFont:nil];
    });
    pop_up();
    EXPECT_EQ([tracker_ popups], 3);
    EXPECT_EQ(shown, Titles({"x"}));
    EXPECT_EQ(count, 1);
    EXPECT_EQ([menu_ delegate], host_);
    EXPECT_EQ(dvIsActive, 0);
}

TEST_F(Popup, LevelsFillAsTheyOpen) {
    folder_.file("a/b/c/leaf");
    Titles deepest;
    walk([&](MenuSession* session) {
        configure({folder_.path("a")});
        EXPECT_TRUE([session openSubmenuOfItem:item_titled(menu_, "a")]);
        NSMenu* level = [[session levels] lastObject];
        EXPECT_TRUE([session openSubmenuOfItem:item_titled(level, "b")]);
        level = [[session levels] lastObject];
        EXPECT_TRUE([session openSubmenuOfItem:item_titled(level, "c")]);
        deepest = titles_of([[session levels] lastObject]);
    });
    pop_up();
    EXPECT_EQ(deepest, Titles({"leaf", "leaf", "leaf"}));
}

TEST_F(Popup, TheHostsMenuBecomesASubmenuOfAFreshOne) {
    set("finderInSeparateSubmenu", 1);
    const std::string path = folder_.folder("a");
    Titles shown;
    NSMenu* finder = nil;
    for (int i = 0; i < 2; i++) {
        walk([&](MenuSession* session) {
            configure({path});
            shown = titles_of([session rootMenu]);
            finder = [item_titled([session rootMenu], "Finder") submenu];
        });
        pop_up();
        EXPECT_EQ(shown, Titles({"a", "-", "Finder"}));
        EXPECT_EQ(finder, menu_);
        EXPECT_NE([tracker_ menu], menu_);
        EXPECT_EQ([[tracker_ menu] class], [TContextMenu class]);
        EXPECT_EQ([menu_ delegate], host_);
    }
}

TEST_F(Popup, RemovingAllItemsWhileOpenBringsOursBack) {
    const std::string path = folder_.folder("a");
    Titles cleared, refilled;
    walk([&](MenuSession*) {
        configure({path});
        [menu_ removeAllItems];
        cleared = titles_of(menu_);
        [menu_ addItemWithTitle:@"New" action:nullptr keyEquivalent:@""];
        refilled = titles_of(menu_);
    });
    pop_up();
    EXPECT_EQ(cleared, Titles({"a", "-"}));
    EXPECT_EQ(refilled, Titles({"a", "-", "New"}));
    EXPECT_EQ(titles_of(menu_), Titles({"New"}));
}

TEST_F(Popup, RemovingAllItemsOfAnyOtherMenuJustClearsIt) {
    const char* description = [[menu_ description] UTF8String];
    const std::string line =
        test::formatted("Delvio: Remove all items from menu %p : %s\n", menu_, description);
    EXPECT_EQ(log_of([&] { [menu_ removeAllItems]; }), line);
    EXPECT_EQ([menu_ numberOfItems], 0);
    NSMenu* plain = [[[NSMenu alloc] initWithTitle:@""] autorelease];
    [plain addItemWithTitle:@"x" action:nullptr keyEquivalent:@""];
    [plain removeAllItems];
    EXPECT_EQ([plain numberOfItems], 0);
}

TEST_F(Popup, WritingToAPasteboardTellsTheSelectionAndGivesTheHostsAnswer) {
    const std::string path = folder_.folder("a");
    id pasteboard = [NSAllocateObject([NSPasteboard class], 0, nullptr) autorelease];
    walk([&](MenuSession*) {
        NSArray* urls = urls_of({path});
        test::expect_lines(log_of([&] { [pasteboard writeObjects:@[]]; }), {
            test::formatted("Delvio: Writing objects; %s", [[@[] description] UTF8String])
        });
        for (BOOL result : {NO, YES}) {
            write_result = result;
            EXPECT_EQ([pasteboard writeObjects:urls], result);
            EXPECT_EQ(written, urls);
        }
        EXPECT_EQ(titles_of(menu_), Titles({"a", "-", "Open"}));
    });
    pop_up();
    EXPECT_EQ([tracker_ popups], 1);
}

TEST_F(Popup, TheFirstOfBothWaysWins) {
    const std::string first = folder_.folder("first"), second = folder_.folder("second");
    walk([&](MenuSession*) {
        configure({first});
        id pasteboard = [NSAllocateObject([NSPasteboard class], 0, nullptr) autorelease];
        [pasteboard writeObjects:urls_of({second})];
        EXPECT_EQ(titles_of(menu_), Titles({"first", "-", "Open"}));
    });
    pop_up();
}

TEST_F(Popup, NoNodesLeaveTheSelectionAndConfigureTheHost) {
    walk([&](MenuSession*) {
        EXPECT_EQ(
            log_of(
                [&] { [menu_ configureWithNodes:nullptr windowController:host_ container:YES]; }),
            test::formatted("Delvio: TCONTEXTMENU configureWith NODES (nil) windowController %p "
                            "container 0x1\nDelvio: No TFENodeVectors in dvConfigureWithNodes! "
                            "[Probably the Trash?]\n",
                            host_));
        EXPECT_EQ([menu_ windowController], host_);
        EXPECT_TRUE([menu_ isContainer]);
        const TFENodeVector none = {};
        EXPECT_EQ(
            log_of([&] { [menu_ configureWithNodes:&none windowController:nil container:NO]; }),
            test::formatted("Delvio: TCONTEXTMENU configureWith NODES %p windowController (nil) "
                            "container (nil)\nDelvio: Empty selection in dvConfigureWithNodes! "
                            "[Probably the Trash?]\n",
                            &none));
        EXPECT_EQ([menu_ windowController], nil);
        EXPECT_FALSE([menu_ isContainer]);
        EXPECT_EQ(dvDidGetURLs, 0);
        EXPECT_EQ(titles_of(menu_), Titles({"-", "Open"}));
    });
    pop_up();
    EXPECT_EQ([tracker_ popups], 1);
}

namespace {

// A node of the host that has no URL.
NSURL* no_url(id, SEL) { return nil; }

}  // namespace

namespace {

// The host's configuration, recorded.
struct Configuration {
    const TFENodeVector* nodes;
    id window_controller;
    BOOL container;
    uint8_t selection_known;
};
std::vector<Configuration> configurations;

void record_configuration(id, SEL, const TFENodeVector* nodes, id window_controller,
                          BOOL container) {
    configurations.push_back({nodes, window_controller, container, dvDidGetURLs});
}

}  // namespace

TEST_F(Popup, TheSelectionIsKnownBeforeTheHostsConfigurationWhichRunsOnce) {
    const std::string path = folder_.folder("a");
    // After the exchange, the plug-in's name leads to the host's own code.
    const test::ReplacedMethod configuring(
        [TContextMenu class], @selector(dvConfigureWithNodes:windowController:container:),
        record_configuration);
    const TFENodeVector nodes = {{{path}}}, none = {};
    walk([&](MenuSession*) {
        configurations.clear();
        for (const TFENodeVector* vector :
             {&none, static_cast<const TFENodeVector*>(nullptr), &nodes}) {
            [menu_ configureWithNodes:vector windowController:host_ container:YES];
        }
    });
    pop_up();
    ASSERT_EQ(configurations.size(), 3u);
    const TFENodeVector* vectors[] = {&none, nullptr, &nodes};
    for (size_t i = 0; i < 3; i++) {
        EXPECT_EQ(configurations[i].nodes, vectors[i]);
        EXPECT_EQ(configurations[i].window_controller, host_);
        EXPECT_EQ(configurations[i].container, YES);
        EXPECT_EQ(configurations[i].selection_known, vectors[i] == &nodes ? 1 : 0);
    }
}

TEST_F(Popup, EveryCallOfTheLoaderReadsTheLogLevelAnew) {
    for (const int level : {3, 0, 1}) {
        set("logLevel", level);
        dvEnableDebugOutput = 7;
        testing::internal::CaptureStdout();
        EXPECT_EQ(dv_load_delvio(), 0);
        fflush(stdout);
        const std::string log = testing::internal::GetCapturedStdout();
        EXPECT_EQ(dvEnableDebugOutput, level);
        if (level != 1) continue;
        EXPECT_EQ(log, "Delvio: Checking if this is the Finder..\nDelvio: This is the Finder\n"
                       "Delvio-SLSA! Is loaded: 1 Is Finder: 1 Is 64-bit: 1\n");
    }
    set("logLevel", 0);
    dv_load_delvio();
    EXPECT_EQ(dvEnableDebugOutput, 0);
}

TEST_F(Popup, ANodeWithoutAUrlLeavesTheSelectionAndConfiguresTheHost) {
    const std::string path = folder_.folder("a");
    Class node_class = objc_getClass("FINode");
    Method url = class_getInstanceMethod(node_class, @selector(url));
    class_addMethod(node_class, @selector(noUrl), reinterpret_cast<IMP>(no_url), "@@:");
    Method other = class_getInstanceMethod(node_class, @selector(noUrl));
    walk([&](MenuSession*) {
        method_exchangeImplementations(url, other);
        const std::string log = log_of([&] { configure({path}); });
        method_exchangeImplementations(url, other);
        test::expect_lines(log,
                           {"Delvio: Caught exception while calling FINodesFromFENodeVector."});
        EXPECT_NE(log.find("\nDelvio: Exception was: "), std::string::npos) << log;
        EXPECT_EQ(log.find("Delvio: Added"), std::string::npos) << log;
        EXPECT_EQ([[menu_ nodes] count], 1u);
        EXPECT_EQ(dvDidGetURLs, 0);
        EXPECT_EQ(titles_of(menu_), Titles({"-", "Open"}));
    });
    pop_up();
    EXPECT_EQ([tracker_ popups], 1);
}

TEST_F(Popup, TheHostsDescriptorGoesNowhere) {
    const auto* descriptor = reinterpret_cast<const AEDesc*>(&descriptors_set);
    const auto set_it = [&] { [menu_ _setContextMenuPluginAEDesc:descriptor]; };
    EXPECT_EQ(log_of(set_it), test::formatted("Delvio: Setting AEDesc for menu! %p\n", descriptor));
    EXPECT_EQ(log_of(set_it, 0), "");
    EXPECT_EQ(descriptors_set, 0);
}

TEST_F(Popup, APickedItemIsOpenWhileItsElementLives) {
    const std::string path = folder_.folder("a");
    folder_.file("a/text");
    BOOL picked = NO;
    walk([&](MenuSession* session) {
        configure({path});
        [session openSubmenuOfItem:item_titled(menu_, "a")];
        NSMenuItem* item = item_titled([[session levels] lastObject], "text");
        // A command-click, so that nothing is opened.
        set_held_modifier_flags(NSCommandKeyMask);
        [session pickItem:item];
        picked = [session pickedItem] == item;
    });
    pop_up();
    EXPECT_TRUE(picked);
    EXPECT_EQ(alloc_count, free_count);
}
