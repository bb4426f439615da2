#include <Carbon/Processes.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

#include "support/waiting.h"

// Included last, because its macros break other headers.
#include <X11/Xlib.h>
#include <X11/Xatom.h>

namespace {

// No process has this identifier; a window may claim it.
const unsigned long claimed_process = 4194305;

bool is_this_process(const ProcessSerialNumber& psn) {
    ProcessSerialNumber current;
    Boolean same = false;
    EXPECT_EQ(GetCurrentProcess(&current), noErr);
    EXPECT_EQ(SameProcess(&psn, &current, &same), noErr);
    return same;
}

const std::string nobody = std::to_string(procNotFound);

class FrontProcess : public testing::Test {
  protected:
    FrontProcess() : display_(XOpenDisplay(nullptr)), root_(DefaultRootWindow(display_)) {}
    ~FrontProcess() override {
        XDeleteProperty(display_, root_, atom("_NET_SUPPORTING_WM_CHECK"));
        XDeleteProperty(display_, root_, atom("_NET_ACTIVE_WINDOW"));
        XCloseDisplay(display_);
        for (const pid_t child : {manager_, other_}) {
            if (child) kill(child, SIGTERM);
            if (child) waitpid(child, nullptr, 0);
        }
    }

    // "this", "other", "claimed", "stranger", or the error's number.
    std::string front_process() const {
        ProcessSerialNumber psn;
        const OSErr error = GetFrontProcess(&psn);
        if (error != noErr) return std::to_string(error);
        if (is_this_process(psn)) return "this";
        if (psn.lowLongOfPSN == claimed_process) return "claimed";
        return psn.lowLongOfPSN == static_cast<UInt32>(other_) ? "other" : "stranger";
    }

    Atom atom(const char* name) const { return XInternAtom(display_, name, False); }

    void set_number(Window window, const char* name, unsigned long number, Atom type = XA_WINDOW) {
        XChangeProperty(display_, window, atom(name), type, 32, PropModeReplace,
                        reinterpret_cast<unsigned char*>(&number), 1);
        XSync(display_, False);
    }

    void set_text(Window window, Atom property, const std::string& text) {
        XChangeProperty(display_, window, property, XA_STRING, 8, PropModeReplace,
                        reinterpret_cast<const unsigned char*>(text.data()),
                        static_cast<int>(text.size()));
        XSync(display_, False);
    }

    Window make_window(unsigned long process) {
        const Window window = XCreateSimpleWindow(display_, root_, 10, 10, 100, 100, 0, 0, 0);
        if (process) set_number(window, "_NET_WM_PID", process, XA_CARDINAL);
        // A window without a window manager appears at once.
        XMapWindow(display_, window);
        XSync(display_, False);
        return window;
    }

    void focus(Window window) {
        XSetInputFocus(display_, window, RevertToPointerRoot, CurrentTime);
        XSync(display_, False);
    }

    // As a task bar does.
    void activate(Window window) const {
        XEvent event = {};
        event.xclient.type = ClientMessage;
        event.xclient.window = window;
        event.xclient.message_type = atom("_NET_ACTIVE_WINDOW");
        event.xclient.format = 32;
        event.xclient.data.l[0] = 2;
        XSendEvent(display_, root_, False, SubstructureNotifyMask | SubstructureRedirectMask,
                   &event);
        XSync(display_, False);
    }

    Window window_of_another_process() {
        int ends[2];
        EXPECT_EQ(pipe(ends), 0);
        other_ = fork();
        if (other_ == 0) {
            Display* display = XOpenDisplay(nullptr);
            const Window window = XCreateSimpleWindow(display, DefaultRootWindow(display), 200, 10,
                                                      100, 100, 0, 0, 0);
            XMapWindow(display, window);
            XSync(display, False);
            if (write(ends[1], &window, sizeof window) < 0) _exit(1);
            pause();
        }
        Window window = None;
        EXPECT_EQ(read(ends[0], &window, sizeof window), static_cast<ssize_t>(sizeof window));
        close(ends[0]);
        close(ends[1]);
        return window;
    }

    void start_window_manager() {
        manager_ = fork();
        if (manager_ == 0) {
            execlp("openbox", "openbox", "--sm-disable", static_cast<char*>(nullptr));
            _exit(127);
        }
        ASSERT_TRUE(
            test::wait_for([this] { return has_property(root_, "_NET_SUPPORTING_WM_CHECK"); }));
    }

    bool has_property(Window window, const char* name) const {
        Atom type = None;
        int format;
        unsigned long count, rest;
        unsigned char* data = nullptr;
        XGetWindowProperty(display_, window, atom(name), 0, 1, False, AnyPropertyType, &type,
                           &format, &count, &rest, &data);
        XFree(data);
        return type != None;
    }

    Display* display_;
    Window root_;
    pid_t manager_ = 0, other_ = 0;
};

const unsigned long this_process = static_cast<unsigned long>(getpid());

TEST_F(FrontProcess, IsTheOneWithTheKeyboardWhereNoWindowManagerRuns) {
    const Window own = make_window(this_process);
    const Window other = window_of_another_process();
    focus(own);
    EXPECT_EQ(front_process(), "this");
    focus(other);
    EXPECT_EQ(front_process(), "other");
}

TEST_F(FrontProcess, IsNobodysWhereNoWindowHasTheKeyboard) {
    focus(None);
    EXPECT_EQ(front_process(), nobody);
    focus(PointerRoot);
    EXPECT_EQ(front_process(), nobody);
    focus(root_);
    EXPECT_EQ(front_process(), nobody);
}

TEST_F(FrontProcess, IsTheMakersWhereTheWindowDoesNotSay) {
    focus(make_window(0));
    EXPECT_EQ(front_process(), "this");
    focus(window_of_another_process());
    EXPECT_EQ(front_process(), "other");
}

TEST_F(FrontProcess, IsTheMakersAlsoWhereTheWindowClaimsToBeAnothers) {
    focus(make_window(claimed_process));
    EXPECT_EQ(front_process(), "this");
    const Window other = window_of_another_process();
    set_number(other, "_NET_WM_PID", this_process, XA_CARDINAL);
    focus(other);
    EXPECT_EQ(front_process(), "other");
}

TEST_F(FrontProcess, IsNobodysWhereTheWindowIsAnotherMachines) {
    const Window window = make_window(this_process);
    focus(window);
    set_text(window, XA_WM_CLIENT_MACHINE, "somewhere-else");
    EXPECT_EQ(front_process(), nobody);
    char name[256] = "";
    gethostname(name, sizeof name - 1);
    set_text(window, XA_WM_CLIENT_MACHINE, name);
    EXPECT_EQ(front_process(), "this");
}

TEST_F(FrontProcess, IsTheActiveWindowsWhereAWindowManagerTells) {
    const Window own = make_window(this_process);
    const Window other = window_of_another_process();
    const Window manager = make_window(0);
    set_number(root_, "_NET_SUPPORTING_WM_CHECK", manager);
    set_number(manager, "_NET_SUPPORTING_WM_CHECK", manager);
    focus(other);
    EXPECT_EQ(front_process(), nobody);
    set_number(root_, "_NET_ACTIVE_WINDOW", own);
    EXPECT_EQ(front_process(), "this");
    set_number(root_, "_NET_ACTIVE_WINDOW", other);
    EXPECT_EQ(front_process(), "other");
    set_number(root_, "_NET_ACTIVE_WINDOW", None);
    EXPECT_EQ(front_process(), nobody);
}

TEST_F(FrontProcess, IsNotWhatAWindowManagerThatHasGoneSaid) {
    const Window own = make_window(this_process);
    const Window manager = make_window(0);
    set_number(root_, "_NET_SUPPORTING_WM_CHECK", manager);
    set_number(root_, "_NET_ACTIVE_WINDOW", window_of_another_process());
    XDestroyWindow(display_, manager);
    focus(own);
    EXPECT_EQ(front_process(), "this");
}

TEST_F(FrontProcess, IsNobodysWhenTheActiveWindowWentWithItsProcess) {
    const Window manager = make_window(0);
    set_number(root_, "_NET_SUPPORTING_WM_CHECK", manager);
    set_number(manager, "_NET_SUPPORTING_WM_CHECK", manager);
    set_number(root_, "_NET_ACTIVE_WINDOW", window_of_another_process());
    EXPECT_EQ(front_process(), "other");
    kill(other_, SIGTERM);
    EXPECT_TRUE(test::wait_for([this] { return front_process() == nobody; }));
}

TEST_F(FrontProcess, FollowsARealWindowManager) {
    start_window_manager();
    const Window own = make_window(this_process);
    const Window other = window_of_another_process();
    EXPECT_TRUE(test::wait_for([&] { return activate(own), front_process() == "this"; }));
    EXPECT_TRUE(test::wait_for([&] { return activate(other), front_process() == "other"; }));
}

}  // namespace
