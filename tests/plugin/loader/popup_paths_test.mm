// Every way to pop up a contextual menu, down to the toolkit's own method.
#include <host/modifier_keys.h>
#include <host/process.h>
#include <objc/runtime.h>

#include "input/DVDelvio+Dragging.h"
#include "loader/NSMenu+Popup.h"
#include "loader/dv_load.h"
#include "loader/method_swizzle.h"
#include "menus/DVDelvio+Population.h"
#include "menus/DVDelvio+Selection.h"
#include "plugin/loader/recording_host.h"
#include "plugin/loader/recording_toolkit.h"
#include "plugin/menu_fixture.h"

namespace {

using test::expect_lines;
using test::formatted;
using test::set_tracking;
using test::take_popup_calls;
using test::titles_of;
using test::Titles;
using test::urls_of;

enum Path { CLASS_WITH_FONT, CLASS_PLAIN, INSTANCE_WITH_FONT, INSTANCE_PLAIN };

struct PathRow {
    const char* name;
    const char* method;
    bool of_class, with_font;
};

const PathRow path_rows[] = {
    {"ClassWithFont", "popUpContextMenu:withEvent:forView:withFont:", true, true},
    {"ClassPlain", "popUpContextMenu:withEvent:forView:", true, false},
    {"InstanceWithFont", "_popUpContextMenu:withEvent:forView:withFont:", false, true},
    {"InstancePlain", "_popUpContextMenu:withEvent:forView:", false, false},
};

void exchange_plain_instance_popup() {
    MethodSwizzle([NSMenu class], @selector(_popUpContextMenu:withEvent:forView:),
                  @selector(dvInstancePopUpContextMenu:withEvent:forView:), 1);
}

NSEvent* make_event() {
    return [NSEvent otherEventWithType:NSApplicationDefined
                              location:NSZeroPoint
                         modifierFlags:0
                             timestamp:0
                          windowNumber:0
                               context:nil
                               subtype:1
                                 data1:0
                                 data2:0];
}

class PopupPath : public test::MenuTest, public testing::WithParamInterface<Path> {
  protected:
    PopupPath() : row_(path_rows[GetParam()]), host_([RecordingHost new]) {
        static const bool installed = (test::install_recording_toolkit(), true);
        (void)installed;
        declare_process_signature('MACS');
        dv_load_delvio();
        // The method that the loader does not replace.
        exchange_plain_instance_popup();
        menu_ = [[RecordingMenu alloc] initWithTitle:@"context"];
        [menu_ addItemWithTitle:@"Open" action:nullptr keyEquivalent:@""];
        [menu_ setDelegate:(id)host_];
        event_ = [make_event() retain];
        view_ = [[NSView alloc] initWithFrame:NSZeroRect];
        font_ = [[NSFont systemFontOfSize:9] retain];
        take_popup_calls();
    }
    ~PopupPath() override {
        exchange_plain_instance_popup();
        set_tracking(nullptr);
        set_held_modifier_flags(0);
        [RecordingMenu setRefusesClearing:NO];
        [menu_ setDelegate:nil];
        [menu_ release];
        [host_ release];
        [event_ release];
        [view_ release];
        [font_ release];
    }

    void pop_up(NSMenu* menu, NSEvent* event, NSView* view, NSFont* font) {
        switch (GetParam()) {
            case CLASS_WITH_FONT:
                [NSMenu popUpContextMenu:menu withEvent:event forView:view withFont:font];
                break;
            case CLASS_PLAIN:
                [NSMenu popUpContextMenu:menu withEvent:event forView:view];
                break;
            case INSTANCE_WITH_FONT:
                [menu _popUpContextMenu:menu withEvent:event forView:view withFont:font];
                break;
            case INSTANCE_PLAIN:
                [menu _popUpContextMenu:menu withEvent:event forView:view];
                break;
        }
    }
    void pop_up() { pop_up(menu_, event_, view_, font_); }
    // The exception that comes out of the popup; nil when none does.
    id exception_of_popup() {
        @try {
            pop_up();
        } @catch (id exception) {
            return exception;
        }
        return nil;
    }
    pthread_mutex_t* tree_lock() {
        Ivar lock = class_getInstanceVariable([DVDelvio class], "treeLock");
        return reinterpret_cast<pthread_mutex_t*>(reinterpret_cast<char*>(controller_) +
                                                  ivar_getOffset(lock));
    }
    bool lock_is_free() {
        if (pthread_mutex_trylock(tree_lock()) != 0) return false;
        pthread_mutex_unlock(tree_lock());
        return true;
    }
    void expect_idle() {
        EXPECT_EQ(dvIsActive, 0);
        EXPECT_EQ(dv_->count, 0);
        EXPECT_EQ(dv_->root, nullptr);
        EXPECT_EQ(dvDidGetURLs, 0);
        ASSERT_TRUE(lock_is_free());
        EXPECT_FALSE([[controller_ valueForKey:@"isInvoked"] boolValue]);
        EXPECT_EQ([[controller_ valueForKey:@"rootItems"] count], 0u);
        EXPECT_EQ([controller_ finderMenu], nil);
        EXPECT_EQ(titles_of(menu_), Titles({"Open"}));
        EXPECT_EQ([menu_ delegate], host_);
    }
    // After a failed popup the next one is taken over as usual.
    void expect_next_popup_to_be_taken_over() {
        const std::string path = folder_.folder("next");
        Titles shown;
        set_tracking([&] {
            [controller_ setSelectedFiles:urls_of({path})];
            shown = titles_of(menu_);
        });
        pop_up();
        EXPECT_EQ(shown, Titles({"next", "-", "Open"}));
    }

    const PathRow& row_;
    RecordingHost* host_;
    RecordingMenu* menu_;
    NSEvent* event_;
    NSView* view_;
    NSFont* font_;
};

std::string name_of(const testing::TestParamInfo<Path>& info) { return path_rows[info.param].name; }

INSTANTIATE_TEST_SUITE_P(Every, PopupPath,
                         testing::Values(CLASS_WITH_FONT, CLASS_PLAIN, INSTANCE_WITH_FONT,
                                         INSTANCE_PLAIN),
                         name_of);

NSException* make_exception() {
    return [NSException exceptionWithName:@"HostTrouble" reason:@"tracking" userInfo:nil];
}

}  // namespace

TEST_P(PopupPath, ArgumentsReachTheToolkitsMethod) {
    pop_up();
    const auto calls = take_popup_calls();
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0].method, row_.method);
    EXPECT_EQ(calls[0].receiver, row_.of_class ? (id)[NSMenu class] : menu_);
    EXPECT_EQ(calls[0].menu, menu_);
    EXPECT_EQ(calls[0].event, event_);
    EXPECT_EQ(calls[0].view, view_);
    EXPECT_EQ(calls[0].font, row_.with_font ? font_ : nil);
    expect_idle();
}

TEST_P(PopupPath, APreferredSizeBringsTheFontWhereThePathKnowsOne) {
    set("font_size", 14);
    pop_up();
    const auto calls = take_popup_calls();
    ASSERT_EQ(calls.size(), 1u);
    // The class method without a font has a counterpart with one; the instance method has none.
    const bool with_font = GetParam() != INSTANCE_PLAIN;
    EXPECT_EQ(calls[0].font, with_font ? [NSFont systemFontOfSize:14] : nil);
    EXPECT_EQ(calls[0].event, event_);
    EXPECT_EQ(calls[0].view, view_);
}

TEST_P(PopupPath, TheSeparateMenuIsReceiverAndMenu) {
    set("finderInSeparateSubmenu", 1);
    NSMenu* shown = nil;
    set_tracking([&] { shown = [controller_ valueForKey:@"_proxyMenu"]; });
    pop_up();
    const auto calls = take_popup_calls();
    ASSERT_EQ(calls.size(), 1u);
    ASSERT_NE(shown, nil);
    EXPECT_NE(calls[0].menu, menu_);
    EXPECT_EQ(calls[0].menu, shown);
    EXPECT_EQ(calls[0].receiver, row_.of_class ? (id)[NSMenu class] : shown);
}

TEST_P(PopupPath, ANestedPopupIsHandedOnAsItIs) {
    set("font_size", 14);
    NSMenu* inner = [[[NSMenu alloc] initWithTitle:@"inner"] autorelease];
    NSEvent* event = make_event();
    NSView* view = [[[NSView alloc] initWithFrame:NSZeroRect] autorelease];
    NSFont* font = [NSFont systemFontOfSize:20];
    std::string forced;
    set_tracking([&] {
        [host_ log];
        pop_up(inner, event, view, font);
        forced = [host_ log];
        EXPECT_EQ(dvIsActive, 1);
        EXPECT_EQ(dv_->count, 1);
    });
    pop_up();
    const auto calls = take_popup_calls();
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(calls[1].method, row_.method) << "without a font it stays without";
    EXPECT_EQ(calls[1].receiver, row_.of_class ? (id)[NSMenu class] : inner);
    EXPECT_EQ(calls[1].menu, inner);
    EXPECT_EQ(calls[1].event, event);
    EXPECT_EQ(calls[1].view, view);
    EXPECT_EQ(calls[1].font, row_.with_font ? font : nil);
    EXPECT_EQ(forced, row_.of_class ? "" : "open update");
}

TEST_P(PopupPath, TheHostIsAskedOutsideTheLock) {
    bool free_while_asked = false;
    [host_ setUpdate:[&] { free_while_asked = lock_is_free(); }];
    pop_up();
    EXPECT_TRUE(free_while_asked);
}

TEST_P(PopupPath, TheMenuIsFilledAndEmptiedUnderTheLock) {
    int changes = 0, locked = 0;
    [menu_ setOnChange:[&] {
        changes++;
        if (!lock_is_free()) locked++;
    }];
    pop_up();
    [menu_ setOnChange:nullptr];
    EXPECT_EQ(changes, 2) << "a separator came and went";
    EXPECT_EQ(locked, 2);
}

TEST_P(PopupPath, SwitchedOffIsStillReleased) {
    set("delvio_is_on", 0);
    dvDidGetURLs = 1;
    uint8_t active = 0;
    set_tracking([&] { active = dvIsActive; });
    pop_up();
    EXPECT_EQ(active, 1);
    expect_idle();
}

TEST_P(PopupPath, WithShiftHeldIsStillReleased) {
    set_held_modifier_flags(NSShiftKeyMask);
    dvDidGetURLs = 1;
    pop_up();
    const auto calls = take_popup_calls();
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0].menu, menu_);
    EXPECT_EQ(calls[0].font, row_.with_font ? font_ : nil);
    expect_idle();
}

TEST_P(PopupPath, AnExceptionOfTheTrackingIsPassedOnWithNothingLeftBehind) {
    const std::string path = folder_.folder("a");
    NSException* raised = make_exception();
    set_tracking([&] {
        [controller_ setSelectedFiles:urls_of({path})];
        EXPECT_EQ(titles_of(menu_), Titles({"a", "-", "Open"}));
        [raised raise];
    });
    EXPECT_EQ(exception_of_popup(), raised);
    expect_idle();
    expect_next_popup_to_be_taken_over();
}

TEST_P(PopupPath, AnExceptionInANestedPopupEndsBoth) {
    NSException* raised = make_exception();
    NSMenu* inner = [[[NSMenu alloc] initWithTitle:@"inner"] autorelease];
    set_tracking([&] {
        set_tracking([&] { [raised raise]; });
        pop_up(inner, event_, view_, font_);
    });
    EXPECT_EQ(exception_of_popup(), raised);
    expect_idle();
    expect_next_popup_to_be_taken_over();
}

TEST_P(PopupPath, AnExceptionCaughtWithinTheTrackingLeavesTheMenuTakenOver) {
    NSMenu* inner = [[[NSMenu alloc] initWithTitle:@"inner"] autorelease];
    set_tracking([&] {
        set_tracking([&] { [make_exception() raise]; });
        @try {
            pop_up(inner, event_, view_, font_);
        } @catch (NSException*) {
        }
        EXPECT_EQ(dvIsActive, 1);
        EXPECT_EQ(dv_->count, 1);
        EXPECT_EQ([menu_ delegate], controller_);
    });
    EXPECT_EQ(exception_of_popup(), nil);
    expect_idle();
}

TEST_P(PopupPath, AnExceptionOfTheHostsDelegateIsPassedOnWithNothingLeftBehind) {
    NSException* raised = make_exception();
    [host_ setUpdate:[&] { [raised raise]; }];
    EXPECT_EQ(exception_of_popup(), raised);
    EXPECT_EQ(take_popup_calls().size(), 0u) << "before the toolkit's turn";
    [host_ setUpdate:nullptr];
    expect_idle();
    expect_next_popup_to_be_taken_over();
}

TEST_P(PopupPath, AMenuThatRefusesOurItemsIsLetGo) {
    [menu_ setRefusesInsertion:YES];
    EXPECT_NE(exception_of_popup(), nil);
    [menu_ setRefusesInsertion:NO];
    expect_idle();
    expect_next_popup_to_be_taken_over();
}

TEST_P(PopupPath, ASeparateMenuThatRefusesToBeEmptiedIsLetGo) {
    set("finderInSeparateSubmenu", 1);
    set_tracking([] { [RecordingMenu setRefusesClearing:YES]; });
    EXPECT_NE(exception_of_popup(), nil);
    [RecordingMenu setRefusesClearing:NO];
    expect_idle();
    set("finderInSeparateSubmenu", 0);
    expect_next_popup_to_be_taken_over();
}

TEST_P(PopupPath, ItsOwnLinesAreLogged) {
    const char* description = [[menu_ description] UTF8String];
    std::vector<std::string> lines;
    const std::string info = formatted(
        "Delvio: Info: [self = %p, menu = %p, self-delegate = %p, delegate = %p, dvdv = %p]", menu_,
        menu_, host_, host_, controller_);
    const std::string class_info =
        formatted("Delvio: Info: [menu = %p, delegate = %p, dvdv = %p]", menu_, host_, controller_);
    switch (GetParam()) {
        case CLASS_WITH_FONT:
            lines = {formatted("Delvio: Class popup %p : RecordingMenu", host_), class_info,
                     "Delvio: Class popup out"};
            break;
        case CLASS_PLAIN:
            lines = {formatted("Delvio: Class popup no font %p : RecordingMenu", host_), class_info,
                     "Delvio: Class popup no-font out"};
            break;
        case INSTANCE_WITH_FONT:
            lines = {formatted("Delvio: Menu is: %s", description), info,
                     formatted("Delvio: Menu is now: %s", description)};
            break;
        case INSTANCE_PLAIN:
            lines = {formatted("Delvio: Menu is [nofont]: %s", description), info,
                     formatted("Delvio: Menu is now [nofont]: %s", description)};
            break;
    }
    const std::string log = log_of([&] { pop_up(); });
    expect_lines(log, lines);
    // The release comes before the last line.
    expect_lines(log, {"Delvio: Disabling event tap", lines.back()});
    EXPECT_EQ(log_of([&] { pop_up(); }, 0), "");
}

TEST_P(PopupPath, TheLinesOfANestedPopupAreItsOwn) {
    NSMenu* inner = [[[NSMenu alloc] initWithTitle:@"inner"] autorelease];
    [inner setDelegate:(id)host_];
    const char* description = [[inner description] UTF8String];
    std::vector<std::string> lines;
    switch (GetParam()) {
        case CLASS_WITH_FONT:
            lines = {formatted("Delvio: Re-entrant class [delegate = %p, dvdv = %p]", host_,
                               controller_)};
            break;
        case CLASS_PLAIN:
            lines = {formatted("Delvio: Re-entrant class no-font [delegate = %p, dvdv = %p]", host_,
                               controller_)};
            break;
        case INSTANCE_WITH_FONT:
            lines = {formatted("Delvio: Re-entrant [self = %p, menu = %p, self-delegate = %p, "
                               "delegate = %p, dvdv = %p]",
                               inner, inner, host_, host_, controller_),
                     formatted("Delvio: Menu is [r]: %s", description),
                     formatted("Delvio: Menu is now [r]: %s", description)};
            break;
        case INSTANCE_PLAIN:
            lines = {formatted("Delvio: Re-entrant no-font [self = %p, menu = %p, self-delegate = "
                               "%p, delegate = %p, dvdv = %p]",
                               inner, inner, host_, host_, controller_)};
            break;
    }
    std::string log;
    set_tracking([&] { log = log_of([&] { pop_up(inner, event_, view_, font_); }); });
    pop_up();
    if (row_.of_class) {
        EXPECT_EQ(log, lines.front() + "\n") << "no forced update";
        return;
    }
    const size_t forced = GetParam() == INSTANCE_WITH_FONT ? 2 : 1;
    lines.insert(lines.begin() + static_cast<long>(forced), "Delvio: Forward menuWillOpen: 1");
    lines.insert(lines.begin() + static_cast<long>(forced) + 1,
                 "Delvio: Forward menuNeedsUpdate: 1");
    expect_lines(log, lines);
}
