// What the drag-interception tap does with each event while a menu is taken over.
#include "input/DVDelvio+Dragging.h"

#include <AppKit/ModifierKeys.h>
#include <objc/runtime.h>

#include "input/DVDragView.h"
#include "loader/DVDelvio+Proxy.h"
#include "menus/DVDelvio+Population.h"
#include "menus/DVMenuItem.h"
#include "plugin/menu_fixture.h"
#include "plugin/tree_support.h"
#include "support/dv_log.h"
#include "support/steps.h"
#include "support/x_input.h"
#include "tree/dv_tree.h"

namespace {

using test::string_of;

class Dragging : public test::MenuTest {
  protected:
    ~Dragging() override {
        [NSObject cancelPreviousPerformRequestsWithTarget:controller_];
        [drag_view() setTheDragTarget:nullptr];
        SetHeldModifierFlags(0);
        dvEnableDebugOutput = 0;
    }
    template <typename type>
    type variable(const char* name) const {
        void* value = nullptr;
        object_getInstanceVariable(controller_, name, &value);
        return static_cast<type>(value);
    }
    DVDragView* drag_view() const { return variable<DVDragView*>("dragView"); }
    bool tap_is_on() const {
        return CGEventTapIsEnabled(variable<CFMachPortRef>("dragInterceptionTap"));
    }

    // Takes over a menu for one file and highlights its item.
    DVMenuItem* highlight() {
        NSMenu* menu = select({folder_.file("a file")});
        DVMenuItem* item = static_cast<DVMenuItem*>(test::item_titled(menu, "a file"));
        [controller_ menu:menu willHighlightItem:item];
        return item;
    }
    // The type of what goes on to the menu in place of this event.
    CGEventType after(CGEventType type, NSUInteger keys = NSCommandKeyMask) {
        SetHeldModifierFlags(keys);
        CGEventRef event =
            CGEventCreateMouseEvent(nullptr, type, CGPointMake(30, 40), kCGMouseButtonLeft);
        CGEventRef answer = [controller_ handleEventForDragInterception:event];
        const CGEventType result = CGEventGetType(answer);
        same_ = answer == event;
        if (!same_) CFRelease(answer);
        CFRelease(event);
        return result;
    }
    NSArray* dragged_files() {
        NSPasteboard* pasteboard = [NSPasteboard pasteboardWithName:NSDragPboard];
        return [pasteboard propertyListForType:NSFilenamesPboardType];
    }

    bool same_ = false;
};

}  // namespace

TEST_F(Dragging, TheDragWindowIsReadyAndNotShown) {
    NSWindow* window = variable<NSWindow*>("dragWindow");
    EXPECT_TRUE(NSEqualSizes([[window contentView] frame].size, NSMakeSize(64, 64)));
    EXPECT_TRUE(NSEqualRects([drag_view() frame], NSMakeRect(0, 0, 64, 64)));
    EXPECT_EQ([drag_view() autoresizingMask], 18u);
    EXPECT_EQ([window styleMask], 0u);
    EXPECT_EQ([window alphaValue], 0.5f);
    EXPECT_FALSE([window isOpaque]);
    EXPECT_FALSE([window isVisible]);
}

TEST_F(Dragging, TheTapIsOnWhileAMenuIsTakenOver) {
    take_over();
    EXPECT_TRUE(tap_is_on());
    release();
    EXPECT_FALSE(tap_is_on());
}

TEST_F(Dragging, ACommandPressOnAFileIsTakenAndTheFileWaits) {
    dv_tree_t* elem = [highlight() tree];
    EXPECT_EQ(after(kCGEventLeftMouseDown), kCGEventNull);
    EXPECT_FALSE(same_);
    dv_tree_t* target = [drag_view() theDragTarget];
    ASSERT_NE(target, nullptr);
    EXPECT_NE(target, elem) << "a copy: the element goes with its menu";
    EXPECT_EQ(std::string([[DVDelvio stringPathForTree:target] UTF8String]),
              folder_.path("a file"));
    EXPECT_TRUE(NSEqualPoints([variable<NSWindow*>("dragWindow") frame].origin, NSZeroPoint));
}

TEST_F(Dragging, APressWithoutCommandPasses) {
    highlight();
    EXPECT_EQ(after(kCGEventLeftMouseDown, 0), kCGEventLeftMouseDown);
    EXPECT_TRUE(same_);
    EXPECT_EQ(after(kCGEventLeftMouseDown, NSAlternateKeyMask), kCGEventLeftMouseDown);
    EXPECT_EQ([drag_view() theDragTarget], nullptr);
}

TEST_F(Dragging, AReleaseAndAMovePass) {
    highlight();
    EXPECT_EQ(after(kCGEventLeftMouseUp), kCGEventLeftMouseUp);
    EXPECT_TRUE(same_);
    EXPECT_EQ(after(kCGEventMouseMoved), kCGEventMouseMoved);
    EXPECT_TRUE(same_);
}

TEST_F(Dragging, WithoutAHighlightedItemThePressPasses) {
    NSMenu* menu = select({folder_.file("a file")});
    [controller_ menu:menu willHighlightItem:nil];
    EXPECT_EQ(after(kCGEventLeftMouseDown), kCGEventLeftMouseDown);
    EXPECT_TRUE(same_);
}

TEST_F(Dragging, WithoutAMenuThePressPasses) {
    highlight();
    release();
    EXPECT_EQ(after(kCGEventLeftMouseDown), kCGEventLeftMouseDown);
    EXPECT_TRUE(same_);
}

TEST_F(Dragging, ApplicationsAndFolderTargetsAreNoFilesToDrag) {
    DVMenuItem* item = highlight();
    for (const uint32_t origin : {DV_ORIGIN_APP_LIST, DV_ORIGIN_MOVE_COPY}) {
        dv_tree_t* elem = [item tree];
        const uint32_t before = elem->origin;
        elem->origin |= origin;
        EXPECT_EQ(after(kCGEventLeftMouseDown), kCGEventLeftMouseDown);
        EXPECT_TRUE(same_);
        elem->origin = before;
    }
    EXPECT_EQ([drag_view() theDragTarget], nullptr);
}

TEST_F(Dragging, ATimeOutOfTheTapIsUndoneAtOnce) {
    take_over();
    CGEventTapEnable(variable<CFMachPortRef>("dragInterceptionTap"), false);
    CGEventRef word = CGEventCreate(nullptr);
    EXPECT_EQ(dvDragInterceptionCallback(nullptr, kCGEventTapDisabledByTimeout, word, nullptr),
              word);
    CFRelease(word);
    EXPECT_TRUE(tap_is_on());
}

TEST_F(Dragging, TheLogTellsOfATimeOut) {
    take_over();
    CGEventRef word = CGEventCreate(nullptr);
    dvEnableDebugOutput = 1;
    const std::string log = test::output_of(
        [&] { dvDragInterceptionCallback(nullptr, kCGEventTapDisabledByTimeout, word, nullptr); });
    dvEnableDebugOutput = 0;
    CFRelease(word);
    EXPECT_EQ(log, "Delvio: Event tap was disabled! Schedule re-enable: fffffffe\n"
                   "Delvio: Enabling event tap\n"
                   "Delvio: Event tap status: 1\n");
}

TEST_F(Dragging, TheDragCarriesOneFileAndItsWholePath) {
    dv_tree_t* elem = [highlight() tree];
    [drag_view() setTheDragTarget:elem];
    [controller_ beginDelayedDrag:nil];  // no button is held: it ends at once
    EXPECT_EQ([dragged_files() count], 1u);
    EXPECT_EQ(std::string([[dragged_files() lastObject] UTF8String]), folder_.path("a file"));
    NSPasteboard* pasteboard = [NSPasteboard pasteboardWithName:NSDragPboard];
    EXPECT_EQ([[pasteboard types] count], 1u);
    EXPECT_EQ([drag_view() theDragTarget], nullptr);
}

TEST_F(Dragging, ADragWithoutATargetDoesNothing) {
    NSPasteboard* pasteboard = [NSPasteboard pasteboardWithName:NSDragPboard];
    const NSInteger before = [pasteboard changeCount];
    dvEnableDebugOutput = 1;
    const std::string log = test::output_of([&] { [drag_view() mouseDown:nil]; });
    dvEnableDebugOutput = 0;
    EXPECT_EQ(log, "Delvio: Attempting to start drag for empty drag target.\n");
    EXPECT_EQ([pasteboard changeCount], before);
}

TEST_F(Dragging, TheDragViewOffersEverythingToAll) {
    EXPECT_EQ([drag_view() draggingSourceOperationMaskForLocal:YES], NSDragOperationEvery);
    EXPECT_EQ([drag_view() draggingSourceOperationMaskForLocal:NO], NSDragOperationEvery);
    EXPECT_TRUE([drag_view() acceptsFirstMouse:nil]);
    EXPECT_TRUE([drag_view() acceptsFirstResponder]);
    EXPECT_FALSE([drag_view() isOpaque]);
}

TEST_F(Dragging, TheDragViewIsDrawnHalfTransparentRed) {
    NSWindow* window = [[NSWindow alloc] initWithContentRect:NSMakeRect(0, 0, 64, 64)
                                                   styleMask:NSBorderlessWindowMask
                                                     backing:NSBackingStoreBuffered
                                                       defer:NO];
    [window setReleasedWhenClosed:NO];
    [window setBackgroundColor:[NSColor whiteColor]];
    DVDragView* view = [[DVDragView alloc] initWithFrame:NSMakeRect(0, 0, 64, 64)];
    [[window contentView] addSubview:view];
    dvEnableDebugOutput = 1;
    const std::string log = test::output_of([&] {
        [window orderFrontRegardless];
        [window display];
    });
    dvEnableDebugOutput = 0;
    EXPECT_NE(log.find("Delvio: Draw drag view\n"), std::string::npos);
    // Over white.
    test::XInput input;
    const int bottom = static_cast<int>(NSHeight([[NSScreen mainScreen] frame]));
    test::Steps steps;
    steps.when("the colour", [&] {
        const unsigned long pixel = input.pixel(20, bottom - 20);
        return pixel == 0xFF8080 || pixel == 0xFF7F7F;
    });
    steps.run();
    [view release];
    [window close];
    [window release];
}

TEST_F(Dragging, ThePointersPlaceCountsFromTheTop) {
    test::XInput input;
    input.move(120, 70);
    const NSPoint at = [controller_ currentUnflippedMouseLocation];
    EXPECT_EQ(at.x, 120);
    EXPECT_EQ(at.y, 70);
}
