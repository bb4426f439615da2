// The settings window as a user has it: real keys, a real drag, and what is stored then.
#include <signal.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <memory>

#include "hosts/menu_command.h"
#include "support/managed_windows.h"
#include "support/settled.h"
#include "support/silent_file_system.h"
#include "support/waiting.h"
#include "support/x_input.h"

namespace {

using test::json;
using test::MenuCommand;
using test::Outcome;
using test::output_of;
using test::run_delvio;
using test::RunningCommand;
using test::wait_for;
using test::Words;

std::string picture() { return output_of("import -silent -window root rgba:- | md5sum"); }

class SettingsWindow : public MenuCommand {
  protected:
    // The window begins with its first page where a file manager has Delvio.
    SettingsWindow() {
        run_delvio({"settings", "reset", "--all"});
        run_delvio({"install", "thunar"});
    }
    ~SettingsWindow() override {
        run_delvio({"settings", "reset", "--all"});
        run_delvio({"uninstall", "thunar"});
    }

    static std::string window() {
        return output_of("xdotool search --onlyvisible --name '^Delvio Settings$'");
    }
    // The window is there, has the keyboard, and has drawn what it shows.
    static bool has_keys() {
        const auto has_focus = [] {
            const std::string shown = window();
            return !shown.empty() && shown == output_of("xdotool getwindowfocus");
        };
        if (!wait_for(has_focus)) return false;
        test::settled(picture, 5);
        return has_focus();
    }
    // Presses the keys one by one; each has its visible effect before the next.
    static bool press(const Words& keys) {
        for (const std::string& key : keys) {
            const std::string before = picture();
            output_of("xdotool key " + key);
            if (!wait_for([&] { return picture() != before; })) return false;
        }
        return true;
    }
    static void type(const std::string& text) {
        output_of("xdotool type --delay 40 -- '" + text + "'");
    }
    static std::string get(const std::string& key) {
        return run_delvio({"settings", "get", key}).out;
    }
    static bool becomes(const std::string& key, const std::string& value) {
        return wait_for([&] { return get(key) == value; });
    }

    test::XInput input_;
};

class AnySettingsWindow : public SettingsWindow, public testing::WithParamInterface<bool> {
    const std::unique_ptr<test::WindowManager> manager_{GetParam() ? new test::WindowManager
                                                                   : nullptr};
};

INSTANTIATE_TEST_SUITE_P(WithoutAndWithAManager, AnySettingsWindow, testing::Bool());

TEST_P(AnySettingsWindow, ChangesAFlagAndANumberThatCountFromTheNextMenu) {
    RunningCommand command({"settings"});
    ASSERT_TRUE(has_keys());
    ASSERT_TRUE(press({"Tab", "space"}));
    EXPECT_TRUE(becomes("delvio_is_on", "0\n"));
    const json items = menu_json({folder.folder("top")});
    EXPECT_EQ(titles(items)[0], "Add to my folders") << "the plug-in's items are gone";
    ASSERT_TRUE(press({"Tab", "BackSpace", "BackSpace", "7"}));
    output_of("xdotool key Return");
    EXPECT_TRUE(becomes("rootMenuCollapseThreshold", "7\n"));
    output_of("xdotool key Escape");
    const Outcome outcome = command.finish();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out + outcome.err, "");
}

TEST_P(AnySettingsWindow, ChoosesFromAMenuWithTheKeys) {
    RunningCommand command({"settings"});
    ASSERT_TRUE(has_keys());
    ASSERT_TRUE(press({"Down", "Tab", "Tab"}));
    output_of("xdotool key space");
    ASSERT_TRUE(wait_for([&] { return !input_.pointer_is_free() && !input_.keyboard_is_free(); }));
    ASSERT_TRUE(press({"Down", "Down"}));
    output_of("xdotool key Return");
    EXPECT_TRUE(becomes("sort_order", "1\n"));
    ASSERT_TRUE(has_keys());
    output_of("xdotool key Escape");
    EXPECT_EQ(command.finish().status, 0);
}

TEST_F(SettingsWindow, AddsMovesAndRemovesFoldersWithTheKeys) {
    const std::string one = folder.folder("one"), two = folder.folder("two");
    folder.file("file");
    RunningCommand command({"settings"});
    ASSERT_TRUE(has_keys());
    ASSERT_TRUE(press({"Down", "Down", "Tab", "Tab"}));
    type(one);
    ASSERT_TRUE(press({"Return"}));
    ASSERT_TRUE(becomes("folders", one + "\n"));
    type(folder.path("none"));
    ASSERT_TRUE(press({"Return"})) << "a message";
    ASSERT_TRUE(press(Words(std::string("none").size(), "BackSpace")));
    type("file");
    ASSERT_TRUE(press({"Return"})) << "another message";
    ASSERT_TRUE(press(Words(std::string("file").size(), "BackSpace")));
    type("two");
    ASSERT_TRUE(press({"Return"}));
    ASSERT_TRUE(becomes("folders", one + "\n" + two + "\n"));
    ASSERT_TRUE(press({"shift+Tab", "space"})) << "Move Up";
    ASSERT_TRUE(becomes("folders", two + "\n" + one + "\n"));
    ASSERT_TRUE(press({"shift+Tab", "space"})) << "Remove";
    ASSERT_TRUE(becomes("folders", one + "\n"));
    output_of("xdotool key Escape");
    EXPECT_EQ(command.finish().status, 0);
}

TEST_F(SettingsWindow, SelectsCopiesAndPastesInAFieldWithTheKeys) {
    const std::string one = folder.folder("one");
    RunningCommand command({"settings"});
    ASSERT_TRUE(has_keys());
    ASSERT_TRUE(press({"Down", "Down", "Tab", "Tab"}));
    type(one + "x");
    ASSERT_TRUE(press({"shift+Left", "BackSpace", "ctrl+a"}));
    output_of("xdotool key ctrl+c");
    EXPECT_TRUE(
        wait_for([&] { return output_of("timeout 10 xclip -o -selection clipboard") == one; }));
    ASSERT_TRUE(press({"Delete", "ctrl+v", "Return"}));
    EXPECT_TRUE(becomes("folders", one + "\n"));
    output_of("xdotool key Escape");
    EXPECT_EQ(command.finish().status, 0);
}

// Another window lies over the first one and has the keyboard when the user asks again.
TEST_P(AnySettingsWindow, ComesToTheFrontWhenItIsAskedForAgain) {
    RunningCommand command({"settings"});
    ASSERT_TRUE(has_keys());
    const std::string first = window();
    const unsigned long other = input_.new_window();
    const std::string covering = std::to_string(other);
    output_of("xdotool windowmove " + covering + " 0 0 windowsize " + covering + " 1200 700");
    output_of("xdotool windowraise " + covering);
    ASSERT_TRUE(wait_for([&] { return input_.pixel(640, 400) == 0; })) << "it lies over the first";
    input_.focus(other);
    ASSERT_TRUE(wait_for([&] { return input_.focused() == other; }));
    const Outcome again = run_delvio({"settings"});
    EXPECT_EQ(again.status, 0);
    EXPECT_EQ(again.out, "The settings window is open already; it is in front now.\n");
    EXPECT_EQ(again.err, "");
    EXPECT_TRUE(has_keys()) << "the first window has the keyboard again";
    EXPECT_NE(input_.pixel(640, 400), 0u) << "and is seen";
    EXPECT_EQ(window(), first) << "and there is no other one";
    output_of("xdotool key Escape");
    EXPECT_EQ(command.finish().status, 0);
    RunningCommand next({"settings"});
    ASSERT_TRUE(has_keys()) << "after the first window has closed, there is a new one";
    output_of("xdotool key Escape");
    EXPECT_EQ(next.finish().status, 0);
}

TEST_F(SettingsWindow, IsOneAlsoWhenItIsAskedForTwiceAtOnce) {
    RunningCommand one({"settings"}), other({"settings"});
    ASSERT_TRUE(has_keys()) << "one window alone";
    output_of("xdotool key Escape");
    const Outcome first = one.finish(), second = other.finish();
    EXPECT_EQ(first.status, 0) << first.err;
    EXPECT_EQ(second.status, 0) << second.err;
    EXPECT_EQ(first.out + second.out, "The settings window is open already; it is in front now.\n");
}

// A program that only needs to be found.
std::string folder_with_thunar(test::TempFolder& folder) {
    const std::string program = folder.file("bin/thunar", "#!/bin/sh\n");
    EXPECT_EQ(chmod(program.c_str(), 0755), 0);
    return folder.path("bin");
}

// What `delvio install --list` says about it.
std::string state_of_thunar() {
    const std::string list = run_delvio({"install", "--list"}).out;
    const size_t state = list.find("with", list.find("\nthunar "));
    return state == std::string::npos ? "" : list.substr(state, list.find('\n', state) - state);
}

TEST_F(SettingsWindow, BeginsWithTheFileManagersWhereNoneHasDelvio) {
    run_delvio({"uninstall", "thunar"});
    ASSERT_EQ(state_of_thunar(), "without Delvio");
    RunningCommand command({"settings"}, {{"PATH", folder_with_thunar(folder)}});
    ASSERT_TRUE(has_keys());
    ASSERT_TRUE(press({"Tab", "space"}));
    EXPECT_TRUE(wait_for([&] { return state_of_thunar() == "with Delvio"; }));
    ASSERT_TRUE(press({"space"}));
    EXPECT_TRUE(wait_for([&] { return state_of_thunar() == "without Delvio"; }));
    output_of("xdotool key Escape");
    EXPECT_EQ(command.finish().status, 0);
}

// The folders stand between "Home" and, below a line, "The whole disk".
TEST_F(SettingsWindow, OffersEveryFolderHoweverManyThereAre) {
    for (int i = 10000; i < 15000; i++) folder.folder("home/f" + std::to_string(i));
    RunningCommand command({"settings"}, {{"HOME", folder.path("home")}});
    ASSERT_TRUE(has_keys());
    ASSERT_TRUE(press({"Down", "Down", "Tab"}));
    const auto choose = [&](const Words& keys) {
        output_of("xdotool key space");
        const bool is_open =
            wait_for([&] { return !input_.pointer_is_free() && !input_.keyboard_is_free(); });
        const bool has_moved = is_open && press(keys);
        output_of("xdotool key Return");
        return has_moved;
    };
    ASSERT_TRUE(choose({"End", "Up"}));
    const std::string last = folder.path("home/f14999") + "\n";
    ASSERT_TRUE(becomes("folders", last));
    ASSERT_TRUE(has_keys());
    ASSERT_TRUE(choose({"Down", "Down"}));
    EXPECT_TRUE(becomes("folders", last + folder.path("home/f10000") + "\n"));
    ASSERT_TRUE(has_keys());
    output_of("xdotool key Escape");
    EXPECT_EQ(command.finish().status, 0);
}

// A disk that does not answer, mounted on a folder.
struct SilentDisk {
    explicit SilentDisk(const std::string& folder)
        : folder(folder),
          server(test::mount_silent_file_system(folder, test::Silence::when_stopped)) {
        if (!server) return;
        kill(server, SIGSTOP);
        waitpid(server, nullptr, WUNTRACED);
    }
    ~SilentDisk() {
        if (!server) return;
        kill(server, SIGKILL);
        waitpid(server, nullptr, 0);
        umount2(folder.c_str(), MNT_DETACH);
    }
    SilentDisk(const SilentDisk&) = delete;
    SilentDisk& operator=(const SilentDisk&) = delete;

    const std::string folder;
    const pid_t server;
};

TEST_F(SettingsWindow, ADiskThatDoesNotAnswerHoldsNeitherTheChoiceOfAFolderNorTheWindow) {
    const SilentDisk disk(folder.folder("home/disk"));
    if (!disk.server) GTEST_SKIP() << "nobody may mount a file system here";
    RunningCommand command({"settings"}, {{"HOME", folder.path("home")}});
    ASSERT_TRUE(has_keys());
    ASSERT_TRUE(press({"Down", "Down", "Tab"}));
    output_of("xdotool key space");
    ASSERT_TRUE(wait_for([&] { return !input_.pointer_is_free() && !input_.keyboard_is_free(); }));
    ASSERT_TRUE(press({"End", "Up", "Right"})) << "a level that says that it waits";
    output_of("xdotool key Escape");
    ASSERT_TRUE(wait_for([&] { return input_.pointer_is_free() && input_.keyboard_is_free(); }));
    ASSERT_TRUE(has_keys());
    output_of("xdotool key Escape");
    EXPECT_EQ(command.finish().status, 0);
}

TEST_P(AnySettingsWindow, ClosesAtASignal) {
    RunningCommand command({"settings"});
    ASSERT_TRUE(has_keys());
    command.send_signal(SIGTERM);
    EXPECT_EQ(command.finish().status, 128 + SIGTERM);
}

// What stands in the temporary folder for the example menu.
Words example_folders() {
    Words found;
    for (const auto& entry : std::filesystem::directory_iterator(getenv("TMPDIR"))) {
        const std::string name = entry.path().filename();
        if (name.starts_with("delvio-example")) found.push_back(name);
    }
    return found;
}

TEST_F(SettingsWindow, LeavesNoExampleBehindHoweverItEnds) {
    RunningCommand command({"settings"});
    ASSERT_TRUE(has_keys());
    EXPECT_EQ(example_folders(), Words());
    ASSERT_TRUE(press({"Down"})) << "another page, with its own example";
    EXPECT_EQ(example_folders(), Words());
    command.send_signal(SIGKILL);
    EXPECT_EQ(command.finish().status, 128 + SIGKILL);
    EXPECT_EQ(example_folders(), Words());
}

TEST_P(AnySettingsWindow, OpensFromTheMenu) {
    RunningCommand command({"menu", "--at", "200,150", folder.file("a.txt")});
    ASSERT_TRUE(wait_for([&] { return !input_.pointer_is_free() && !input_.keyboard_is_free(); }));
    output_of("xdotool key --delay 60 Down Down Return");
    EXPECT_EQ(command.finish().status, 0);
    ASSERT_TRUE(has_keys());
    output_of("xdotool key Escape");
    EXPECT_TRUE(wait_for([] { return window().empty(); }));
}

// A folder is dragged out of a menu, as by any program that offers files.
TEST_F(SettingsWindow, TakesAFolderThatIsDropped) {
    const std::string top = folder.folder("top");
    RunningCommand settings({"settings"});
    ASSERT_TRUE(has_keys());
    RunningCommand command({"menu", "--at", "10,10", top});
    ASSERT_TRUE(wait_for([&] { return !input_.pointer_is_free() && !input_.keyboard_is_free(); }));
    const unsigned long plain = input_.pixel(130, 26);
    ASSERT_TRUE(wait_for([&] {
        input_.move(40 + rand() % 3, 26);
        return input_.pixel(130, 26) != plain;
    }));
    input_.key_down("Super_L");
    input_.press(1);
    ASSERT_TRUE(wait_for([&] { return input_.pointer_is_free(); })) << "the menu closes";
    ASSERT_TRUE(wait_for([&] { return !input_.pointer_is_free(); })) << "the drag begins";
    input_.key_up("Super_L");
    int left = 0, top_edge = 0, step = 0;
    ASSERT_EQ(sscanf(output_of("xdotool getwindowgeometry --shell " + window()).c_str(),
                     "WINDOW=%*d X=%d Y=%d", &left, &top_edge),
              2);
    const auto edge = [&] { return input_.pixel(left + 1, top_edge + 300); };
    const unsigned long calm = edge();
    ASSERT_TRUE(wait_for([&] {
        input_.move(640 + step++ % 3, 410);
        return edge() != calm;
    })) << "the window shows that it takes the folder";
    input_.release(1);
    EXPECT_TRUE(becomes("folders", top + "\n"));
    EXPECT_EQ(command.finish().status, 0);
    settings.send_signal(SIGTERM);
    EXPECT_EQ(settings.finish().status, 128 + SIGTERM);
}

}  // namespace
