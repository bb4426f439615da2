// An open menu at rest: it sleeps, and every event wakes it. No timer of the test runs beside it,
// because a timer would wake it too; the test works on another thread.
#include <AppKit/AppKit.h>
#include <host/menu_tracking.h>
#include <GNUstepGUI/GSDisplayServer.h>
#include <X11/Xlib.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <future>
#include <mutex>
#include <string>
#include <thread>

#include "platform/menu_script.h"
#include "support/app.h"
#include "support/right_click.h"
#include "support/x_input.h"
#include "x11/screens.h"

namespace {

using std::chrono::milliseconds;

const int left = 300, top = 200;
const unsigned long red = 0xFF0000, green = 0x00FF00;

// How often the main thread has gone to sleep.
long sleeps() {
    std::ifstream status("/proc/self/status");
    const std::string label = "voluntary_ctxt_switches:";
    for (std::string word; status >> word;) {
        if (word != label) continue;
        long count = 0;
        status >> count;
        return count;
    }
    return -1;
}

// Waits for the condition; false after so long that it will never hold.
bool wait_for(const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(milliseconds(10));
    }
    return true;
}

NSImageRep* pixels(NSColor* color) {
    NSBitmapImageRep* bitmap =
        [[[NSBitmapImageRep alloc] initWithBitmapDataPlanes:nullptr
                                                 pixelsWide:16
                                                 pixelsHigh:16
                                              bitsPerSample:8
                                            samplesPerPixel:4
                                                   hasAlpha:YES
                                                   isPlanar:NO
                                             colorSpaceName:NSDeviceRGBColorSpace
                                                bytesPerRow:0
                                               bitsPerPixel:0] autorelease];
    for (int i = 0; i < 16 * 16; i++) [bitmap setColor:color atX:i % 16 y:i / 16];
    return bitmap;
}

NSImage* square(NSColor* color) {
    NSImage* image = [[[NSImage alloc] initWithSize:NSMakeSize(16, 16)] autorelease];
    [image addRepresentation:pixels(color)];
    return image;
}

}  // namespace

// The menu's delegate, and things that a program may have done on the main thread.
@interface Resting : NSObject {
  @public
    std::mutex guard;
    std::string highlighted;  // under the guard
    std::function<void()> work;
}
- (std::string)highlighted;
- (void)perform;
@end

@implementation Resting
- (void)menu:(NSMenu*)menu willHighlightItem:(NSMenuItem*)item {
    (void)menu;
    const std::lock_guard<std::mutex> lock(guard);
    highlighted = [[item title] UTF8String] ?: "";
}
- (std::string)highlighted {
    const std::lock_guard<std::mutex> lock(guard);
    return highlighted;
}
- (void)perform {
    work();
}
@end

// Reads its end of a pipe when the run loop reports data.
@interface PipeEnd : NSObject <RunLoopEvents> {
  @public
    int descriptor;
    std::function<void()> work;
}
@end

@implementation PipeEnd
- (void)receivedEvent:(void*)data
                 type:(RunLoopEventType)type
                extra:(void*)extra
              forMode:(NSString*)mode {
    (void)data, (void)type, (void)extra, (void)mode;
    char byte;
    if (read(descriptor, &byte, 1) == 1) work();
}
@end

// Changes its menu at each drawing, so that the menu is drawn again.
@interface RestlessView : NSView {
  @public
    std::atomic<int> draws;
    NSMenuItem* item;
}
@end

@implementation RestlessView
- (void)drawRect:(NSRect)rect {
    (void)rect;
    [item setTitle:[NSString stringWithFormat:@"drawn %d", ++draws]];
}
@end

namespace {

class MenuAtRest : public testing::Test {
  protected:
    void SetUp() override {
        pool_ = [NSAutoreleasePool new];
        test::start_application();
        resting_ = [[Resting new] autorelease];
        menu_ = [[[NSMenu alloc] initWithTitle:@"root"] autorelease];
        [menu_ setAutoenablesItems:NO];
        [menu_ setDelegate:(id)resting_];
        for (NSString* title in @[ @"alpha", @"beta", @"gamma" ]) add(title);
        input_.move(10, 10);
    }
    void TearDown() override {
        EXPECT_EQ([MenuSession current], nil);
        [menu_ setDelegate:nil];
        [pool_ release];
    }
    NSMenuItem* add(NSString* title) {
        NSMenuItem* item = [[[NSMenuItem alloc] initWithTitle:title
                                                       action:@selector(description)
                                                keyEquivalent:@""] autorelease];
        [item setTarget:resting_];
        [menu_ addItem:item];
        return item;
    }

    NSMenuItem* beta() const { return (NSMenuItem*)[menu_ itemWithTitle:@"beta"]; }

    // Opens the popup and runs `hand` on a separate thread once nothing happens any more. `hand`
    // ends with the menu closed; if it does not, the guard closes the menu.
    void run(const std::function<void()>& hand) {
        std::thread thread([&] {
            EXPECT_TRUE(wait_for([this] { return !input_.pointer_is_free(); }));
            come_to_rest();
            hand();
            EXPECT_TRUE(is_over()) << "the menu did not close";
            if (!over_) on_main([] { [[MenuSession current] cancel]; });
        });
        [NSMenu popUpContextMenu:menu_
                       withEvent:test::right_click(screen_point({left, top}))
                         forView:nil];
        over_ = true;
        thread.join();
    }
    bool is_over() {
        return wait_for([this] { return over_.load(); });
    }
    // Waits until the main thread has slept without interruption.
    void come_to_rest() {
        long before = -1;
        EXPECT_TRUE(wait_for([&] {
            const long now = sleeps();
            const bool same = now == before;
            before = now;
            std::this_thread::sleep_for(milliseconds(200));
            return same;
        })) << "the menu never comes to rest";
    }
    bool is_highlighted(const std::string& title) {
        return wait_for([&] { return [resting_ highlighted] == title; });
    }
    bool has_color(MenuPoint at, unsigned long color) {
        return wait_for([&] { return input_.pixel(at.x, at.y) == color; });
    }
    // Runs it on the main thread, and returns when it has ended.
    void on_main(std::function<void()> work) {
        resting_->work = std::move(work);
        @autoreleasepool {
            [resting_ performSelectorOnMainThread:@selector(perform)
                                       withObject:nil
                                    waitUntilDone:YES
                                            modes:@[ NSEventTrackingRunLoopMode ]];
        }
    }
    // Runs it on the main thread a moment later, from a timer.
    void by_timer(const std::function<void()>& work) {
        on_main([&] { test::while_tracking(0.3, resting_, @selector(perform), NO); });
        resting_->work = work;
    }
    MenuPoint image_point() const {
        const MenuPoint row = row_point(0, @"beta");
        const MenuLevel& level = shown_level(0);
        return {level.panel().left + level.layout().image_left() + 8, row.y};
    }

    NSAutoreleasePool* pool_;
    Resting* resting_;
    NSMenu* menu_;
    test::XInput input_;
    std::atomic<bool> over_ = false;
};

}  // namespace

TEST_F(MenuAtRest, NeverWakesWhileNothingHappens) {
    run([this] {
        const long before = sleeps();
        std::this_thread::sleep_for(milliseconds(3000));
        EXPECT_LE(sleeps() - before, 10);
        input_.key("Escape");
    });
}

TEST_F(MenuAtRest, NeverWakesWithThePointerOnARowAndALevelOpen) {
    NSMenuItem* folder = add(@"folder");
    NSMenu* submenu = [[[NSMenu alloc] initWithTitle:@"folder"] autorelease];
    [submenu addItemWithTitle:@"leaf" action:NULL keyEquivalent:@""];
    [folder setSubmenu:submenu];
    run([this] {
        MenuPoint at;
        on_main([&] { at = row_point(0, @"folder"); });
        input_.move(at.x, at.y);
        EXPECT_TRUE(wait_for([this] {
            bool is_open = false;
            on_main([&] { is_open = level_is_shown(1); });
            return is_open;
        }));
        come_to_rest();
        const long before = sleeps();
        std::this_thread::sleep_for(milliseconds(3000));
        EXPECT_LE(sleeps() - before, 10);
        input_.key("Escape");
    });
}

TEST_F(MenuAtRest, AnswersToAKey) {
    run([this] {
        input_.key("Down");
        EXPECT_TRUE(is_highlighted("alpha"));
        come_to_rest();
        input_.key("Escape");
    });
}

TEST_F(MenuAtRest, AnswersToThePointer) {
    run([this] {
        MenuPoint at;
        on_main([&] { at = row_point(0, @"beta"); });
        come_to_rest();
        input_.move(at.x, at.y);
        EXPECT_TRUE(is_highlighted("beta"));
        come_to_rest();
        input_.move(10, 10);
        EXPECT_TRUE(is_highlighted(""));
        come_to_rest();
        input_.click(1);
    });
}

TEST_F(MenuAtRest, AnswersToAModifierThatChoosesAnAlternate) {
    NSMenuItem* alternate = add(@"alternate");
    [alternate setAlternate:YES];
    [alternate setKeyEquivalentModifierMask:NSShiftKeyMask];
    run([this] {
        input_.key("Up");
        EXPECT_TRUE(is_highlighted("gamma"));
        come_to_rest();
        input_.key_down("Shift_L");
        EXPECT_TRUE(is_highlighted("alternate"));
        come_to_rest();
        input_.key_up("Shift_L");
        EXPECT_TRUE(is_highlighted("gamma"));
        input_.key("Escape");
    });
}

TEST_F(MenuAtRest, GetsTheKeyboardWhenAnotherProgramLetsItGo) {
    Display* other = XOpenDisplay(nullptr);
    ASSERT_EQ(XGrabKeyboard(other, DefaultRootWindow(other), False, GrabModeAsync, GrabModeAsync,
                            CurrentTime),
              GrabSuccess);
    XSync(other, False);
    std::thread hand([&] {
        EXPECT_TRUE(wait_for([this] { return !input_.pointer_is_free(); }));
        XUngrabKeyboard(other, CurrentTime);
        XSync(other, False);
        EXPECT_TRUE(wait_for([this] { return !input_.keyboard_is_free(); }));
        input_.key("Escape");
        EXPECT_TRUE(is_over());
        if (!over_) on_main([] { [[MenuSession current] cancel]; });
    });
    [NSMenu popUpContextMenu:menu_
                   withEvent:test::right_click(screen_point({left, top}))
                     forView:nil];
    over_ = true;
    hand.join();
    XCloseDisplay(other);
}

TEST_F(MenuAtRest, ShowsWhatATimerDoesToAnItem) {
    [beta() setImage:square([NSColor greenColor])];
    run([=, this] {
        MenuPoint at;
        on_main([&] { at = image_point(); });
        EXPECT_TRUE(has_color(at, green));
        by_timer([this] { [beta() setImage:square([NSColor redColor])]; });
        EXPECT_TRUE(has_color(at, red));
        input_.key("Escape");
    });
}

TEST_F(MenuAtRest, ShowsAnImageWhosePixelsArrive) {
    NSImage* image = square([NSColor greenColor]);
    [beta() setImage:image];
    run([=, this] {
        MenuPoint at;
        on_main([&] { at = image_point(); });
        EXPECT_TRUE(has_color(at, green));
        on_main([=] {
            [image removeRepresentation:[[image representations] objectAtIndex:0]];
            [image addRepresentation:pixels([NSColor redColor])];
            MenuRun::current()->image_changed(image);
        });
        EXPECT_TRUE(has_color(at, red));
        input_.key("Escape");
    });
}

TEST_F(MenuAtRest, AnswersToAnEventThatATimerPosts) {
    run([this] {
        by_timer([] {
            NSEvent* escape = [NSEvent keyEventWithType:NSKeyDown
                                               location:NSZeroPoint
                                          modifierFlags:0
                                              timestamp:0
                                           windowNumber:0
                                                context:nil
                                             characters:@"\x1B"
                            charactersIgnoringModifiers:@"\x1B"
                                              isARepeat:NO
                                                keyCode:9];
            [NSApp postEvent:escape atStart:NO];
        });
    });
}

// The answer to a query also brings the events before it: nothing is left on the connection that
// could wake anybody.
TEST_F(MenuAtRest, AnswersToAnEventThatHasBeenReadAlready) {
    run([this] {
        by_timer([this] {
            input_.key("Escape");
            current_pointer();
        });
    });
}

TEST_F(MenuAtRest, IsEndedByATimer) {
    run([this] { by_timer([this] { [menu_ cancelTracking]; }); });
}

TEST_F(MenuAtRest, IsEndedByADescriptorsReader) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    PipeEnd* reader = [[PipeEnd new] autorelease];
    reader->descriptor = ends[0];
    reader->work = [this] { [menu_ cancelTracking]; };
    void* data = reinterpret_cast<void*>(intptr_t{ends[0]});
    [[NSRunLoop currentRunLoop] addEvent:data
                                    type:ET_RDESC
                                 watcher:reader
                                 forMode:NSEventTrackingRunLoopMode];
    run([&] { EXPECT_EQ(write(ends[1], "", 1), 1); });
    [[NSRunLoop currentRunLoop] removeEvent:data
                                       type:ET_RDESC
                                    forMode:NSEventTrackingRunLoopMode
                                        all:YES];
    close(ends[0]);
    close(ends[1]);
}

TEST_F(MenuAtRest, IsEndedByADelayedMessage) {
    run([this] {
        on_main([this] {
            [menu_ performSelector:@selector(cancelTracking)
                        withObject:nil
                        afterDelay:0.3
                           inModes:@[ NSEventTrackingRunLoopMode ]];
        });
    });
}

TEST_F(MenuAtRest, IsNotKeptAwakeAllTheTimeByAViewThatChangesIt) {
    RestlessView* view =
        [[[RestlessView alloc] initWithFrame:NSMakeRect(0, 0, 40, 20)] autorelease];
    view->item = (NSMenuItem*)[menu_ itemWithTitle:@"gamma"];
    [beta() setView:view];
    std::thread hand([&] {
        EXPECT_TRUE(wait_for([this] { return !input_.pointer_is_free(); }));
        const int before = view->draws;
        std::this_thread::sleep_for(milliseconds(2000));
        const int draws = view->draws - before;
        EXPECT_GT(draws, 2);
        EXPECT_LE(draws, 150);
        input_.key("Escape");
        EXPECT_TRUE(is_over());
        if (!over_) on_main([] { [[MenuSession current] cancel]; });
    });
    [NSMenu popUpContextMenu:menu_
                   withEvent:test::right_click(screen_point({left, top}))
                     forView:nil];
    over_ = true;
    hand.join();
}
