// Grabbing the pointer for a drag when another client has it.
#include "x11/file_offer.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <thread>

#include <X11/Xlib.h>  // after GoogleTest: it defines None and Bool

namespace {

// Another program, such as a window manager that handles a press.
class Holder {
  public:
    Holder() : display_(XOpenDisplay(nullptr)) {
        EXPECT_EQ(XGrabPointer(display_, DefaultRootWindow(display_), False, ButtonReleaseMask,
                               GrabModeAsync, GrabModeAsync, None, None, CurrentTime),
                  GrabSuccess);
    }
    ~Holder() { XCloseDisplay(display_); }
    Holder(const Holder&) = delete;
    Holder& operator=(const Holder&) = delete;

    void let_go() {
        XUngrabPointer(display_, CurrentTime);
        XSync(display_, False);
    }

  private:
    Display* display_;
};

}  // namespace

TEST(FileOffer, APointerThatAnotherClientHasForAMomentIsWaitedFor) {
    Holder holder;
    std::atomic<bool> begins = false;
    std::thread soon([&] {
        while (!begins) usleep(1000);
        usleep(20000);  // some tries
        holder.let_go();
    });
    begins = true;
    EXPECT_TRUE(FileOffer::shared()->hold_pointer());
    soon.join();
    FileOffer::shared()->let_pointer_go();
}

TEST(FileOffer, APointerThatAnotherClientKeepsIsNotWaitedForForEver) {
    const Holder holder;
    EXPECT_FALSE(FileOffer::shared()->hold_pointer());
}
