#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <pwd.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include "command/file_arguments.h"
#include "command/home_folder.h"
#include "command/modifier_names.h"
#include "command/printable.h"
#include "command/similar_words.h"
#include "command/title_match.h"
#include "popup/menu_snapshot.h"
#include "support/temp_folder.h"

namespace {

using Titles = std::vector<std::string>;

ItemSnapshot item(const std::string& title) {
    ItemSnapshot snapshot;
    snapshot.title = title;
    snapshot.enabled = true;
    snapshot.details = std::make_unique<ItemDetails>();
    return snapshot;
}

// A list in braces can only be copied from.
template <typename... Items>
MenuSnapshot menu_of(Items... items) {
    MenuSnapshot menu;
    (menu.push_back(std::move(items)), ...);
    return menu;
}

ItemSnapshot folder(const std::string& title, MenuSnapshot items) {
    ItemSnapshot snapshot = item(title);
    snapshot.has_submenu = snapshot.populated = true;
    snapshot.items = std::move(items);
    return snapshot;
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
    ItemSnapshot separator;
    separator.separator = true;
    ItemSnapshot disabled = item("Gone");
    disabled.enabled = false;
    ItemSnapshot top = folder("Top", menu_of(item("a\nb"), std::move(alternate)));
    MenuText text;
    text.add(top, 0);
    for (const ItemSnapshot& inside : top.items) text.add(inside, 1);
    text.add(separator, 0);
    text.add(disabled, 0);
    EXPECT_EQ(text.parts(), Titles({"Top >\n    a\xef\xbf\xbd"
                                    "b\n    Inside [shift-option]\n--------\nGone (disabled)\n"}));
}

TEST(MenuText, OfAnySizeIsCompleteAndInOrder) {
    MenuText text;
    std::string expected, whole;
    for (int i = 0; i < 200000; i++) {
        const std::string title = "entry " + std::to_string(i);
        text.add(item(title), 2);
        expected += "        " + title + "\n";
    }
    for (const std::string& part : text.parts()) whole += part;
    EXPECT_TRUE(whole == expected);
}

TEST(MenuJson, HasEveryKeyOfAnItem) {
    ItemSnapshot colored = item("Red");
    colored.details->color = "#ff0000";
    colored.details->path = "/tmp/Red";
    colored.details->tag = 7;
    colored.image = colored.details->plugin = true;
    const auto json = nlohmann::json::parse(write_menu_json(menu_of(std::move(colored))));
    EXPECT_EQ(json, nlohmann::json::parse(R"([{"type": "item", "title": "Red", "enabled": true,
        "alternate": false, "modifiers": [], "image": true, "color": "#ff0000", "tag": 7,
        "plugin": true, "path": "/tmp/Red", "submenu": null}])"));
}

TEST(MenuJson, TellsOpenedLevelsFromOthers) {
    ItemSnapshot closed = item("closed");
    closed.has_submenu = true;
    const auto json = nlohmann::json::parse(
        write_menu_json(menu_of(folder("open", menu_of(item("a"))), std::move(closed))));
    EXPECT_TRUE(json[0]["submenu"]["populated"]);
    EXPECT_EQ(json[0]["submenu"]["items"][0]["title"], "a");
    EXPECT_FALSE(json[1]["submenu"]["populated"]);
    EXPECT_TRUE(json[1]["submenu"]["items"].empty());
    EXPECT_EQ(json[1]["submenu"]["title"], "");
    EXPECT_TRUE(json[1]["path"].is_null());
}

TEST(MenuJson, ReplacesBytesThatAreNotUtf8) {
    const auto json =
        nlohmann::json::parse(write_menu_json(menu_of(item("a\xff"
                                                           "b"))));
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
