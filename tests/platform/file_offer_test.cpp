// What a drag takes from the user's input when another client has some of it.
#include "x11/file_offer.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <functional>
#include <thread>

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

// The window of a drag.
unsigned drag_window() {
    static test::XInput owner;
    static const auto window = static_cast<unsigned>(owner.new_window());
    return window;
}

// The pasteboard's daemon, or a program that begins a drag: it takes the selection of drags.
class Taker {
  public:
    Taker()
        : display_(XOpenDisplay(nullptr)), selection_(XInternAtom(display_, "XdndSelection", 0)) {
        window_ = XCreateSimpleWindow(display_, DefaultRootWindow(display_), 0, 0, 1, 1, 0, 0, 0);
    }
    ~Taker() { XCloseDisplay(display_); }
    Taker(const Taker&) = delete;
    Taker& operator=(const Taker&) = delete;

    void take() {
        // The server's time must be later than that of the offer.
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
        XSetSelectionOwner(display_, selection_, window_, CurrentTime);
        XSync(display_, False);
    }
    // Whether the selection is this program's once the offer has answered.
    bool has_it() {
        FileOffer::shared();
        return XGetSelectionOwner(display_, selection_) == window_;
    }

  private:
    Display* display_;
    Atom selection_;
    Window window_;
};

// The program that got the drop, and asks for the files.
class Asker {
  public:
    Asker() : display_(XOpenDisplay(nullptr)) {
        window_ = XCreateSimpleWindow(display_, DefaultRootWindow(display_), 0, 0, 1, 1, 0, 0, 0);
    }
    ~Asker() { XCloseDisplay(display_); }
    Asker(const Asker&) = delete;
    Asker& operator=(const Asker&) = delete;

    // The request has left the server when this returns: the server sends out what it has for every
    // client before it reads on, so the second answer comes after the owner's event.
    void ask() {
        XConvertSelection(display_, XInternAtom(display_, "XdndSelection", 0),
                          XInternAtom(display_, "text/uri-list", 0),
                          XInternAtom(display_, "answer", 0), window_, CurrentTime);
        XSync(display_, False);
        XSync(display_, False);
    }
    // Waits for what is under way.
    bool has_answer() {
        const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        XEvent event;
        do {
            XSync(display_, False);
            if (XCheckTypedEvent(display_, SelectionNotify, &event)) return true;
        } while (std::chrono::steady_clock::now() < limit);
        return false;
    }

  private:
    Display* display_;
    Window window_;
};

constexpr char one_file[] = "file:///a\r\n";

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

TEST(FileOffer, KeepsTheFilesThoughTheDaemonTakesTheSelectionDuringTheDrag) {
    Taker daemon;
    FileOffer::shared()->begin(one_file, drag_window());
    daemon.take();
    EXPECT_FALSE(daemon.has_it());
    daemon.take();
    EXPECT_FALSE(daemon.has_it());
    FileOffer::shared()->end(0);
}

TEST(FileOffer, LeavesTheSelectionToWhoTakesItAfterTheDrag) {
    Taker other;
    FileOffer::shared()->begin(one_file, drag_window());
    FileOffer::shared()->end(0);
    other.take();
    EXPECT_TRUE(other.has_it());
}

TEST(FileOffer, AnswersARequestThatComesWhileThePointerIsLetGo) {
    FileOffer* const offer = FileOffer::shared();
    offer->begin(one_file, drag_window());
    Asker target;
    target.ask();
    offer->let_pointer_go();
    EXPECT_TRUE(target.has_answer());
    target.ask();
    offer->button_is_down();
    EXPECT_TRUE(target.has_answer());
    offer->end(0);
}
