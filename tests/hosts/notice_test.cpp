// The notice after a file operation, and its button. A stand-in for the desktop's notifications
// gets real calls and sends real signals; the menus get real keys.
#include <dirent.h>
#include <stdlib.h>

#include <algorithm>
#include <fstream>
#include <sstream>

#include "hosts/bus_service.h"
#include "hosts/menu_command.h"
#include "support/settled.h"
#include "support/waiting.h"
#include "support/x_input.h"

namespace {

using test::Changes;
using test::output_of;
using test::read_file;
using test::run_delvio;
using test::RunningCommand;
using test::wait_for;
using test::Words;

// Of a process, which may end while its file is read.
std::string contents(const std::string& path) {
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

// Of a window on the screen.
struct Place {
    int x = 0, y = 0, width = 0, height = 0;
    bool operator==(const Place&) const = default;
};

struct Notice : test::MenuCommand {
    test::SessionBus bus;
    std::unique_ptr<test::BusService> desktop;
    test::XInput input;
    const Changes alone = {{"DELVIO_RESIDENT", "0"}};

    explicit Notice(bool system_services = false) : bus(system_services) {
        begin_desktop("(['actions', 'body'],)");
        run_delvio({"settings", "reset", "--all"});
        folder.folder("to");
        folder.file("a.txt", "a");
        folder.file("b.txt", "b");
    }
    // The programs that wait for a button may not outlive their bus.
    ~Notice() override {
        desktop.reset();
        EXPECT_TRUE(wait_for([this] { return waiting_programs() == 0; }));
    }

    void begin_desktop(const std::string& abilities) {
        desktop.reset();
        desktop = std::make_unique<test::BusService>(bus, "org.freedesktop.Notifications",
                                                     "/org/freedesktop/Notifications",
                                                     test::notifications_interface);
        desktop->set_answer("GetCapabilities", abilities);
        desktop->set_answer("Notify", "(uint32 7,)");
    }

    // Of this test's bus. A program that has not begun yet has its parent's name.
    int waiting_programs() const {
        int count = 0;
        DIR* const processes = opendir("/proc");
        while (const dirent* entry = readdir(processes)) {
            const std::string process = std::string("/proc/") + entry->d_name;
            const std::string words = contents(process + "/cmdline");
            const bool is_delvio = words.find(std::string("--show-notice")) != std::string::npos ||
                                   words.find(std::string("delvio\0menu", 11)) == 0;
            if (!is_delvio) continue;
            count += contents(process + "/environ").find(bus.address()) != std::string::npos;
        }
        closedir(processes);
        return count;
    }

    Words notices() {
        Words found;
        for (const std::string& call : desktop->calls()) {
            if (call.find("Notifications.Notify(") != std::string::npos) found.push_back(call);
        }
        return found;
    }
    bool is_told(const std::string& text) {
        return wait_for([&] {
            const Words all = notices();
            return !all.empty() && all.back().find(text) != std::string::npos;
        });
    }

    bool menu_is_open() { return !input.pointer_is_free() && !input.keyboard_is_free(); }
    // Moves the two files into the folder with the keys.
    void move_by_keys(const Changes& environment, const Words& options = {}) {
        Words words = {"menu", "--at", "200,150"};
        words.insert(words.end(), options.begin(), options.end());
        for (const char* name : {"to", "a.txt", "b.txt"}) words.push_back(folder.path(name));
        RunningCommand command(words, environment);
        const auto levels = [] {
            const std::string all = output_of("xdotool search --onlyvisible --name '^Menu$'");
            return std::count(all.begin(), all.end(), '\n');
        };
        ASSERT_TRUE(wait_for([&] { return menu_is_open() && levels() == 1; }));
        output_of("xdotool key --delay 60 Down Right");
        ASSERT_TRUE(wait_for([&] { return levels() == 2; }));
        output_of("xdotool key Return");
        const test::Outcome outcome = command.finish();
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.out + outcome.err, "");
        EXPECT_EQ(read_file(folder.path("to/b.txt")), "b");
    }
    void trash_by_keys(const std::string& file) {
        RunningCommand command({"menu", "--at", "200,150", file}, alone);
        ASSERT_TRUE(wait_for([&] { return menu_is_open(); }));
        output_of("xdotool key --delay 60 End Return");
        EXPECT_EQ(command.finish().status, 0);
        EXPECT_FALSE(std::ifstream(file).good());
    }
};

// A server of a real desktop, which draws the notice. The pointer waits where the notice comes, so
// that it stays as long as the machine takes.
struct DrawnNotice : Notice {
    DrawnNotice() : Notice(true) {
        desktop.reset();
        input.move(1220, 100);
        output_of(
            "dbus-send --session --print-reply --reply-timeout=120000 "
            "--dest=org.freedesktop.Notifications /org/freedesktop/Notifications "
            "org.freedesktop.Notifications.GetServerInformation");
    }
    // The place of the notice on the screen; its width is 0 for none.
    static Place place() {
        Place found;
        const std::string window =
            output_of("xdotool search --onlyvisible --class xfce4-notifyd 2>/dev/null");
        const std::string words =
            window.empty() ? "" : output_of("xdotool getwindowgeometry --shell " + window);
        const int read = sscanf(words.c_str(), "WINDOW=%*d X=%d Y=%d WIDTH=%d HEIGHT=%d", &found.x,
                                &found.y, &found.width, &found.height);
        return read == 4 ? found : Place();
    }
};

TEST_F(DrawnNotice, HasAButtonThatUndoesWhenItIsClicked) {
    move_by_keys(alone);
    ASSERT_TRUE(wait_for([] { return place().width > 0; }));
    const Place shown = test::settled(place);
    EXPECT_GT(shown.width, 100);
    // The button is at the lower right. A server that is still drawing it may miss a click.
    constexpr int looks_a_click = 25;
    int looks = 0;
    ASSERT_TRUE(wait_for([&] {
        if (looks++ % looks_a_click == 0) {
            input.move(shown.x + shown.width - 45, shown.y + shown.height - 30);
            input.click(1);
        }
        return std::ifstream(folder.path("a.txt")).good();
    }));
    EXPECT_TRUE(wait_for([this] { return read_file(folder.path("b.txt")) == "b"; }));
    EXPECT_TRUE(wait_for([this] { return waiting_programs() == 0; }));
}

// Alone, and with the resident host.
struct NoticeOfEither : Notice, testing::WithParamInterface<const char*> {};
INSTANTIATE_TEST_SUITE_P(AloneAndByTheHost, NoticeOfEither, testing::Values("0", "1"));

TEST_P(NoticeOfEither, UndoesTheMoveWithItsButtonAndTellsIt) {
    move_by_keys({{"DELVIO_RESIDENT", GetParam()}, {"XDG_SESSION_ID", folder.path()}});
    ASSERT_TRUE(is_told("'Moved to “to”', '“a.txt” and 1 other', ['undo', 'Undo']"));
    EXPECT_EQ(notices().size(), 1u);
    desktop->emit("ActionInvoked", "(uint32 8, 'undo')");
    desktop->emit("ActionInvoked", "(uint32 7, 'default')");
    desktop->emit("NotificationClosed", "(uint32 8, uint32 1)");
    desktop->emit("ActionInvoked", "(uint32 7, 'undo')");
    ASSERT_TRUE(is_told("'Undone', '\"b.txt\" is back in "));
    EXPECT_EQ(read_file(folder.path("a.txt")), "a");
    EXPECT_EQ(read_file(folder.path("b.txt")), "b");
    EXPECT_EQ(notices().size(), 2u);
    EXPECT_TRUE(wait_for([this] { return waiting_programs() == 0; }));
}

TEST_F(Notice, RefusesByNameWhenAnotherOperationCameAfterIt) {
    move_by_keys(alone);
    ASSERT_TRUE(is_told("'Moved to “to”'"));
    desktop->set_answer("Notify", "(uint32 9,)");
    trash_by_keys(folder.file("later"));
    ASSERT_TRUE(is_told("'Moved to the trash', '“later”'"));
    desktop->emit("ActionInvoked", "(uint32 7, 'undo')");
    ASSERT_TRUE(
        is_told("'This cannot be undone.', 'another operation came after it (trashing "
                "\"later\"), and only the last one can be undone'"));
    EXPECT_EQ(read_file(folder.path("to/a.txt")), "a");
    desktop->emit("ActionInvoked", "(uint32 9, 'undo')");
    ASSERT_TRUE(is_told("'Undone', '\"later\" is back in "));
    EXPECT_TRUE(std::ifstream(folder.path("later")).good());
    EXPECT_EQ(read_file(folder.path("to/a.txt")), "a");
}

TEST_F(Notice, EndsItsProgramWhenItIsClosedOrTheDesktopEnds) {
    move_by_keys(alone);
    ASSERT_TRUE(is_told("'Moved to “to”'"));
    EXPECT_EQ(waiting_programs(), 1);
    desktop->emit("NotificationClosed", "(uint32 7, uint32 1)");
    EXPECT_TRUE(wait_for([this] { return waiting_programs() == 0; }));
    desktop->emit("ActionInvoked", "(uint32 7, 'undo')");
    trash_by_keys(folder.file("later"));
    ASSERT_TRUE(is_told("'Moved to the trash'"));
    desktop.reset();
    EXPECT_TRUE(wait_for([this] { return waiting_programs() == 0; }));
    EXPECT_EQ(read_file(folder.path("to/a.txt")), "a");
}

TEST_F(Notice, IsNotShownWhenItIsNotWanted) {
    move_by_keys(alone, {"--setting", "notices=0"});
    ASSERT_TRUE(wait_for([this] { return waiting_programs() == 0; }));
    EXPECT_EQ(notices(), Words());
}

TEST_F(Notice, IsNotShownByADesktopWithoutButtons) {
    begin_desktop("(['body'],)");
    move_by_keys(alone);
    ASSERT_TRUE(wait_for([this] { return waiting_programs() == 0; }));
    EXPECT_EQ(notices(), Words());
}

TEST_F(Notice, IsNotShownForAPick) {
    const test::Outcome picked = menu({"--pick", "Move to Trash", folder.file("later")}, alone);
    EXPECT_EQ(picked.status, 0) << picked.err;
    ASSERT_TRUE(wait_for([this] { return waiting_programs() == 0; }));
    EXPECT_EQ(notices(), Words());
}

}  // namespace
