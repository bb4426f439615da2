#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <pwd.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "command/file_arguments.h"
#include "command/home_folder.h"
#include "command/modifier_names.h"
#include "command/printable.h"
#include "command/similar_words.h"
#include "command/title_match.h"
#include "popup/menu_writer.h"
#include "support/temp_folder.h"

namespace {

using Titles = std::vector<std::string>;

ItemSnapshot item(const std::string& title) {
    ItemSnapshot snapshot;
    snapshot.title = title;
    snapshot.enabled = true;
    return snapshot;
}

ItemSnapshot folder(const std::string& title) {
    ItemSnapshot snapshot = item(title);
    snapshot.has_submenu = true;
    return snapshot;
}

// What a writer of this kind writes for the items that `add` adds.
template <typename Writer, typename Add>
std::string written(Add add) {
    std::string text;
    Writer writer([&](const std::string& part) { text += part; });
    add(writer);
    writer.finish();
    return text;
}

TEST(TitleMatch, TakesTheSameTitleBeforeOneOfOtherCase) {
    std::string problem;
    EXPECT_EQ(match_title("notes", {"Notes", "notes", "NOTES"}, &problem), 1);
}

TEST(TitleMatch, TakesTheOnlyTitleOfOtherCase) {
    std::string problem;
    EXPECT_EQ(match_title("NOTES", {"a", "Notes"}, &problem), 1);
}

TEST(TitleMatch, RefusesSeveralTitlesOfOtherCase) {
    std::string problem;
    EXPECT_EQ(match_title("NOTES", {"notes", "Notes"}, &problem), -1);
    EXPECT_NE(problem.find("\"notes\", \"Notes\""), std::string::npos);
}

TEST(TitleMatch, NamesTitlesThatComeClose) {
    std::string problem;
    EXPECT_EQ(match_title("notse.txt", {"holiday.jpg", "notes.txt"}, &problem), -1);
    EXPECT_NE(problem.find("\"notes.txt\""), std::string::npos);
    EXPECT_EQ(problem.find("holiday"), std::string::npos);
}

TEST(TitleMatch, OfAnEmptyMenuSaysSo) {
    std::string problem;
    EXPECT_EQ(match_title("a", {}, &problem), -1);
    EXPECT_NE(problem.find("empty"), std::string::npos);
}

TEST(TitleMatch, KeepsItsProblemOnOneLine) {
    std::string problem;
    EXPECT_EQ(match_title("a\nb", {"a\nc"}, &problem), -1);
    EXPECT_EQ(problem.find('\n'), std::string::npos);
}

TEST(HomeFolder, IsTheSystemsWhereTheEnvironmentNamesNone) {
    const std::string home = getenv("HOME");
    std::string problem;
    EXPECT_TRUE(ensure_home_folder(&problem));
    EXPECT_EQ(getenv("HOME"), home);
    for (const char* none : {"", "relative"}) {
        setenv("HOME", none, 1);
        EXPECT_TRUE(ensure_home_folder(&problem));
        EXPECT_STREQ(getenv("HOME"), getpwuid(geteuid())->pw_dir);
    }
    unsetenv("HOME");
    EXPECT_TRUE(ensure_home_folder(&problem));
    EXPECT_STREQ(getenv("HOME"), getpwuid(geteuid())->pw_dir);
    setenv("HOME", home.c_str(), 1);
}

TEST(HomeFolder, ThatNobodyKnowsIsSaid) {
    if (geteuid() != 0) GTEST_SKIP() << "only root can be a user that the system does not know";
    const pid_t child = fork();
    if (child == 0) {
        unsetenv("HOME");
        std::string problem;
        const bool stranger = setreuid(4000000, 4000000) == 0;
        const bool said = !ensure_home_folder(&problem) && problem.find("set HOME") != problem.npos;
        _exit(stranger && said ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
}

TEST(Printable, MarksWhatChangesATerminalAndNothingElse) {
    EXPECT_EQ(printable("plain \xc3\xa4 \xf0\x9f\x98\x80", "?"), "plain \xc3\xa4 \xf0\x9f\x98\x80");
    EXPECT_EQ(printable("\x1b\n\t\x7f\xc2\x80\xc2\x9f\xc2\xa0", "?"), "??????\xc2\xa0");
    EXPECT_EQ(printable("\xe2\x80\xa8\xe2\x80\xae\xe2\x81\xa6\xe2\x80\xaf", "?"),
              "???\xe2\x80\xaf");
    EXPECT_EQ(printable("a\xff\xc3", "?"), "a??");
    EXPECT_EQ(printable(std::string("a\0b", 3), "?"), "a?b");
}

TEST(Printable, EscapesInJsonAndKeepsItsLines) {
    EXPECT_EQ(printable_json("{\n\"a\xc2\x9b\x7f\xe2\x80\xae\"\n}"),
              "{\n\"a\\u009b\\u007f\\u202e\"\n}");
}

TEST(SimilarWords, ComeNearestFirstAndNoneTwice) {
    EXPECT_EQ(similar_words("abcd", {"abxx", "abce", "abce", "zzzzzzz"}, 5),
              Titles({"abce", "abxx"}));
}

TEST(Modifiers, AreReadAndNamed) {
    unsigned long flags = 1;
    EXPECT_TRUE(parse_modifiers("", &flags));
    EXPECT_EQ(flags, 0u);
    EXPECT_TRUE(parse_modifiers("command,shift", &flags));
    EXPECT_EQ(flags, 0x120000u);
    EXPECT_EQ(modifier_names(flags), Titles({"shift", "command"}));
    EXPECT_TRUE(parse_modifiers("option,control", &flags));
    EXPECT_EQ(flags, 0xc0000u);
    EXPECT_FALSE(parse_modifiers("shift,alt", &flags));
}

TEST(MenuText, IndentsAndMarks) {
    ItemSnapshot alternate = item("Inside");
    alternate.alternate = true;
    alternate.modifiers = 0x20000 | 0x80000;  // Shift, Option
    ItemSnapshot bare = item("Inside");
    bare.alternate = true;
    ItemSnapshot separator;
    separator.separator = true;
    ItemSnapshot disabled = item("Gone");
    disabled.enabled = false;
    const std::string text = written<MenuText>([&](MenuWriter& writer) {
        writer.add(folder("Top"), true);
        writer.add(item("a\nb"), false);
        writer.add(alternate, false);
        writer.add(bare, false);
        writer.end_submenu();
        writer.add(separator, false);
        writer.add(disabled, false);
    });
    EXPECT_EQ(text,
              "Top >\n    a\xef\xbf\xbd"
              "b\n    Inside [shift-option]\n    Inside []\n--------\nGone (disabled)\n");
}

TEST(MenuText, OfAnySizeIsCompleteAndInOrderAndComesInParts) {
    std::string expected, whole;
    size_t longest = 0;
    MenuText text([&](const std::string& part) {
        whole += part;
        longest = std::max(longest, part.size());
    });
    text.add(folder("top"), true);
    expected += "top >\n";
    for (int i = 0; i < 200000; i++) {
        const std::string title = "entry " + std::to_string(i);
        text.add(item(title), false);
        expected += "    " + title + "\n";
    }
    text.end_submenu();
    text.finish();
    EXPECT_TRUE(whole == expected);
    EXPECT_LT(longest, expected.size() / 2);
}

TEST(MenuJson, HasEveryKeyOfAnItem) {
    ItemSnapshot colored = item("Red");
    colored.details.color = "#ff0000";
    colored.details.path = "/tmp/Red";
    colored.details.tag = 7;
    colored.image = colored.details.plugin = true;
    const auto json = nlohmann::json::parse(
        written<MenuJson>([&](MenuWriter& writer) { writer.add(colored, false); }));
    EXPECT_EQ(json, nlohmann::json::parse(R"([{"type": "item", "title": "Red", "enabled": true,
        "alternate": false, "modifiers": [], "image": true, "color": "#ff0000", "tag": 7,
        "plugin": true, "path": "/tmp/Red", "submenu": null}])"));
}

TEST(MenuJson, TellsOpenedLevelsFromOthers) {
    const auto json = nlohmann::json::parse(written<MenuJson>([](MenuWriter& writer) {
        writer.add(folder("open"), true);
        writer.add(item("a"), false);
        writer.end_submenu();
        writer.add(folder("closed"), false);
    }));
    EXPECT_TRUE(json[0]["submenu"]["populated"]);
    EXPECT_EQ(json[0]["submenu"]["items"][0]["title"], "a");
    EXPECT_FALSE(json[1]["submenu"]["populated"]);
    EXPECT_TRUE(json[1]["submenu"]["items"].empty());
    EXPECT_EQ(json[1]["submenu"]["title"], "");
    EXPECT_TRUE(json[1]["path"].is_null());
}

TEST(MenuJson, IsLaidOutAsALibraryDoes) {
    ItemSnapshot separator, odd = item("tab\t \"quoted\" back\\slash \u00e9 \u202e \x7f\x01/");
    separator.separator = true;
    ItemSnapshot alternate = folder("alternate");
    alternate.alternate = true;
    alternate.modifiers = 0x20000 | 0x80000;
    alternate.details.submenu_title = "with \"it\"";
    odd.details.path = "/tmp/\x7f";
    odd.details.tag = -3;
    const std::string text = written<MenuJson>([&](MenuWriter& writer) {
        writer.add(folder("outer"), true);
        writer.add(folder("empty"), true);
        writer.end_submenu();
        writer.add(separator, false);
        writer.add(folder("inner"), true);
        writer.add(odd, false);
        writer.end_submenu();
        writer.end_submenu();
        writer.add(alternate, false);
    });
    const auto json = nlohmann::ordered_json::parse(text);
    EXPECT_EQ(json[0]["submenu"]["items"][2]["submenu"]["items"][0]["title"], odd.title);
    EXPECT_EQ(json[1]["modifiers"], nlohmann::ordered_json::array({"shift", "option"}));
    EXPECT_EQ(text, printable_json(json.dump(2)) + "\n");
    EXPECT_EQ(written<MenuJson>([](MenuWriter&) {}), "[]\n");
}

// One property of an item differs from the item before, each in its turn.
TEST(MenuJson, ItemsThatDifferInOnePropertyAreWrittenWithIt) {
    std::vector<ItemSnapshot> items{folder("plain")};
    const auto add = [&](auto change) { change(items.emplace_back(items.front())); };
    add([](ItemSnapshot& item) { item.separator = true; });
    add([](ItemSnapshot& item) { item.enabled = !item.enabled; });
    add([](ItemSnapshot& item) { item.alternate = true; });
    add([](ItemSnapshot& item) { item.modifiers = 0x20000; });
    add([](ItemSnapshot& item) { item.image = !item.image; });
    add([](ItemSnapshot& item) { item.has_submenu = false; });
    add([](ItemSnapshot& item) { item.details.color = "#ff0000"; });
    add([](ItemSnapshot& item) { item.details.tag = 7; });
    add([](ItemSnapshot& item) { item.details.plugin = !item.details.plugin; });
    add([](ItemSnapshot& item) { item.details.path = "/tmp"; });
    add([](ItemSnapshot& item) { item.details.submenu_title = "title"; });
    add([](ItemSnapshot& item) { item.title = ""; });
    const auto all = nlohmann::json::parse(written<MenuJson>([&](MenuWriter& writer) {
        for (const ItemSnapshot& item : items) writer.add(item, false);
        for (const ItemSnapshot& item : items) writer.add(item, false);
    }));
    ASSERT_EQ(all.size(), 2 * items.size());
    for (size_t i = 0; i < all.size(); i++) {
        const auto alone = nlohmann::json::parse(written<MenuJson>(
            [&](MenuWriter& writer) { writer.add(items[i % items.size()], false); }));
        EXPECT_EQ(all[i], alone[0]) << i;
        if (i > 0 && i < items.size()) EXPECT_NE(all[i], all[0]) << i;
    }
}

TEST(MenuJson, ReplacesBytesThatAreNotUtf8) {
    const auto json = nlohmann::json::parse(written<MenuJson>([](MenuWriter& writer) {
        writer.add(item("a\xff"
                        "b"),
                   false);
    }));
    EXPECT_EQ(json[0]["title"],
              "a\xef\xbf\xbd"
              "b");
}

struct FileArguments : testing::Test {
    test::TempFolder folder;
    std::string problem;

    std::string resolved(const std::string& given) {
        std::vector<std::string> files = {given};
        return resolve_files(&files, &problem) ? files[0] : "failed: " + problem;
    }
};

TEST_F(FileArguments, LoseTrailingSlashesAndDots) {
    folder.file("sub/a");
    EXPECT_EQ(resolved(folder.path("sub/")), folder.path("sub"));
    EXPECT_EQ(resolved(folder.path("./sub/./a")), folder.path("sub/a"));
    EXPECT_EQ(resolved("/"), "/");
}

TEST_F(FileArguments, KeepTheLinkThatTheyName) {
    folder.file("target");
    folder.link("link", "target");
    folder.link("dangling", "nowhere");
    EXPECT_EQ(resolved(folder.path("link")), folder.path("link"));
    EXPECT_EQ(resolved(folder.path("dangling")), folder.path("dangling"));
}

TEST_F(FileArguments, AreNotFoundFromAFolderThatHasBeenRemoved) {
    const auto before = std::filesystem::current_path();
    const std::string given = folder.file("a");
    std::filesystem::current_path(folder.folder("gone"));
    std::filesystem::remove(folder.path("gone"));
    EXPECT_EQ(resolved("a"), "failed: cannot find \"a\": No such file or directory");
    EXPECT_EQ(resolved(".."), "failed: cannot find \"..\": No such file or directory");
    EXPECT_EQ(resolved(given), given);
    std::filesystem::current_path(before);
}

TEST_F(FileArguments, ClimbFromWhereALinkLeads) {
    folder.file("deep/inner/a");
    folder.file("deep/b");
    folder.link("link", "deep/inner");
    EXPECT_EQ(resolved(folder.path("link/../b")), folder.path("deep/b"));
    EXPECT_EQ(resolved(folder.path("link/..")), folder.path("deep"));
}

TEST_F(FileArguments, ThatAreMissingAreNamed) {
    EXPECT_NE(resolved(folder.path("missing")).find("missing"), std::string::npos);
    EXPECT_NE(problem.find("No such file"), std::string::npos);
}

}  // namespace
