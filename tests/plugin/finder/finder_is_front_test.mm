#include "finder/dv_finder.h"

#include <AppKit/AppKit.h>
#include <host/process.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <functional>

#include "plugin/tree_support.h"
#include "support/app.h"
#include "support/dv_log.h"

// Included last, because its macros break other headers.
#include <X11/Xlib.h>
#include <X11/Xatom.h>

namespace {

class FinderIsFront : public testing::Test {
  protected:
    FinderIsFront() : display_(XOpenDisplay(nullptr)) {
        test::start_application();
        declare_process_signature('MACS');
        window_ = [[NSWindow alloc] initWithContentRect:NSMakeRect(100, 100, 200, 200)
                                              styleMask:NSTitledWindowMask
                                                backing:NSBackingStoreBuffered
                                                  defer:NO];
        [window_ orderFrontRegardless];
        focus(static_cast<Window>(reinterpret_cast<uintptr_t>([window_ windowRef])));
    }
    ~FinderIsFront() override {
        [window_ close];
        if (other_) pclose(other_);
        declare_process_signature(0);
        dvEnableDebugOutput = 0;
        dvdprintf("no sink any more\n");
        XCloseDisplay(display_);
    }
    // A window of another program comes to the front.
    void show_other_application() {
        other_ = popen(WINDOW_CLIENT " window show focus", "w");
        for (int i = 0; i < 3000 && dv_finder_is_front(); i++) usleep(10000);
    }
    void focus(Window window) {
        XSync(display_, False);
        // The toolkit's connection maps our own window, a little later.
        XWindowAttributes attributes = {};
        while (attributes.map_state != IsViewable) {
            XGetWindowAttributes(display_, window, &attributes);
            usleep(10000);
        }
        XSetInputFocus(display_, window, RevertToPointerRoot, CurrentTime);
        XSync(display_, False);
    }
    static std::string answer_and_lines() {
        dvEnableDebugOutput = 1;
        return test::output_of([] { printf("%d\n", dv_finder_is_front()); });
    }
    Display* display_;
    NSWindow* window_;
    FILE* other_ = nullptr;
};

TEST_F(FinderIsFront, WhenItsWindowHasTheKeyboard) {
    EXPECT_TRUE(dv_finder_is_front());
    EXPECT_EQ(answer_and_lines(),
              "Delvio: Checking if we're in the Finder..\nDelvio: This is the Finder\n1\n");
}

TEST_F(FinderIsFront, NotWhileAnotherApplicationIsInFront) {
    show_other_application();
    EXPECT_FALSE(dv_finder_is_front());
    EXPECT_EQ(answer_and_lines(),
              "Delvio: Checking if we're in the Finder..\nDelvio: This is NOT the Finder\n0\n");
}

TEST_F(FinderIsFront, NotInAProcessOfAnotherSignature) {
    declare_process_signature('TEST');
    EXPECT_FALSE(dv_finder_is_front());
}

TEST_F(FinderIsFront, NotWhereNoProcessIsInFront) {
    XSetInputFocus(display_, None, RevertToNone, CurrentTime);
    XSync(display_, False);
    EXPECT_EQ(answer_and_lines(),
              "Delvio: Checking if we're in the Finder..\nDelvio: GetCurrentProcess failed..\n0\n");
}

TEST_F(FinderIsFront, LogsNothingWithLoggingOff) {
    EXPECT_EQ(test::output_of([] { dv_finder_is_front(); }), "");
}

}  // namespace
