// What the drag-interception tap does with each event while a menu is taken over.
#include "input/DVDelvio+Dragging.h"

#include <host/modifier_keys.h>
#include <objc/runtime.h>
#include <string.h>

#include "finder/dv_finder.h"
#include "input/DVDragView.h"
#include "items/DVMenuItem.h"
#include "menus/DVDelvio+Population.h"
#include "menus/DVDelvio+Proxy.h"
#include "plugin/menu_fixture.h"
#include "plugin/replaced_method.h"
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
        set_held_modifier_flags(0);
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
    // The type of the event that the menu gets in place of this event.
    CGEventType after(CGEventType type, NSUInteger keys = NSCommandKeyMask) {
        set_held_modifier_flags(keys);
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
    EXPECT_EQ([window level], CGWindowLevelForKey(9));
    EXPECT_EQ([window backingType], 0u);
    EXPECT_EQ([drag_view() superview], [window contentView]);
}

TEST_F(Dragging, TheDragWindowGoesAwayWhenTold) {
    NSWindow* window = variable<NSWindow*>("dragWindow");
    [window orderFrontRegardless];
    ASSERT_TRUE([window isVisible]);
    [controller_ hideDragWindow:nil];
    EXPECT_FALSE([window isVisible]);
}

namespace {

// Records requests to the controller or its view, instead of doing them.
struct Delay {
    SEL selector;
    id object;
    NSTimeInterval seconds;
};
std::vector<Delay> delays;

void note_delay(id, SEL, SEL selector, id object, NSTimeInterval seconds) {
    delays.push_back({selector, object, seconds});
}

std::vector<NSEvent*> presses;

void note_press(id, SEL, NSEvent* event) { presses.push_back(event); }

NSPoint pointer_at;

NSPoint pointer_location(id, SEL) { return pointer_at; }

int cancellations = 0;

void note_cancelling(id, SEL) { cancellations++; }

// An image that was dragged.
struct Dragged {
    NSImage* image;
    NSPoint at;
    NSSize offset;
    NSEvent* event;
    NSPasteboard* pasteboard;
    id source;
    BOOL slides_back;
};
std::vector<Dragged> dragged;

void note_dragged(id, SEL, NSImage* image, NSPoint at, NSSize offset, NSEvent* event,
                  NSPasteboard* pasteboard, id source, BOOL slides_back) {
    dragged.push_back({image, at, offset, event, pasteboard, source, slides_back});
}

}  // namespace

TEST_F(Dragging, ADragBeginsATenthOfASecondAfterItsPress) {
    DVMenuItem* item = highlight();
    delays.clear();
    cancellations = 0;
    const test::ReplacedMethod waiting(
        [NSObject class], @selector(performSelector:withObject:afterDelay:), note_delay);
    const test::ReplacedMethod cancelling([NSMenu class], @selector(cancelTracking),
                                          note_cancelling);
    const std::string log = log_of([&] { after(kCGEventLeftMouseDown); });
    ASSERT_EQ(delays.size(), 1u);
    EXPECT_TRUE(sel_isEqual(delays[0].selector, @selector(beginDelayedDrag:)));
    EXPECT_EQ(delays[0].object, nil);
    EXPECT_DOUBLE_EQ(delays[0].seconds, 0.1);
    EXPECT_EQ(cancellations, 1);
    EXPECT_EQ(log, test::formatted("Delvio: Intercepting left mouse down event, %p\n"
                                   "Delvio: Open with elem: 0 Move-copy-elem: 0\n"
                                   "Delvio: Initiating drag for elem %p\n",
                                   item, [item tree]));
    CGPoint start;
    const Ivar field = class_getInstanceVariable([DVDelvio class], "dragStartLocation");
    memcpy(&start, reinterpret_cast<char*>(controller_) + ivar_getOffset(field), sizeof start);
    EXPECT_EQ(start.x, 30);
    EXPECT_EQ(start.y, 40);
}

TEST_F(Dragging, ADragsPressIsSixteenPointsLeftOfAndBelowThePointer) {
    presses.clear();
    pointer_at = NSMakePoint(300, 500);
    const test::ReplacedMethod pointer(object_getClass([NSEvent class]), @selector(mouseLocation),
                                       pointer_location);
    const test::ReplacedMethod pressing([DVDragView class], @selector(mouseDown:), note_press);
    const std::string log = log_of([&] { [controller_ beginDelayedDrag:nil]; });
    ASSERT_EQ(presses.size(), 1u);
    EXPECT_EQ([presses[0] type], NSLeftMouseDown);
    const CGFloat height = NSHeight([[[NSScreen screens] objectAtIndex:0] frame]);
    EXPECT_EQ([presses[0] locationInWindow].x, 284);
    // 16 further from the top, because the event's own position counts from the bottom.
    EXPECT_EQ([presses[0] locationInWindow].y, 484);
    EXPECT_EQ(log, test::formatted("Delvio: Activating delayed drag at %f %f\n", 284.0,
                                   height - 500 + 16));
}

TEST_F(Dragging, TheFilesIconIsDraggedByAPressOfTheDragWindow) {
    dv_tree_t* elem = [highlight() tree];
    [drag_view() setTheDragTarget:elem];
    dragged.clear();
    pointer_at = NSMakePoint(300, 500);
    set_held_modifier_flags(NSCommandKeyMask);
    const test::ReplacedMethod pointer(object_getClass([NSEvent class]), @selector(mouseLocation),
                                       pointer_location);
    const test::ReplacedMethod dragging(
        [NSWindow class], @selector(dragImage:at:offset:event:pasteboard:source:slideBack:),
        note_dragged);
    NSEvent* press = [NSEvent mouseEventWithType:NSLeftMouseDown
                                        location:NSMakePoint(7, 9)
                                   modifierFlags:0
                                       timestamp:1
                                    windowNumber:0
                                         context:nil
                                     eventNumber:77
                                      clickCount:3
                                        pressure:0];
    const double before = dv_double_time();
    const std::string log = log_of([&] { [drag_view() mouseDown:press]; });
    ASSERT_EQ(dragged.size(), 1u);
    const Dragged& drag = dragged[0];
    EXPECT_NE(drag.image, nil);
    EXPECT_TRUE(NSEqualPoints(drag.at, NSMakePoint(7, 9)));
    EXPECT_TRUE(NSEqualSizes(drag.offset, NSZeroSize));
    EXPECT_EQ(drag.pasteboard, [NSPasteboard pasteboardWithName:NSDragPboard]);
    EXPECT_EQ(drag.source, drag_view());
    EXPECT_TRUE(drag.slides_back);
    EXPECT_EQ([drag.event type], NSLeftMouseDown);
    EXPECT_TRUE(NSEqualPoints([drag.event locationInWindow], pointer_at));
    EXPECT_EQ([drag.event modifierFlags], static_cast<NSUInteger>(NSCommandKeyMask));
    EXPECT_GE([drag.event timestamp], before);
    EXPECT_EQ([drag.event windowNumber], [[drag_view() window] windowNumber]);
    EXPECT_EQ([drag.event eventNumber], 77);
    EXPECT_EQ([drag.event clickCount], 1);
    EXPECT_EQ([drag.event pressure], 1.0f);
    EXPECT_EQ(log, test::formatted("Delvio: Mouse down; dragging %s\n"
                                   "Delvio: Starting drag.. %f %f : Window: %p\n",
                                   folder_.path("a file").c_str(), 7.0, 9.0, [drag.event window]));
    EXPECT_EQ([drag_view() theDragTarget], nullptr);
}

TEST_F(Dragging, ATargetGoesWithItsView) {
    DVDragView* view = [[DVDragView alloc] initWithFrame:NSMakeRect(0, 0, 64, 64)];
    dv_tree_t* elem = [highlight() tree];
    [view setTheDragTarget:elem];
    const uint32_t freed = free_count;
    [view setTheDragTarget:elem];
    EXPECT_EQ(free_count, freed + 1) << "the copy before";
    [view release];
    EXPECT_EQ(free_count, freed + 2);
}

TEST_F(Dragging, AFileWhosePathIsNoTextIsNotDragged) {
    dragged.clear();
    const test::ReplacedMethod dragging(
        [NSWindow class], @selector(dragImage:at:offset:event:pasteboard:source:slideBack:),
        note_dragged);
    dv_tree_t* elem = dv_create_elem(dv_create_folder_dir("/tmp/"), "\xff", 1, 0);
    [drag_view() setTheDragTarget:elem];
    [drag_view() mouseDown:nil];
    EXPECT_EQ(dragged.size(), 0u);
    EXPECT_EQ([drag_view() theDragTarget], nullptr);
    dv_free_elem(elem);
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
        const std::string log =
            log_of([&] { EXPECT_EQ(after(kCGEventLeftMouseDown), kCGEventLeftMouseDown); });
        EXPECT_TRUE(same_);
        EXPECT_EQ(log, test::formatted("Delvio: Intercepting left mouse down event, %p\n"
                                       "Delvio: Open with elem: %d Move-copy-elem: %d\n",
                                       item, origin & 1, origin & 4));
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

TEST_F(Dragging, ADragWithoutATargetIsOnlyToldOfInTheLog) {
    EXPECT_EQ(test::output_of([&] { [drag_view() mouseDown:nil]; }), "");
}

TEST_F(Dragging, TheSourcesMessagesDuringADragChangeNothing) {
    dv_tree_t* elem = dv_create_elem(dv_create_folder_dir("/tmp/"), "dragged", 7, 0);
    [drag_view() setTheDragTarget:elem];
    dv_tree_t* target = [drag_view() theDragTarget];
    NSImage* image = [[[NSImage alloc] initWithSize:NSMakeSize(8, 8)] autorelease];
    const NSInteger before = [[NSPasteboard pasteboardWithName:NSDragPboard] changeCount];
    [drag_view() draggedImage:image beganAt:NSMakePoint(1, 2)];
    [drag_view() draggedImage:image movedTo:NSMakePoint(3, 4)];
    [drag_view() mouseDragged:nil];
    EXPECT_EQ([drag_view() theDragTarget], target);
    EXPECT_EQ([[NSPasteboard pasteboardWithName:NSDragPboard] changeCount], before);
    dv_free_elem(elem);
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
    test::expect_lines(log, {"Delvio: Draw drag view"});
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
