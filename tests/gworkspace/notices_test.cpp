// Delvio's messages and questions in GWorkspace, with a window manager: close buttons give harmless
// answers, and a failed pick is named.
#include <stdlib.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <optional>

#include "gworkspace/viewer_desk.h"
#include "hosts/bus_service.h"
#include "support/managed_windows.h"

using namespace test;

namespace fs = std::filesystem;

namespace {

class Notices : public ViewerDesk {
  protected:
    static void SetUpTestSuite() {
        setenv("DELVIO_TEST_WINDOW_MANAGER", "openbox", 1);
        const std::string basket = getenv("HOME") + std::string("/Desktop/basket");
        fs::create_directories(basket);
        const std::string command =
            "defaults write org.delvio.Delvio folders '(\"" + basket + "\")' >/dev/null 2>&1";
        ASSERT_EQ(system(command.c_str()), 0);
        bus_ = std::make_unique<SessionBus>();
        desktop_ =
            std::make_unique<BusService>(*bus_, "org.freedesktop.Notifications",
                                         "/org/freedesktop/Notifications", notifications_interface);
        desktop_->set_answer("GetCapabilities", "(['actions', 'body'],)");
        desktop_->set_answer("Notify", "(uint32 7,)");
        ViewerDesk::SetUpTestSuite();
    }
    static void TearDownTestSuite() {
        ViewerDesk::TearDownTestSuite();
        desktop_.reset();
        bus_.reset();
    }
    void SetUp() override {
        ViewerDesk::SetUp();
        if (!HasFatalFailure()) show("icons");
    }
    // Leaves nothing open for the next test.
    void TearDown() override {
        for (const char* title : {"Replace duplicate files?", "Name Already Taken"}) {
            if (is_shown(title)) close_by_title_bar(title);
        }
        ViewerDesk::TearDown();
    }

    bool is_shown(const std::string& title) const {
        for (const ManagedWindow& window : windows_.shown()) {
            if (window.title == title) return true;
        }
        return false;
    }
    // Closes the window with the button in its title bar.
    void close_by_title_bar(const std::string& title) {
        std::optional<ManagedWindow> window;
        ASSERT_TRUE(wait_until([&] { return (window = windows_.settled(title)).has_value(); }))
            << title;
        EXPECT_TRUE(window->can_be_closed);
        EXPECT_TRUE(window->has_one_size);
        const ScreenPoint button = windows_.close_button(*window);
        input().move(button.x, button.y);
        input().click(1);
        EXPECT_TRUE(wait_until([&] { return !is_shown(title); })) << title;
        EXPECT_TRUE(manager().is_running()) << manager().account();
    }
    // A new file in the folder that the viewer shows.
    static std::string add(const std::string& name) {
        manager().ask("show icons");
        return path(name);
    }
    void expect_notice(const std::string& name, const std::string& reason) {
        right_click(item("icons", add(name)));
        pick({name});
        const std::string title = "“" + name + "” cannot be opened.";
        ASSERT_TRUE(wait_until([&] { return is_shown(title); })) << name;
        EXPECT_EQ(manager().ask("told"), title + "\n" + reason);
        close_by_title_bar(title);
    }

    // Waits until the desktop was asked to show a notice with these words.
    static bool is_told(const std::string& words) {
        return wait_until([&] {
            const Lines calls = desktop_->calls();
            return std::ranges::any_of(calls, [&](const std::string& call) {
                return call.find("Notifications.Notify(") != call.npos &&
                       call.find(words) != call.npos;
            });
        });
    }

    static std::unique_ptr<SessionBus> bus_;
    static std::unique_ptr<BusService> desktop_;
    ManagedWindows windows_;
};

std::unique_ptr<SessionBus> Notices::bus_;
std::unique_ptr<BusService> Notices::desktop_;

}  // namespace

TEST_F(Notices, ATypeWithoutAProgramIsNamed) {
    changing_folder().file("unknown.qqq", std::string("\0\1\2", 3));
    expect_notice("unknown.qqq",
                  "No installed program is set for files of its type, application/octet-stream.");
}

TEST_F(Notices, ABrokenLinkIsNamed) {
    changing_folder().link("gone.txt", "/nowhere/there");
    expect_notice("gone.txt", "It is a link to /nowhere/there, which is not there.");
}

TEST_F(Notices, APipeIsNamedAndNotWaitedFor) {
    mkfifo(path("pipe.txt").c_str(), 0600);
    expect_notice("pipe.txt", "It is a pipe, which no program opens as a file.");
}

TEST_F(Notices, ClosingTheAlertReplacesNothing) {
    const std::string old = getenv("HOME") + std::string("/Desktop/basket/kept.txt");
    std::ofstream(old) << "old";
    const std::string source = changing_folder().file("kept.txt", "new");
    right_click(item("icons", add("kept.txt")));
    pick({"basket", "Move selection here"});
    close_by_title_bar("Replace duplicate files?");
    close_by_title_bar("Name Already Taken");  // the question that follows a refusal
    EXPECT_TRUE(wait_until([&] { return manager().ask("idle") == "yes"; }));
    EXPECT_EQ(read_file(old), "old");
    EXPECT_EQ(read_file(source), "new");
}

TEST_F(Notices, AMoveIsToldInANoticeOfTheDesktopWhoseButtonUndoesIt) {
    const std::string old = getenv("HOME") + std::string("/Desktop/basket/regretted.txt");
    std::ofstream(old) << "old";
    const std::string source = changing_folder().file("regretted.txt", "new");
    right_click(item("icons", add("regretted.txt")));
    pick({"basket", "Move selection here"});
    click_at("button 2");
    ASSERT_TRUE(wait_until([&] { return read_file(old) == "new"; }));
    ASSERT_TRUE(is_told("'Moved to “basket”', '“regretted.txt”', ['undo', 'Undo']"));
    desktop_->emit("ActionInvoked", "(uint32 7, 'undo')");
    EXPECT_TRUE(is_told("'Undone', '\"regretted.txt\" is back in "));
    EXPECT_EQ(read_file(source), "new");
    EXPECT_EQ(read_file(old), "old");
    fs::remove(old);
}

TEST_F(Notices, ClosingTheProgressWindowEndsTheWork) {
    constexpr int count = 60000;
    const std::string old = getenv("HOME") + std::string("/Desktop/basket/many");
    std::ofstream(old) << "old";
    for (int number = 0; number < count; number++) {
        changing_folder().link("many/" + std::to_string(number), "nowhere");
    }
    right_click(item("icons", add("many")));
    pick_with_key({"basket"}, "Copy selection here", "Alt_R");
    click_at("button 2");
    close_by_title_bar("Copying “many” to “basket”");
    EXPECT_TRUE(wait_until([&] { return manager().ask("panel").empty(); }));
    EXPECT_TRUE(wait_until([&] { return manager().ask("idle") == "yes"; }));
    EXPECT_EQ(read_file(old), "old");
    fs::remove_all(path("many"));
    fs::remove(old);
}

TEST_F(Notices, TheDesktopIsADesktopForTheWindowManagerWhenItAppears) {
    EXPECT_EQ(manager().ask("desktop_type"), "_NET_WM_WINDOW_TYPE_DESKTOP");
}
