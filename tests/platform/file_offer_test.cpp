// What a drag takes from the user's input when another client has some of it.
#include "x11/file_offer.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <functional>

#include "support/x_input.h"

#include <X11/keysym.h>
#include <X11/Xlib.h>  // after GoogleTest: it defines None and Bool

namespace {

// What happens while the offer pauses before it tries again.
std::function<void()> during_pause;
int pauses = 0;

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

// A window manager with a shortcut: Escape with one modifier.
class Shortcut {
  public:
    explicit Shortcut(unsigned modifier) : display_(XOpenDisplay(nullptr)) {
        XGrabKey(display_, XKeysymToKeycode(display_, XK_Escape), modifier,
                 DefaultRootWindow(display_), False, GrabModeAsync, GrabModeAsync);
        XSync(display_, False);
    }
    ~Shortcut() { XCloseDisplay(display_); }
    Shortcut(const Shortcut&) = delete;
    Shortcut& operator=(const Shortcut&) = delete;

    bool was_used() {
        XSync(display_, False);
        XEvent event;
        return XCheckTypedEvent(display_, KeyPress, &event);
    }

  private:
    Display* display_;
};

}  // namespace

// Replaces the C library's function.
extern "C" int usleep(useconds_t) {
    pauses++;
    if (during_pause) during_pause();
    return 0;
}

TEST(FileOffer, APointerThatAnotherClientHasForAMomentIsWaitedFor) {
    Holder holder;
    pauses = 0;
    during_pause = [&] {
        if (pauses == 3) holder.let_go();
    };
    EXPECT_TRUE(FileOffer::shared()->hold_pointer());
    EXPECT_EQ(pauses, 3);
    FileOffer::shared()->let_pointer_go();
    during_pause = nullptr;
}

TEST(FileOffer, APointerThatAnotherClientKeepsIsNotWaitedForForEver) {
    const Holder holder;
    EXPECT_FALSE(FileOffer::shared()->hold_pointer());
}

TEST(FileOffer, EscapeIsSeenThoughAWindowManagerHasItWithAModifier) {
    Shortcut shortcut(Mod1Mask);
    test::XInput input;
    FileOffer::shared()->watch_for_escape();
    input.key_down("Alt_L");
    input.key("Escape");
    input.key_up("Alt_L");
    EXPECT_FALSE(FileOffer::shared()->cancelled()) << "the shortcut is the window manager's";
    EXPECT_TRUE(shortcut.was_used());
    for (const char* modifier : {"Super_L", "Shift_L"}) {
        input.key_down(modifier);
        input.key("Escape");
        input.key_up(modifier);
        const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (!FileOffer::shared()->cancelled() && std::chrono::steady_clock::now() < limit) {
        }
        ASSERT_TRUE(FileOffer::shared()->cancelled()) << modifier;
        FileOffer::shared()->leave_escape_alone();
        FileOffer::shared()->watch_for_escape();
    }
    FileOffer::shared()->leave_escape_alone();
}
