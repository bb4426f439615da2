#include <gtest/gtest.h>

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "hosts/menu_command.h"
#include "support/gnustep_program.h"
#include "support/recording_program.h"

namespace fs = std::filesystem;

namespace {

using nlohmann::json;
using test::MenuCommand;
using test::Outcome;
using test::run_delvio;
using test::Words;

const Words host_titles = {"Add to my folders",    "Settings...", "-", "Open",
                           "Show in File Manager", "Copy Path",   "-", "Move to Trash"};

TEST_F(MenuCommand, HasThePlugInsItemsAboveTheHosts) {
    folder.file("top/a.txt");
    const json items = menu_json({folder.path("top")});
    Words expected = {"top", "-"};
    expected.insert(expected.end(), host_titles.begin(), host_titles.end());
    EXPECT_EQ(titles(items), expected);
    EXPECT_EQ(items[0]["plugin"], true);
    EXPECT_EQ(items[1]["plugin"], true);
    for (size_t i = 2; i < items.size(); ++i) EXPECT_EQ(items[i]["plugin"], false) << items[i];
}

TEST_F(MenuCommand, SaysWhatAnItemIs) {
    folder.folder("top");
    const json top = menu_json({folder.path("top")})[0];
    const json expected = {{"type", "item"},
                           {"title", "top"},
                           {"enabled", true},
                           {"alternate", false},
                           {"modifiers", {}},
                           {"image", true},
                           {"color", nullptr},
                           {"tag", 0},
                           {"plugin", true},
                           {"path", folder.path("top")},
                           {"submenu", {{"title", ""}, {"populated", false}, {"items", {}}}}};
    json normal = expected;
    normal["modifiers"] = normal["submenu"]["items"] = json::array();
    EXPECT_EQ(top, normal);
}

TEST_F(MenuCommand, OpensNoLevelUnlessAsked) {
    folder.file("top/sub/a.txt");
    const json closed = menu_json({folder.path("top")});
    EXPECT_EQ(item(closed, "top")["submenu"]["populated"], false);
    const json once = menu_json({"--depth", "1", folder.path("top")});
    EXPECT_EQ(titles(level(once, "top")), Words({"sub"}));
    EXPECT_EQ(item(level(once, "top"), "sub")["submenu"]["populated"], false);
    const json twice = menu_json({"--depth", "2", folder.path("top")});
    EXPECT_EQ(titles(level(level(twice, "top"), "sub")), Words({"a.txt"}));
}

TEST_F(MenuCommand, PrintsTheMenuAsATree) {
    folder.file("top/sub/a.txt");
    const Outcome outcome = menu({"--print", "--depth", "2", folder.path("top")});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out,
              "top >\n    sub >\n        a.txt\n        a.txt > [shift]\n        a.txt > "
              "[option]\n--------\nAdd to my folders\nSettings...\n--------\nOpen\n"
              "Show in File Manager\nCopy Path\n--------\nMove to Trash\n");
}

TEST_F(MenuCommand, ShowsTheUsersFoldersWithSeparatorsAsSet) {
    const std::string a = folder.folder("A"), b = folder.folder("B"), c = folder.folder("C");
    const Outcome set =
        run_delvio({"settings", "set", "folders", "-", a, folder.path("gone"), b, "-", "-", c});
    EXPECT_EQ(set.status, 0) << set.err;
    const Words above = titles(menu_json({folder.folder("top")}));
    const Words below =
        titles(menu_json({"--setting", "custom_folder_order=0", folder.path("top")}));
    run_delvio({"settings", "reset", "folders"});
    Words expected = {"A", "B", "-", "C", "-", "top", "-"};
    expected.insert(expected.end(), host_titles.begin(), host_titles.end());
    EXPECT_EQ(above, expected);
    expected = {"top", "-", "A", "B", "-", "C", "-"};
    expected.insert(expected.end(), host_titles.begin(), host_titles.end());
    EXPECT_EQ(below, expected);
}

TEST_F(MenuCommand, OpensASelectedFileWithAnApplicationOfTheOpenWithFolder) {
    const test::RecordingProgram program({"text/plain"});
    const fs::path entry = fs::path(getenv("XDG_DATA_HOME")) / "applications/record.desktop";
    folder.folder("apps");
    fs::copy_file(entry, folder.path("apps/record.desktop"));
    const std::string setting = "open_with_path=" + folder.path("apps");
    const std::string file = folder.file("note", "text\n");
    const json items = menu_json(
        {"--setting", setting, "--setting", "runningAppsInOpenWithMenu=0", "--depth", "1", file});
    EXPECT_EQ(titles(level(items, "note")), Words({"Open selection with...", "-", "Record"}));
    EXPECT_EQ(menu({"--setting", setting, "--pick", "note", "--pick", "Record", file}).status, 0);
    EXPECT_EQ(program.wait(), Words({file}));
}

TEST_F(MenuCommand, ASelectedLinkToAFileIsAFile) {
    const test::RecordingProgram program({"text/plain"});
    const std::string file = folder.file("real.txt", "text\n");
    const std::string link = folder.link("a link", "real.txt");
    const json items = menu_json({"--depth", "1", link});
    ASSERT_EQ(items[0]["title"], "a link");
    EXPECT_EQ(items[0]["submenu"]["title"], "Open with...");
    EXPECT_EQ(titles(level(items, "a link"))[0], "Open selection with...");
    EXPECT_EQ(menu({"--pick", "a link", link}).status, 0);
    EXPECT_EQ(program.wait(), Words({file}));
}

TEST_F(MenuCommand, AConfiguredLinkToAFileIsAFile) {
    const test::RecordingProgram program({"text/plain"});
    const std::string file = folder.file("real.txt", "text\n");
    const std::string link = folder.link("a link", "real.txt");
    const std::string folders = "folders=" + link;
    const json items = menu_json({"--setting", folders, "--depth", "1", folder.folder("top")});
    EXPECT_EQ(item(items, "a link")["submenu"]["title"], "Open with...");
    EXPECT_EQ(menu({"--setting", folders, "--pick", "a link", folder.path("top")}).status, 0);
    EXPECT_EQ(program.wait(), Words({file}));
}

TEST_F(MenuCommand, AStrangersDesktopFileIsShownByItsNameAndOpensAsAText) {
    const test::RecordingProgram program({"text/plain"});
    const std::string entry =
        folder.file("top/photo.jpg.desktop",
                    "[Desktop Entry]\nType=Application\nName=Holiday photo.jpg\n"
                    "Icon=image-x-generic\nExec=" +
                        program.path() + " was run\n");
    folder.link("top/linked", "photo.jpg.desktop");
    const json items = menu_json({"--depth", "1", folder.path("top")});
    EXPECT_EQ(titles(level(items, "top")), Words({"linked", "photo.jpg.desktop"}));
    for (const char* name : {"linked", "photo.jpg.desktop"}) {
        EXPECT_EQ(menu({"--pick", "top", "--pick", name, folder.path("top")}).status, 0);
    }
    for (int i = 0; i < 6000 && program.opened().size() < 2; i++) usleep(10000);
    EXPECT_EQ(program.opened(), Words({entry, entry}));
}

TEST_F(MenuCommand, ALinkToAnApplicationIsAnApplication) {
    const test::RecordingProgram program({"text/plain"});
    const std::string data = getenv("XDG_DATA_HOME");
    folder.link("apps/b link", data + "/applications/record.desktop");
    folder.folder("real/Tool.app");
    folder.link("apps/a link", "../real/Tool.app");
    folder.link("apps/no link", folder.file("note.txt"));
    const Words settings = {"--setting", "open_with_path=" + folder.path("apps"), "--setting",
                            "runningAppsInOpenWithMenu=0"};
    const std::string file = folder.file("note", "text\n");
    Words words = settings;
    words.insert(words.end(), {"--depth", "1", file});
    EXPECT_EQ(titles(level(menu_json(words), "note")),
              Words({"Open selection with...", "-", "a link", "b link"}));
    words = settings;
    words.insert(words.end(), {"--pick", "note", "--pick", "b link", file});
    EXPECT_EQ(menu(words).status, 0);
    EXPECT_EQ(program.wait(), Words({file}));
    EXPECT_EQ(titles(level(menu_json({"--depth", "1", folder.path("apps")}), "apps")),
              Words({"a link", "b link", "-", "no link"}));
}

TEST_F(MenuCommand, ListsSelectedFoldersBeforeFilesEachInTheirOrder) {
    const Words words = {folder.file("z.txt"), folder.folder("b"), folder.file("a.txt"),
                         folder.folder("a")};
    Words shown;
    for (const json& item : menu_json(words)) {
        if (!item["path"].is_null()) shown.push_back(item["title"]);
    }
    shown.erase(std::unique(shown.begin(), shown.end()), shown.end());
    EXPECT_EQ(shown, Words({"b", "a", "z.txt", "a.txt"}));
}

TEST_F(MenuCommand, TakesFilesRelativeToTheCurrentFolder) {
    folder.folder("here");
    const fs::path before = fs::current_path();
    fs::current_path(folder.path("here"));
    EXPECT_EQ(menu_json({"."})[0]["path"], folder.path("here"));
    EXPECT_EQ(menu_json({"../here/"})[0]["path"], folder.path("here"));
    fs::current_path(before);
}

TEST_F(MenuCommand, IsTheHostsAloneWithShiftHeld) {
    EXPECT_EQ(titles(menu_json({"--modifiers", "shift", folder.folder("top")})), host_titles);
}

TEST_F(MenuCommand, IsTheHostsAloneWhenSwitchedOff) {
    EXPECT_EQ(titles(menu_json({"--setting", "delvio_is_on=0", folder.folder("top")})),
              host_titles);
}

TEST_F(MenuCommand, TakesSettingsForThisRunAlone) {
    folder.file("top/.hidden");
    folder.file("top/shown");
    const Words words = {"--depth", "1", folder.path("top")};
    Words with = words;
    with.insert(with.begin(), {"--setting", "show_hidden_files=1"});
    EXPECT_EQ(titles(level(menu_json(with), "top")), Words({".hidden", "shown"}));
    EXPECT_EQ(titles(level(menu_json(words), "top")), Words({"shown"}));
}

TEST_F(MenuCommand, SortsNamesByTheUsersLanguageOnRequest) {
    for (const char* name : {"Zug", "\u00DCbung", "Tisch", "Bild"}) {
        folder.file(std::string("top/") + name);
    }
    const Words words = {"--depth", "1", folder.path("top")};
    Words with = words;
    with.insert(with.begin(), {"--setting", "sort_by_language=1"});
    const Words by_language = {"Bild", "Tisch", "\u00DCbung", "Zug"};
    EXPECT_EQ(titles(level(menu_json(with), "top")), by_language);
    EXPECT_NE(titles(level(menu_json(words), "top")), by_language);
}

TEST_F(MenuCommand, PutsTheHostsItemsIntoASubmenuOfTheirOwnOnRequest) {
    const json items =
        menu_json({"--setting", "finderInSeparateSubmenu=1", "--depth", "1", folder.folder("top")});
    EXPECT_EQ(titles(items), Words({"top", "-", "Finder"}));
    EXPECT_EQ(titles(level(items, "Finder")), host_titles);
}

TEST_F(MenuCommand, SaysThatAFolderIsEmpty) {
    const json items = level(menu_json({"--depth", "1", folder.folder("top")}), "top");
    ASSERT_EQ(titles(items), Words({"Folder is empty"}));
    EXPECT_EQ(items[0]["enabled"], false);
}

TEST_F(MenuCommand, ShowsLabelColors) {
    folder.file("top/red");
    ASSERT_TRUE(folder.finder_info("top/red", 6 << 1)) << test::no_attributes;
    const json items = level(menu_json({"--depth", "1", folder.path("top")}), "top");
    EXPECT_EQ(item(items, "red")["color"], "#ff0000");
}

TEST_F(MenuCommand, BearsStrangeNames) {
    folder.file("top/two\nlines");
    folder.file(
        "top/bad\xff"
        "name");
    folder.file("top/" + std::string(255, 'n'));
    mkfifo(folder.path("top/fifo").c_str(), 0600);
    folder.link("top/loop", "loop");
    folder.link("top/gone", "nowhere");
    const json items = shown(level(menu_json({"--depth", "3", folder.path("top")}), "top"));
    EXPECT_EQ(items.size(), 6u);
    EXPECT_EQ(item(items, "two\nlines")["path"], folder.path("top/two\nlines"));
    EXPECT_EQ(item(items, "fifo")["path"], folder.path("top/fifo"));
    Words paths;
    for (const json& entry : items) {
        if (!entry["path"].is_null()) paths.push_back(entry["path"]);
    }
    const std::string longest = folder.path("top/" + std::string(255, 'n'));
    EXPECT_EQ(std::count(paths.begin(), paths.end(), longest), 1);
    EXPECT_EQ(menu({"--print", "--depth", "3", folder.path("top")}).status, 0);
}

TEST_F(MenuCommand, BearsASelectedNameThatIsNotUtf8) {
    const Outcome outcome = menu({"--json", folder.file("bad\xff"), folder.folder("good")});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_NE(outcome.err.find("is not UTF-8"), std::string::npos) << outcome.err;
    const json items = json::parse(outcome.out);
    EXPECT_EQ(items[0]["title"], "good");
    item(items, "Open");
}

TEST_F(MenuCommand, BearsAnEnvironmentThatIsNotUtf8) {
    const Outcome outcome =
        run_delvio({"menu", "--print", folder.folder("top")}, {{"PWD", "/tmp/bad\xff"}});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
}

TEST_F(MenuCommand, BearsAFolderThatMayNotBeRead) {
    folder.file("top/a");
    chmod(folder.path("top").c_str(), 0);
    const json items = menu_json({"--depth", "1", folder.path("top")});
    item(items, "Open");
    chmod(folder.path("top").c_str(), 0700);
}

TEST_F(MenuCommand, PicksAFileThreeLevelsDown) {
    const test::RecordingProgram program({"text/plain"});
    const std::string file = folder.file("top/sub/deep/note.txt", "text\n");
    const Outcome outcome = menu({"--pick", "top", "--pick", "SUB", "--pick", "deep", "--pick",
                                  "note.txt", folder.path("top")});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.out + outcome.err, "");
    EXPECT_EQ(program.wait(), Words({file}));
}

TEST_F(MenuCommand, PicksAFolderThatIsNamedLast) {
    const test::RecordingProgram program({"inode/directory"});
    folder.file("top/sub/a");
    EXPECT_EQ(menu({"--pick", "top", "--pick", "sub", folder.path("top")}).status, 0);
    EXPECT_EQ(program.wait(), Words({folder.path("top/sub")}));
}

TEST_F(MenuCommand, PicksTheHostsItems) {
    const test::RecordingProgram program({"text/plain"});
    const std::string file = folder.file("note.txt", "text\n");
    EXPECT_EQ(menu({"--pick", "Open", file}).status, 0);
    EXPECT_EQ(program.wait(), Words({file}));
}

TEST_F(MenuCommand, ShowsTheFolderWhereNoFileManagerAnswers) {
    const test::RecordingProgram program({"inode/directory"});
    EXPECT_EQ(menu({"--pick", "Show in File Manager", folder.file("note.txt")}).status, 0);
    EXPECT_EQ(program.wait(), Words({folder.path()}));
}

TEST_F(MenuCommand, MovesToTheTrash) {
    const fs::path home = getenv("HOME");
    const fs::path file = home / "unwanted", trashed = fs::path(getenv("XDG_DATA_HOME")) / "Trash";
    std::ofstream(file) << "keep me";
    EXPECT_EQ(menu({"--pick", "Move to Trash", file.string()}).status, 0);
    EXPECT_FALSE(fs::exists(file));
    EXPECT_EQ(test::read_file((trashed / "files" / "unwanted").string()), "keep me");
}

TEST_F(MenuCommand, SaysWhyItCannotMoveToTheTrash) {
    const Outcome outcome = menu({"--pick", "Move to Trash", "/proc/version"});
    expect_one_line(outcome, 1, "/proc/version");
    EXPECT_TRUE(fs::exists("/proc/version"));
}

TEST_F(MenuCommand, DoesNotPickWhatItCannotFind) {
    folder.file("top/notes.txt");
    expect_one_line(menu({"--pick", "top", "--pick", "note.txt", folder.path("top")}), 1,
                    "close to it: \"notes.txt\"");
    expect_one_line(menu({"--pick", "Open", "--pick", "x", folder.path("top")}), 1, "no submenu");
}

TEST_F(MenuCommand, DoesNotPickADisabledItem) {
    expect_one_line(menu({"--pick", "top", "--pick", "Folder is empty", folder.folder("top")}), 1,
                    "disabled");
}

TEST_F(MenuCommand, DoesNotPickAnItemThatOnlyOpensASubmenu) {
    expect_one_line(
        menu({"--setting", "finderInSeparateSubmenu=1", "--pick", "Finder", folder.folder("top")}),
        1, "only opens a submenu");
}

TEST_F(MenuCommand, HoldsOptionForAnAlternate) {
    folder.file("top/Tool.app/inside.txt");
    expect_one_line(
        menu({"--pick", "top", "--pick", "Tool.app", "--pick", "inside.txt", folder.path("top")}),
        1, "");
    const test::RecordingProgram program({"text/plain"});
    EXPECT_EQ(menu({"--modifiers", "option", "--pick", "top", "--pick", "Tool.app", "--pick",
                    "inside.txt", folder.path("top")})
                  .status,
              0);
    EXPECT_EQ(program.wait(), Words({folder.path("top/Tool.app/inside.txt")}));
}

TEST_F(MenuCommand, SavesAPicture) {
    folder.file("top/sub/a.txt");
    const std::string picture = folder.path("menu.png");
    const Outcome outcome =
        menu({"--png", picture, "--open", "top", "--open", "sub", folder.path("top")});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.out + outcome.err, "");
    EXPECT_EQ(test::read_file(picture).substr(1, 3), "PNG");
}

TEST_F(MenuCommand, SaysWhyThereIsNoPicture) {
    expect_one_line(menu({"--png", folder.path("no/menu.png"), folder.folder("top")}), 1,
                    "no/menu.png");
    expect_one_line(menu({"--png", folder.path("menu.png"), "--open", "tip", folder.folder("top")}),
                    1, "close to it: \"top\"");
    EXPECT_FALSE(fs::exists(folder.path("menu.png")));
}

TEST_F(MenuCommand, NeedsADisplayToShowAMenu) {
    expect_one_line(menu({folder.path()}), 1, "there is no display");
}

TEST_F(MenuCommand, SaysThatADisplayRefuses) {
    for (const char* form : {"--print", "--at=1,1"}) {
        const Outcome outcome = run_delvio({"menu", form, folder.path()}, {{"DISPLAY", ":9999"}});
        expect_one_line(outcome, 1, "the display :9999 refuses");
    }
}

TEST_F(MenuCommand, SaysThatItCannotStandInForADisplay) {
    const Outcome outcome = run_delvio({"menu", "--print", folder.path()}, {{"PATH", "/nowhere"}});
    expect_one_line(outcome, 1, "Xvfb");
}

TEST_F(MenuCommand, SaysThatAFileIsMissing) {
    expect_one_line(menu({"--print", folder.path(), folder.path("missing")}), 1, "missing");
}

TEST_F(MenuCommand, SaysThatThePlugInIsMissing) {
    const Outcome outcome =
        run_delvio({"menu", "--print", folder.path()}, {{"DELVIO_BUNDLE", "/nowhere"}});
    expect_one_line(outcome, 1, "DELVIO_BUNDLE");
}

TEST_F(MenuCommand, SaysWhatIsWrongWithItsUse) {
    const std::string file = folder.path();
    expect_one_line(menu({}), 2, "FILE");
    expect_one_line(run_delvio({}), 2, "menu, undo, settings, install or uninstall");
    expect_one_line(menu({"--print", "--json", file}), 2, "one of");
    expect_one_line(menu({"--depth", "2", file}), 2, "--print or --json");
    expect_one_line(menu({"--print", "--depth", "-1", file}), 2, "--depth");
    expect_one_line(menu({"--print", "--open", "a", file}), 2, "--png");
    for (const char* point :
         {"here", "1", "1,", ",1", "1,2,3", "1, 2", "4294967297,1", "1,-4294967295"}) {
        expect_one_line(menu({"--at", point, file}), 2, "X,Y");
    }
    expect_one_line(menu({"--print", "--modifiers", "alt", file}), 2, "option");
    expect_one_line(menu({"--print", "--setting", "font_size", file}), 2, "KEY=VALUE");
    expect_one_line(menu({"--print", "--setting", "font_sise=3", file}), 2, "font_size?");
    expect_one_line(menu({"--print", "--setting", "font_size=x", file}), 2, "font_size takes");
    expect_one_line(menu({"--frobnicate", file}), 2, "--frobnicate");
    expect_one_line(menu({"--png", "", file}), 2, "--png takes");
    expect_one_line(menu({"--at", "", file}), 2, "--at takes");
}

TEST_F(MenuCommand, TellsItsVersionAndItsUse) {
    EXPECT_EQ(run_delvio({"--version"}).out.rfind("delvio ", 0), 0u);
    EXPECT_NE(menu({"--help"}).out.find("--depth"), std::string::npos);
}

TEST_F(MenuCommand, LeavesNothingBehind) {
    const auto count = [] {
        return std::distance(fs::directory_iterator(fs::temp_directory_path()), {});
    };
    const auto before = count();
    EXPECT_EQ(menu({"--print", folder.path()}).status, 0);
    EXPECT_EQ(count(), before);
}

TEST_F(MenuCommand, WritesDebugLinesToStandardErrorAndTheMenuAloneToStandardOutput) {
    for (const char* form : {"--print", "--json"}) {
        const Outcome plain = menu({form, folder.path()});
        const Outcome logged = menu({form, "--setting", "logLevel=1", folder.path()});
        EXPECT_EQ(logged.status, 0);
        EXPECT_EQ(logged.out, plain.out);
        EXPECT_EQ(plain.err, "");
        EXPECT_NE(logged.err.find("Delvio-SLSA! Is loaded: 0 Is Finder: "), std::string::npos);
    }
}

TEST_F(MenuCommand, WaitsForThePictureOfAPreviewSubmenu) {
    folder.file("top/note.txt", "text\n");
    const Words words = {"--modifiers", "option", "--depth", "2", folder.path("top")};
    for (const json& item : level(menu_json(words), "top")) {
        if (item["modifiers"] != Words({"option"})) continue;
        ASSERT_EQ(item["submenu"]["items"].size(), 1u);
        EXPECT_EQ(item["submenu"]["items"][0]["image"], true);
    }
    Words print = words;
    print.insert(print.begin(), "--print");
    EXPECT_NE(menu(print).out.find("    note.txt > [option]\n        (picture)\n"),
              std::string::npos);
}

// The name as a terminal shows it: no escape sequence, no second line, no reversed text direction.
const std::string hostile_name = "a\x1b[31m\x07\xc2\x9b\x7f\nb\xe2\x80\xae";

TEST_F(MenuCommand, PassesNoControlCharactersOn) {
    folder.file("top/" + hostile_name);
    const std::string mark = "\xef\xbf\xbd";
    const std::string shown = "a" + mark + "[31m" + mark + mark + mark + mark + "b" + mark;
    const Outcome printed = menu({"--print", "--depth", "1", folder.path("top")});
    EXPECT_NE(printed.out.find("    " + shown + "\n"), std::string::npos) << printed.out;
    const Outcome written = menu({"--json", "--depth", "1", folder.path("top")});
    for (const char* raw : {"\x1b", "\x07", "\xc2\x9b", "\x7f", "\xe2\x80\xae"}) {
        EXPECT_EQ(written.out.find(raw), std::string::npos);
    }
    EXPECT_EQ(level(json::parse(written.out), "top")[0]["title"], hostile_name);
    for (const Words& words : {Words{"--" + hostile_name, "f"}, Words{"--print", hostile_name}}) {
        const Outcome outcome = menu(words);
        EXPECT_NE(outcome.err.find("a\\x1b[31m"), std::string::npos) << outcome.err;
        EXPECT_EQ(outcome.err.find('\x1b'), std::string::npos);
    }
}

TEST_F(MenuCommand, LeavesNothingOfAKilledRunAtTheNextStart) {
    const auto left = [&] { return std::distance(fs::directory_iterator(folder.path("tmp")), {}); };
    const auto has_file = [&] {
        for (const auto& entry : fs::directory_iterator(folder.path("tmp"))) {
            if (fs::exists(entry.path() / "authority")) return true;
        }
        return false;
    };
    const auto runs = [](const test::RunningCommand& command) {
        siginfo_t ended = {};
        const int options = WEXITED | WNOHANG | WNOWAIT;
        const auto process = static_cast<id_t>(command.process());
        return waitid(P_PID, process, &ended, options) == 0 && ended.si_pid == 0;
    };
    folder.folder("tmp");
    const test::Changes there = {{"TMPDIR", folder.path("tmp")}};
    const Words words = {"menu", "--print", folder.path()};
    // One that is so quick that it ends by itself leaves nothing, and is tried again.
    for (int attempt = 0; attempt < 20 && left() == 0; ++attempt) {
        test::RunningCommand command(words, there);
        // The folder is there a moment before its file is.
        while (!has_file() && runs(command)) usleep(1000);
        command.send_signal(SIGKILL);
        command.finish();
    }
    ASSERT_EQ(left(), 1);
    EXPECT_EQ(run_delvio(words, there).status, 0);
    EXPECT_EQ(left(), 0);
}

TEST_F(MenuCommand, LeavesTheFilesOfARunThatGoesOn) {
    folder.folder("tmp");
    const test::Changes there = {{"TMPDIR", folder.path("tmp")}};
    const std::string first = folder.path("tmp/delvio.abcdef");
    fs::create_directory(first);
    chmod(first.c_str(), 0700);
    const int held = open((first + "/authority").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_EQ(flock(held, LOCK_EX), 0);
    EXPECT_EQ(run_delvio({"menu", "--print", folder.path()}, there).status, 0);
    EXPECT_TRUE(fs::exists(first + "/authority"));
    close(held);
    EXPECT_EQ(run_delvio({"menu", "--print", folder.path()}, there).status, 0);
    EXPECT_FALSE(fs::exists(first));
}

TEST_F(MenuCommand, WorksWithoutAHomeFolder) {
    for (const Words& words :
         {Words{"menu", "--print", folder.path()}, Words{"settings", "list"}}) {
        const Outcome outcome = run_delvio(words, {{"HOME", ""}});
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        EXPECT_NE(outcome.out, "");
    }
}

// A lock of GNUstep's on the defaults, made when the clock was an hour ahead: GNUstep would wait
// for it for more than a minute, and then complain.
struct LockOnDefaults {
    LockOnDefaults() {
        fs::create_directories(path);
        fs::last_write_time(path, fs::file_time_type::clock::now() + std::chrono::hours(1));
    }
    ~LockOnDefaults() { fs::remove(path); }
    static std::string folder() {
        return test::output_of(
            "sed -n s/^GNUSTEP_USER_DEFAULTS_DIR=//p \"$GNUSTEP_CONFIG_FILE\" | tr -d '\\n'");
    }
    const std::string path = folder() + "/.lck/.GNUstepDefaults.lck";
};

TEST_F(MenuCommand, ADeadProgramsLockOnTheDefaultsHoldsNoStartUp) {
    const LockOnDefaults lock;
    const Outcome outcome = menu({"--print", folder.path()}, {{"HOME", folder.path()}});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_FALSE(fs::exists(lock.path));
}

TEST_F(MenuCommand, ALivingProgramsLockOnTheDefaultsStaysAndHoldsNoStartUp) {
    const test::GnustepProgram program;
    ASSERT_TRUE(program.wait_until_it_runs());
    const LockOnDefaults lock;
    const Outcome outcome = menu({"--print", folder.path()});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_TRUE(fs::exists(lock.path));
}

}  // namespace
