// Failed picks are reported: in a line when the command is run from a terminal, and in a panel when
// its menu is shown.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <functional>

#include "hosts/command_runner.h"
#include "hosts/resident/scene.h"
#include "support/managed_windows.h"
#include "support/recording_program.h"
#include "support/temp_folder.h"
#include "support/waiting.h"
#include "support/x_input.h"

namespace fs = std::filesystem;

namespace {

using test::Outcome;
using test::RunningCommand;
using test::wait_for;
using Words = std::vector<std::string>;

class FailedPick : public testing::Test {
  protected:
    void SetUp() override {
        folder_.file("top/unknown.qqq", std::string("\0\1\2", 3));
        folder_.link("top/gone.txt", "/nowhere/there");
        folder_.link("top/loop.txt", "loop.txt");
        mkfifo(folder_.path("top/pipe.txt").c_str(), 0600);
        folder_.file("top/note.txt", "text\n");
    }

    // Expects one line, no other output, and status 1.
    static void expect_line(const Outcome& outcome, const std::string& line) {
        EXPECT_EQ(outcome.err, "delvio: " + line + "\n");
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.status, 1);
    }
    Outcome pick(const std::string& name) {
        return test::run_delvio({"menu", "--pick", "top", "--pick", name, folder_.path("top")},
                                {{"DISPLAY", ""}});
    }
    std::string cannot_open(const std::string& name) const {
        return "cannot open \"" + folder_.path("top/" + name) + "\"";
    }
    // A program that the kernel cannot start.
    std::string broken_application() {
        const std::string program =
            folder_.file("apps/Broken.app/Broken", "#!/no/such/interpreter\n");
        chmod(program.c_str(), 0755);
        folder_.file("apps/Broken.app/Resources/Info-gnustep.plist",
                     "{ NSExecutable = Broken; }\n");
        return folder_.path("apps");
    }
    Outcome open_with_broken(const std::string& file) {
        return test::run_delvio({"menu", "--setting", "open_with_path=" + broken_application(),
                                 "--setting", "autoOpenWithMenu=1", "--pick",
                                 fs::path(file).filename(), "--pick", "Broken.app", file},
                                {{"DISPLAY", ""}});
    }

    test::TempFolder folder_;
    const test::RecordingProgram program_{{"text/plain"}};
};

// A menu on the screen, with a window manager that shows its panels' titles.
class FailedShownPick : public FailedPick {
  protected:
    Words words(const std::string& name) const {
        return {"menu", "--at", "200,150", folder_.path("top/" + name)};
    }
    // The first row is the file itself.
    bool pick_first_row(const std::function<void()>& while_open = [] {}) {
        if (!wait_for([&] { return !input_.pointer_is_free() && !input_.keyboard_is_free(); })) {
            return false;
        }
        while_open();
        input_.key("Down");
        input_.key("Return");
        return true;
    }
    // Closes the panel with this title.
    bool close(const std::string& title) {
        std::optional<test::ManagedWindow> window;
        if (!wait_for([&] { return (window = windows_.settled(title)).has_value(); })) return false;
        const test::ScreenPoint button = windows_.close_button(*window);
        input_.move(button.x, button.y);
        input_.click(1);
        return true;
    }

    // Opens the menu of the file "a" and the folder "to", and the level of "to".
    Words words_for_copy() {
        return {"menu",
                "--at",
                "200,150",
                "--modifiers",
                "option",
                folder_.folder("to"),
                folder_.file("a", "text\n")};
    }
    // The first row of the folder's level copies.
    void pick_copy(const std::function<void()>& while_open) {
        ASSERT_TRUE(screen_.wait_until_open());
        const int first = screen_.open_menu().x;
        for (const char* key : {"Down", "Right"}) input_.key(key);
        ASSERT_TRUE(wait_for([&] {
            const test::ShownArea menu = screen_.open_menu();
            return menu.width > 0 && menu.x != first;
        }));
        while_open();
        input_.key("Return");
    }

  private:
    test::WindowManager manager_;
    test::ManagedWindows windows_;
    const test::Screen screen_;

  protected:
    test::XInput input_;
};

}  // namespace

TEST_F(FailedPick, ATypeWithoutAProgramIsNamed) {
    expect_line(pick("unknown.qqq"), cannot_open("unknown.qqq") +
                                         ": no installed program is set for files of its type, "
                                         "application/octet-stream");
}

TEST_F(FailedPick, ABrokenLinkSaysWhereItLeads) {
    expect_line(pick("gone.txt"),
                cannot_open("gone.txt") + ": it is a link to /nowhere/there, which is not there");
    expect_line(pick("loop.txt"),
                cannot_open("loop.txt") + ": it is a link that leads back to itself");
}

TEST_F(FailedPick, APipeIsNotOpened) {
    expect_line(pick("pipe.txt"),
                cannot_open("pipe.txt") + ": it is a pipe, which no program opens as a file");
    EXPECT_TRUE(program_.opened().empty());
}

TEST_F(FailedPick, TheHostsOwnOpenSaysTheSame) {
    const Outcome outcome = test::run_delvio(
        {"menu", "--pick", "Open", folder_.path("top/gone.txt")}, {{"DISPLAY", ""}});
    expect_line(outcome,
                cannot_open("gone.txt") + ": it is a link to /nowhere/there, which is not there");
}

TEST_F(FailedPick, AProgramThatDoesNotStartIsNamedWithItsFile) {
    const Outcome outcome = open_with_broken(folder_.path("top/note.txt"));
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(
        outcome.err.rfind(
            "delvio: " + cannot_open("note.txt") + " with \"Broken.app\": it does not start: ", 0),
        0u)
        << outcome.err;
}

TEST_F(FailedPick, APipeIsGivenToNoChosenProgram) {
    expect_line(open_with_broken(folder_.path("top/pipe.txt")),
                cannot_open("pipe.txt") +
                    " with \"Broken.app\": it is a pipe, which no program opens as a file");
}

TEST_F(FailedPick, ARowThatOnlyHeadsASubmenuIsNotPicked) {
    const Outcome outcome = test::run_delvio(
        {"menu", "--setting", "rootMenuCollapseThreshold=1", "--pick", "2 selected items",
         folder_.file("one.txt", "1\n"), folder_.file("two.txt", "2\n")},
        {{"DISPLAY", ""}});
    expect_line(outcome,
                "\"2 selected items\" only opens a submenu; name one of its items with another "
                "--pick");
    EXPECT_TRUE(program_.opened().empty());
}

TEST_F(FailedPick, ControlCharactersAreEscaped) {
    folder_.file("top/\x1b[31mred\n.qqq", std::string("\0\1\2", 3));
    const Outcome outcome = test::run_delvio(
        {"menu", "--pick", "Open", folder_.path("top/\x1b[31mred\n.qqq")}, {{"DISPLAY", ""}});
    EXPECT_NE(outcome.err.find("/\\x1b[31mred\\n.qqq\""), std::string::npos) << outcome.err;
    EXPECT_EQ(outcome.err.find('\n'), outcome.err.size() - 1);
    EXPECT_EQ(outcome.err.find('\x1b'), std::string::npos);
}

TEST_F(FailedPick, ProgramsGetNothingOfThePrivateDisplay) {
    test::run_delvio({"menu", "--pick", "top", "--pick", "note.txt", folder_.path("top")},
                     {{"DISPLAY", ""},
                      {"XAUTHORITY", "/home/me/.Xauthority"},
                      {"WAYLAND_DISPLAY", "wayland-7"}});
    ASSERT_FALSE(program_.wait().empty());
    const std::set<std::string> variables = program_.environment();
    EXPECT_TRUE(variables.contains("XAUTHORITY=/home/me/.Xauthority"));
    EXPECT_TRUE(variables.contains("WAYLAND_DISPLAY=wayland-7"));
    for (const std::string& variable : variables) {
        EXPECT_NE(variable.rfind("DISPLAY=", 0), 0u) << variable;
    }
}

TEST_F(FailedPick, ProgramsGetTheUsersDisplay) {
    test::run_delvio({"menu", "--pick", "top", "--pick", "note.txt", folder_.path("top")});
    ASSERT_FALSE(program_.wait().empty());
    EXPECT_TRUE(program_.environment().contains(std::string("DISPLAY=") + getenv("DISPLAY")));
}

TEST_F(FailedShownPick, APanelSaysItToo) {
    RunningCommand command(words("unknown.qqq"));
    ASSERT_TRUE(pick_first_row());
    EXPECT_TRUE(close("“unknown.qqq” cannot be opened."));
    expect_line(command.finish(), cannot_open("unknown.qqq") +
                                      ": no installed program is set for files of its type, "
                                      "application/octet-stream");
}

TEST_F(FailedShownPick, AFileThatVanishedMeanwhileIsNamed) {
    RunningCommand command(words("note.txt"));
    ASSERT_TRUE(pick_first_row([&] { fs::remove(folder_.path("top/note.txt")); }));
    EXPECT_TRUE(close("“note.txt” cannot be opened."));
    expect_line(command.finish(), cannot_open("note.txt") + ": it is no longer there");
}

TEST_F(FailedShownPick, AFileThatBecameAPipeMeanwhileIsNamed) {
    RunningCommand command(words("note.txt"));
    ASSERT_TRUE(pick_first_row([&] {
        fs::remove(folder_.path("top/note.txt"));
        mkfifo(folder_.path("top/note.txt").c_str(), 0600);
    }));
    EXPECT_TRUE(close("“note.txt” cannot be opened."));
    expect_line(command.finish(),
                cannot_open("note.txt") + ": it is a pipe, which no program opens as a file");
}

TEST_F(FailedShownPick, ANameThatIsNotTextIsNotPassedOverInSilence) {
    folder_.file("other/caf\xe9.txt", "text\n");
    RunningCommand command({"menu", "--at", "200,150", folder_.path("other")});
    ASSERT_TRUE(wait_for([&] { return !input_.pointer_is_free() && !input_.keyboard_is_free(); }));
    for (const char* key : {"Down", "Right", "Return"}) input_.key(key);
    EXPECT_TRUE(close("The file cannot be opened."));
    expect_line(command.finish(), "cannot open the file: its name is not UTF-8");
}

TEST_F(FailedShownPick, ReturnOpensTheSubmenuOfARowThatOnlyHeadsIt) {
    const std::string one = folder_.file("one.txt", "1\n"), two = folder_.file("two.txt", "2\n");
    RunningCommand command(
        {"menu", "--at", "200,150", "--setting", "rootMenuCollapseThreshold=1", one, two});
    ASSERT_TRUE(pick_first_row());
    input_.key("Down");
    input_.key("Return");
    EXPECT_EQ(command.finish().status, 0);
    EXPECT_EQ(program_.wait(), Words({two}));
}

TEST_F(FailedShownPick, ACopyIntoAFolderThatVanishedMeanwhileIsRefused) {
    RunningCommand command(words_for_copy());
    pick_copy([&] { fs::remove(folder_.path("to")); });
    EXPECT_TRUE(close("This could not be done."));
    const Outcome outcome = command.finish();
    EXPECT_EQ(outcome.err,
              "delvio: the folder \"" + folder_.path("to") + "\" is no longer there\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_FALSE(fs::exists(folder_.path("to")));
}

TEST_F(FailedShownPick, AFileThatVanishedBeforeItWasCopiedIsNamed) {
    RunningCommand command(words_for_copy());
    pick_copy([&] { fs::remove(folder_.path("a")); });
    EXPECT_TRUE(close("One item failed."));
    const Outcome outcome = command.finish();
    EXPECT_EQ(outcome.err,
              "delvio: failed: \"" + folder_.path("a") + "\": it is no longer there\n");
    EXPECT_EQ(outcome.status, 1);
}
