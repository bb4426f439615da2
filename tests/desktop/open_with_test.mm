// Opening with an application of the user's choice, by hand: the files that it gets, the first line
// of the menu, and the applications in it.
#include <AppKit/AppKit.h>
#include <host/process.h>
#include <gtest/gtest.h>

#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "desktop/desk.h"
#include "desktop/window_program.h"

namespace {

using test::Steps;
using Titles = std::vector<std::string>;

const char separator = '\036';  // occurs in no name of a test

class OpenWith : public test::Desk {
  protected:
    void SetUp() override {
        folder_.file("dir/inner.txt", "i");
        folder_.file("a.txt", "a");
        folder_.file("b.txt", "b");
        script_ = folder_.file(
            "record", "#!/bin/sh\nprintf '%s\\036' \"$@\" >>'" + folder_.path("opened") + "'\n");
        chmod(script_.c_str(), 0755);
        folder_.file("apps/recorder.desktop", entry("Recorder", script_ + " %F"));
        // As the host does for the folder that is set.
        declare_applications_folder(folder_.path("apps").c_str());
        set_preference("open_with_path", folder_.path("apps"));
        set_preference("runningAppsInOpenWithMenu", "0");
        select({folder_.path("dir"), folder_.path("a.txt"), folder_.path("b.txt")});
    }
    void TearDown() override {
        declare_applications_folder(nullptr);
        set_preference("runningAppsInOpenWithMenu", "1");
        set_preference("open_with_path", "");
        set_preference("folders", "()");
    }

    static std::string entry(const std::string& name, const std::string& command) {
        return "[Desktop Entry]\nType=Application\nName=" + name + "\nExec=" + command +
               "\nMimeType=text/plain;\n";
    }
    // The arguments of the application in all its starts; waits for the first start.
    Titles opened() const {
        std::string text;
        for (int turn = 0; turn < 6000 && text.empty(); turn++) {
            text = test::read_file(folder_.path("opened"));
            if (text.empty()) usleep(10000);
        }
        Titles arguments;
        for (size_t begin = 0, end; (end = text.find(separator, begin)) != text.npos;
             begin = end + 1) {
            arguments.push_back(text.substr(begin, end - begin));
        }
        return arguments;
    }

    // Opens the open-with menu of a selected file, then does `then`.
    void in_root_menu(const std::function<void(Steps&)>& then) {
        pop_up([&](Steps& steps) {
            steps
                .when(
                    "the menu", [&] { return is_open(0); }, [&] { hover("b.txt"); })
                .when("the open-with menu", [&] { return is_open(1); });
            then(steps);
        });
    }
    // Opens the open-with menu of a file in a selected folder, and releases Shift once the pointer
    // is in the menu. The menu is level 2.
    void in_deeper_menu(const std::function<void(Steps&)>& then) {
        pop_up([&](Steps& steps) {
            steps
                .when(
                    "the menu", [&] { return is_open(0); }, [&] { hover("dir"); })
                .when(
                    "the level", [&] { return is_open(1); },
                    [&] {
                        input().key_down("Shift_L");
                        hover("inner.txt");
                    })
                .when(
                    "the open-with menu", [&] { return is_open(2); }, [&] { hover("Recorder"); })
                .when(
                    "the application", [&] { return highlighted(2) == "Recorder"; },
                    [&] { input().key_up("Shift_L"); });
            then(steps);
        });
    }
    // Waits until the desktop knows a program of this name; false if it never does.
    static bool runs(const char* name) {
        for (int turn = 0; turn < 6000; turn++) {
            @autoreleasepool {
                NSArray* running = [[NSWorkspace sharedWorkspace] runningApplications];
                NSArray* names = [running valueForKey:@"localizedName"];
                if ([names containsObject:[NSString stringWithUTF8String:name]]) return true;
            }
            usleep(10000);
        }
        return false;
    }
    // The toolkit's own choice of a key for it.
    void hold_option() { input().key_down("Alt_R"); }

    std::string script_;
};

}  // namespace

TEST_F(OpenWith, AnApplicationOfTheRootMenuOpensTheWholeSelection) {
    in_root_menu([&](Steps& steps) {
        steps.when(
            "the application", [&] { return true; }, [&] { click("Recorder"); });
    });
    EXPECT_EQ(opened(),
              Titles({folder_.path("dir"), folder_.path("a.txt"), folder_.path("b.txt")}));
}

TEST_F(OpenWith, WithOptionAnApplicationOfTheRootMenuOpensTheOneItem) {
    in_root_menu([&](Steps& steps) {
        steps
            .when(
                "the application", [&] { return true; }, [&] { hover("Recorder"); })
            .when(
                "its highlight", [&] { return highlighted(1) == "Recorder"; },
                [&] { hold_option(); })
            .when(
                "the line of the item", [&] { return titles(1).at(0) == "Open with..."; },
                [&] { click("Recorder"); });
    });
    EXPECT_EQ(opened(), Titles({folder_.path("b.txt")}));
}

TEST_F(OpenWith, AnApplicationOfADeeperMenuOpensTheOneItem) {
    in_deeper_menu([&](Steps& steps) {
        steps.when(
            "the application", [&] { return is_open(2); }, [&] { click("Recorder"); });
    });
    EXPECT_EQ(opened(), Titles({folder_.path("dir/inner.txt")}));
}

TEST_F(OpenWith, WithOptionAnApplicationOfADeeperMenuOpensTheWholeSelection) {
    in_deeper_menu([&](Steps& steps) {
        steps
            .when(
                "the menu", [&] { return is_open(2); }, [&] { hold_option(); })
            .when(
                "the line of the selection",
                [&] { return is_open(2) && titles(2).at(0) == "Open selection with..."; },
                [&] { click("Recorder"); });
    });
    EXPECT_EQ(opened(),
              Titles({folder_.path("dir"), folder_.path("a.txt"), folder_.path("b.txt")}));
}

TEST_F(OpenWith, TheFirstLineFollowsTheOptionKey) {
    Titles lines;
    const auto first_is = [&](const std::string& text) {
        return [this, text] { return titles(1).at(0) == text; };
    };
    in_root_menu([&](Steps& steps) {
        steps.when("the selection's line", first_is("Open selection with..."), [&] {
            lines.push_back(titles(1).at(0));
            hover("Recorder");
        });
        // Over the file itself the Option key would show its preview.
        steps.when(
            "the application", [&] { return highlighted(1) == "Recorder"; },
            [&] { hold_option(); });
        steps.when("the item's line", first_is("Open with..."), [&] {
            lines.push_back(titles(1).at(0));
            input().key_up("Alt_R");
        });
        steps.when("the selection's line again", first_is("Open selection with..."), [&] {
            lines.push_back(titles(1).at(0));
            escape();
        });
    });
    EXPECT_EQ(lines, Titles({"Open selection with...", "Open with...", "Open selection with..."}));
}

TEST_F(OpenWith, ApplicationsThatCannotBeStartedLeaveTheMenuAndTheHostAlone) {
    folder_.file("apps/broken.desktop", "[Desktop Entry]\nType=Application\nName=Broken\n");
    folder_.file("apps/garbage.desktop", "\x01\x02 no entry");
    folder_.file("apps/missing.desktop", entry("Missing", "/nowhere/program %F"));
    Titles shown;
    for (const char* name : {"Missing", "Recorder"}) {
        in_root_menu([&](Steps& steps) {
            steps.when(
                "the application", [&] { return true; },
                [&] {
                    shown = titles(1);
                    click(name);
                });
        });
    }
    EXPECT_EQ(opened().size(), 3u);
    EXPECT_NE(std::find(shown.begin(), shown.end(), "Recorder"), shown.end());
    EXPECT_NE(std::find(shown.begin(), shown.end(), "Missing"), shown.end());
}

TEST_F(OpenWith, BadUserFoldersLeaveTheOthersInTheMenu) {
    const std::string good = folder_.folder("good"), other = folder_.folder("other");
    set_preference("folders", "(\"" + good + "\", {a = b;}, \"\", \"-\", \"" +
                                  folder_.path("gone") + "\", \"" + other + "\")");
    Titles shown;
    pop_up([&](Steps& steps) {
        steps.when(
            "the menu", [&] { return is_open(0); },
            [&] {
                shown = titles(0);
                escape();
            });
    });
    shown.resize(std::min<size_t>(shown.size(), 6));
    EXPECT_EQ(shown, Titles({"good", "-", "other", "-", "dir", "-"}));
}

TEST_F(OpenWith, RunningProgramsStandInTheOrderOfTheirNamesAndOpenFiles) {
    set_preference("runningAppsInOpenWithMenu", "1");
    const std::string applications = getenv("XDG_DATA_HOME") + std::string("/applications/");
    std::ofstream(applications + "zeta.desktop")
        << entry("Alpha", script_ + " %F") << "StartupWMClass=Zeta\n";
    std::ofstream(applications + "alpha.desktop")
        << entry("Zeta", "/bin/true %F") << "StartupWMClass=Alpha\n";
    std::ofstream(applications + "panel.desktop")
        << entry("Panel", "/bin/true %F") << "StartupWMClass=Panel\n";
    test::WindowProgram first({"window", "class=alpha,Alpha", "show"});
    test::WindowProgram second({"window", "class=zeta,Zeta", "show"});
    test::WindowProgram panel({"window", "class=panel,Panel", "type=DOCK", "show"});
    ASSERT_TRUE(runs("Alpha") && runs("Zeta") && runs("Panel"));
    Titles shown;
    in_root_menu([&](Steps& steps) {
        steps
            .when(
                "the menu", [&] { return is_open(1); }, [&] { hover("Running apps"); })
            .when(
                "the running programs", [&] { return is_open(2); },
                [&] {
                    shown = titles(2);
                    click("Alpha");
                });
    });
    // This test's own program also has a window, but neither a desktop entry nor a bundle.
    EXPECT_EQ(shown, Titles({"Alpha", "Zeta", "desktop_open_with_test"}));
    EXPECT_EQ(opened().size(), 3u);
}

TEST_F(OpenWith, ARecentDocumentOfAnApplicationOpens) {
    const std::string document = folder_.file("letter.txt", "letter");
    const std::string tool = folder_.file("tools/writer.desktop", entry("Writer", script_ + " %F"));
    chmod(tool.c_str(), 0755);
    std::ofstream(getenv("XDG_DATA_HOME") + std::string("/recently-used.xbel"))
        << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<xbel version=\"1.0\" "
           "xmlns:bookmark=\"http://www.freedesktop.org/standards/desktop-bookmarks\" "
           "xmlns:mime=\"http://www.freedesktop.org/standards/shared-mime-info\">\n"
        << "<bookmark href=\"file://" << document
        << "\" added=\"2024-01-01T00:00:00Z\" modified=\"2024-01-01T00:00:00Z\" "
           "visited=\"2024-01-01T00:00:00Z\"><info><metadata owner=\"http://freedesktop.org\">"
           "<mime:mime-type type=\"text/plain\"/><bookmark:applications><bookmark:application "
           "name=\"Writer\" exec=\"&apos;writer %u&apos;\" modified=\"2024-01-01T00:00:00Z\" "
           "count=\"1\"/></bookmark:applications></metadata></info></bookmark></xbel>\n";
    select({folder_.path("tools")});
    pop_up([&](Steps& steps) {
        steps
            .when(
                "the menu", [&] { return is_open(0); }, [&] { hover("tools"); })
            .when(
                "the level", [&] { return is_open(1); }, [&] { hover("writer.desktop"); })
            .when(
                "the recent documents", [&] { return is_open(2); }, [&] { click("letter.txt"); });
    });
    EXPECT_EQ(program().wait(), Titles({document}));
}
