#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <set>

#include "hosts/command_runner.h"
#include "settings/settings_table.h"
#include "support/temp_folder.h"

namespace {

using test::Outcome;
using test::run_delvio;
using Words = std::vector<std::string>;

bool is_one_line(const std::string& text) {
    return !text.empty() && text.find('\n') == text.size() - 1;
}

Outcome settings(Words words) {
    words.insert(words.begin(), "settings");
    return run_delvio(words);
}

std::string get(const std::string& key) { return settings({"get", key}).out; }

// Expects a refusal as wrong use, with one line that contains `hint`, and nothing stored.
void expect_refused(const Words& words, const std::string& hint) {
    const Outcome outcome = settings(words);
    EXPECT_EQ(outcome.status, 2) << outcome.err;
    EXPECT_TRUE(is_one_line(outcome.err)) << outcome.err;
    EXPECT_NE(outcome.err.find(hint), std::string::npos) << outcome.err;
    EXPECT_EQ(outcome.out, "");
}

bool accepts(const char* key, const Words& words) {
    SettingValue value;
    std::string problem;
    return parse_setting(*find_setting(key), words, &value, &problem);
}

TEST(SettingsTable, KnowsEveryKeyOnce) {
    const std::set<std::string> expected = {"logLevel",
                                            "finderInSeparateSubmenu",
                                            "hideMoveCopyAlias",
                                            "showLabels",
                                            "showRecentItems",
                                            "hoverPreviews",
                                            "hoverPreviewsInterval",
                                            "runningAppsInOpenWithMenu",
                                            "rootMenuCollapseThreshold",
                                            "autoOpenWithMenu",
                                            "delvio_is_on",
                                            "sort_order",
                                            "show_hidden_files",
                                            "show_package_contents",
                                            "use_icons",
                                            "placement",
                                            "font_size",
                                            "escape_closes",
                                            "sort_by_language",
                                            "disable_menu_fade",
                                            "custom_folder_order",
                                            "only_folders_in_main_menu",
                                            "intra_sort_order",
                                            "control_free_delay_usec",
                                            "control_free_enabled",
                                            "use_generic_icons",
                                            "preview_size",
                                            "preview_beside_menu",
                                            "preview_details",
                                            "open_after_file_op",
                                            "open_with_path",
                                            "folders",
                                            "notices",
                                            "operations_by_file_manager"};
    std::set<std::string> known;
    for (const Setting& setting : settings_table()) known.insert(setting.key);
    EXPECT_EQ(known, expected);
    EXPECT_EQ(settings_table().size(), expected.size());
}

TEST(SettingsTable, HasDefaultsWithinItsBounds) {
    for (const Setting& setting : settings_table()) {
        if (!is_numeric(setting)) continue;
        EXPECT_TRUE(accepts(setting.key, {std::to_string(setting.standard)})) << setting.key;
    }
}

TEST(SettingsTable, TakesFlagsAsNumbersAndWords) {
    for (const char* word : {"0", "1", "on", "No", "TRUE"})
        EXPECT_TRUE(accepts("showLabels", {word}));
    for (const char* word : {"2", "-1", "", "maybe"}) EXPECT_FALSE(accepts("showLabels", {word}));
}

TEST(SettingsTable, TakesNumbersWithinTheirBounds) {
    EXPECT_TRUE(accepts("intra_sort_order", {"3"}));
    EXPECT_FALSE(accepts("intra_sort_order", {"4"}));
    EXPECT_FALSE(accepts("intra_sort_order", {"-1"}));
    EXPECT_TRUE(accepts("rootMenuCollapseThreshold", {"1"}));
    EXPECT_FALSE(accepts("rootMenuCollapseThreshold", {"0"}));
    EXPECT_FALSE(accepts("placement", {"99999999999"}));
    EXPECT_FALSE(accepts("font_size", {"12pt"}));
    EXPECT_FALSE(accepts("font_size", {"12", "13"}));
}

TEST(SettingsTable, TakesAbsolutePaths) {
    EXPECT_TRUE(accepts("open_with_path", {"/opt"}));
    EXPECT_FALSE(accepts("open_with_path", {"opt"}));
    EXPECT_FALSE(accepts("open_with_path", {"-"}));
    EXPECT_FALSE(accepts("open_with_path", {"/a", "/b"}));
    EXPECT_TRUE(accepts("folders", {"/a", "-", "/b"}));
    EXPECT_FALSE(accepts("folders", {"/a", "b"}));
    EXPECT_FALSE(accepts("folders", {"/bad\xff"}));
}

TEST(SettingsTable, TakesTheWordsOfAWordAlone) {
    EXPECT_TRUE(accepts("escape_closes", {"all"}));
    EXPECT_TRUE(accepts("escape_closes", {"level"}));
    for (const Words& words : {Words{"none"}, {""}, {"Level"}, {"all", "level"}})
        EXPECT_FALSE(accepts("escape_closes", words));
}

TEST(SettingsCommand, ChangesAndResetsAWord) {
    EXPECT_EQ(get("escape_closes"), "all\n");
    EXPECT_EQ(settings({"set", "escape_closes", "level"}).status, 0);
    EXPECT_EQ(get("escape_closes"), "level\n");
    expect_refused({"set", "escape_closes", "none"}, "escape_closes takes all or level");
    EXPECT_EQ(system("defaults write org.delvio.Delvio escape_closes other >/dev/null 2>&1"), 0);
    EXPECT_EQ(get("escape_closes"), "all\n") << "a word that it does not know";
    settings({"reset", "--all"});
}

TEST(SettingsCommand, ChangesAndResetsAValue) {
    EXPECT_EQ(get("sort_order"), "0\n");
    EXPECT_EQ(settings({"set", "sort_order", "1"}).status, 0);
    EXPECT_EQ(get("sort_order"), "1\n");
    EXPECT_EQ(settings({"reset", "sort_order"}).status, 0);
    EXPECT_EQ(get("sort_order"), "0\n");
}

TEST(SettingsCommand, KeepsFoldersInTheirOrder) {
    EXPECT_EQ(settings({"set", "folders", "/usr", "-", "/a b/c"}).status, 0);
    EXPECT_EQ(get("folders"), "/usr\n-\n/a b/c\n");
    EXPECT_EQ(settings({"reset", "folders"}).status, 0);
    EXPECT_EQ(get("folders"), "");
}

TEST(SettingsCommand, AddsFoldersAtTheEndOfTheListAndRemovesThem) {
    EXPECT_EQ(settings({"add", "folders", "/usr"}).status, 0);
    EXPECT_EQ(settings({"add", "folders", "-", "/etc/"}).status, 0);
    EXPECT_EQ(get("folders"), "/usr\n-\n/etc\n");
    EXPECT_EQ(settings({"remove", "folders", "/usr/", "-"}).status, 0);
    EXPECT_EQ(get("folders"), "/etc\n");
    EXPECT_EQ(settings({"remove", "folders", "/etc"}).status, 0);
    EXPECT_EQ(get("folders"), "");
}

TEST(SettingsCommand, AddsAFolderOnlyOnceAndBelowTheCurrentOneByItsName) {
    test::TempFolder folder;
    const std::string before = std::filesystem::current_path();
    const std::string below = folder.folder("below");
    std::filesystem::current_path(folder.path());
    EXPECT_EQ(settings({"add", "folders", "below"}).status, 0);
    EXPECT_EQ(settings({"add", "folders", below, "./below/"}).status, 0);
    EXPECT_EQ(get("folders"), below + "\n");
    EXPECT_EQ(settings({"remove", "folders", "below"}).status, 0);
    std::filesystem::current_path(before);
    EXPECT_EQ(get("folders"), "");
}

TEST(SettingsCommand, NamesAFolderThatIsMissingAtOnce) {
    const Outcome added = settings({"add", "folders", "/usr", "/no where"});
    EXPECT_EQ(added.status, 1);
    EXPECT_EQ(added.err, "delvio: there is no folder \"/no where\"; nothing was added\n");
    EXPECT_EQ(get("folders"), "");
    const Outcome set = settings({"set", "folders", "/usr", "-", "/no where"});
    EXPECT_EQ(set.status, 0);
    EXPECT_EQ(set.err,
              "delvio: there is no folder \"/no where\"; menus leave it out until there is one\n");
    EXPECT_EQ(get("folders"), "/usr\n-\n/no where\n");
    const Outcome word = settings({"set", "escape_closes", "level"});
    EXPECT_EQ(word.err, "") << "a word is no path";
    settings({"reset", "--all"});
}

TEST(SettingsCommand, RefusesToAddToASettingThatIsNoList) {
    expect_refused({"add", "sort_order", "1"}, "sort_order is no list; use delvio settings set");
    expect_refused({"remove", "open_with_path", "/opt"}, "open_with_path is no list");
    expect_refused({"add", "folders"}, "add takes a key and a value");
    expect_refused({"remove", "folders"}, "remove takes a key and a value");
    expect_refused({"add", "folder", "/usr"}, "did you mean folders?");
    const Outcome removed = settings({"remove", "folders", "/usr"});
    EXPECT_EQ(removed.status, 1);
    EXPECT_EQ(removed.err, "delvio: folders does not have \"/usr\"; nothing was removed\n");
}

TEST(SettingsCommand, KeepsAPathAsAString) {
    EXPECT_EQ(settings({"set", "open_with_path", "/usr/share"}).status, 0);
    EXPECT_EQ(get("open_with_path"), "/usr/share\n");
    EXPECT_EQ(settings({"reset", "open_with_path"}).status, 0);
}

TEST(SettingsCommand, TakesNegativeNumbers) {
    EXPECT_EQ(settings({"set", "placement", "-3"}).status, 0);
    EXPECT_EQ(get("placement"), "-3\n");
    EXPECT_EQ(settings({"reset", "placement"}).status, 0);
}

TEST(SettingsCommand, ResetsEverything) {
    settings({"set", "showLabels", "off"});
    settings({"set", "folders", "/usr"});
    EXPECT_EQ(settings({"reset", "--all"}).status, 0);
    EXPECT_EQ(get("showLabels"), "1\n");
    EXPECT_EQ(get("folders"), "");
}

TEST(SettingsCommand, ListsEverySetting) {
    const Outcome text = settings({"list"});
    const auto json = nlohmann::json::parse(settings({"list", "--json"}).out);
    EXPECT_EQ(json.size(), settings_table().size());
    for (const Setting& setting : settings_table()) {
        EXPECT_NE(text.out.find(setting.key), std::string::npos);
        EXPECT_NE(text.out.find(setting.meaning), std::string::npos);
    }
    EXPECT_EQ(text.err, "");
}

TEST(SettingsCommand, ListsWhatIsSet) {
    settings({"set", "font_size", "17"});
    const auto json = nlohmann::json::parse(settings({"list", "--json"}).out);
    for (const auto& entry : json) {
        EXPECT_EQ(entry["set"], entry["key"] == "font_size") << entry;
        if (entry["key"] == "font_size") {
            EXPECT_EQ(entry["value"], 17);
            EXPECT_EQ(entry["default"], 0);
        }
    }
    settings({"reset", "--all"});
}

TEST(SettingsCommand, ReadsWhatAnotherProgramWrote) {
    EXPECT_EQ(system("defaults write org.delvio.Delvio intra_sort_order 2 >/dev/null 2>&1"), 0);
    EXPECT_EQ(get("intra_sort_order"), "2\n");
    settings({"reset", "--all"});
}

TEST(SettingsCommand, TellsWhatANumberBeyondItsBoundsComesTo) {
    const std::pair<const char*, const char*> numbers[] = {{"rootMenuCollapseThreshold", "0"},
                                                           {"intra_sort_order", "9"},
                                                           {"show_hidden_files", "7"},
                                                           {"sort_order", "6"},
                                                           {"showLabels", "5"}};
    std::string values;
    for (const auto& [key, stored] : numbers) {
        const std::string command = std::string("defaults write org.delvio.Delvio ") + key + " ";
        EXPECT_EQ(system((command + stored + " >/dev/null 2>&1").c_str()), 0);
        values += get(key);
    }
    settings({"reset", "--all"});
    EXPECT_EQ(values, "1\n0\n0\n2\n1\n");
}

TEST(SettingsCommand, TellsTheFolderThatApplicationsComeFromUnlessOneIsSet) {
    EXPECT_EQ(get("open_with_path").substr(0, 1), "/");
    settings({"set", "open_with_path", "/opt"});
    EXPECT_EQ(get("open_with_path"), "/opt\n");
    settings({"reset", "--all"});
}

TEST(SettingsCommand, RefusesAnUnknownKeyAndNamesTheNearest) {
    expect_refused({"set", "sort_oder", "1"}, "\"sort_oder\"; did you mean sort_order?");
    expect_refused({"get", "SORT_ORDER"}, "did you mean sort_order?");
    expect_refused({"reset", "nonsense"}, "settings list");
}

TEST(SettingsCommand, RefusesABadValueAndSaysWhatItTakes) {
    expect_refused({"set", "intra_sort_order", "4"}, "0 to 3, not \"4\"");
    expect_refused({"set", "font_size", "big"}, "font_size takes");
    expect_refused({"set", "folders", "usr"}, "absolute paths");
    EXPECT_EQ(get("intra_sort_order"), "0\n");
}

TEST(SettingsCommand, RefusesWrongUse) {
    expect_refused({"set", "sort_order"}, "a key and a value");
    expect_refused({"reset"}, "--all");
    expect_refused({"reset", "--all", "sort_order"}, "--all");
    expect_refused({"get"}, "KEY");
    expect_refused({"get", "a", "b"}, "");
    expect_refused({"change", "sort_order"}, "");
}

TEST(SettingsTable, TellsTheWindowWhatEachNumberOfAChoiceMeans) {
    for (const Setting& setting : settings_table()) {
        const auto choices = choices_of(setting);
        if (choices.empty()) continue;
        const bool has_words = setting.type == SettingType::word;
        EXPECT_EQ(choices.size(), has_words ? setting.words.size()
                                            : static_cast<size_t>(setting.most - setting.least + 1))
            << setting.key;
        for (int i = 0; i < static_cast<int>(choices.size()); i++) {
            SettingValue value;
            std::string problem;
            ASSERT_TRUE(parse_setting(setting, {word_of_choice(setting, i)}, &value, &problem));
            EXPECT_EQ(choice_of(setting, value), i) << setting.key;
        }
    }
    EXPECT_EQ(choices_of(*find_setting("custom_folder_order"))[1], "Above the selection");
}

TEST(SettingsCommand, NeedsADisplayForTheWindowAndSaysWhatNeedsNone) {
    const Outcome outcome = run_delvio({"settings"}, {{"DISPLAY", ""}});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_TRUE(is_one_line(outcome.err)) << outcome.err;
    EXPECT_NE(outcome.err.find("delvio settings list"), std::string::npos) << outcome.err;
}

// Nobody can take the lock of a folder that is not to be written.
TEST(SettingsCommand, ThatCannotBeSavedNamesTheFolderAndWhatToDo) {
    const auto defaults = std::filesystem::path(getenv("HOME")).parent_path() / "defaults";
    settings({"reset", "--all"});
    std::filesystem::remove_all(defaults / ".lck");
    std::ofstream(defaults / ".lck") << "a file in the place of a folder";
    for (const Words& words : {Words{"set", "sort_order", "1"}, Words{"add", "folders", "/usr"}}) {
        const Outcome outcome = settings(words);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.err, "delvio: cannot save the settings in the folder \"" +
                                   defaults.string() +
                                   "\"; check that you may write there and that its disk has room, "
                                   "and try again\n");
    }
    std::filesystem::remove(defaults / ".lck");
    EXPECT_EQ(settings({"set", "sort_order", "1"}).status, 0);
    settings({"reset", "--all"});
}

// Each command prints one line about the file, with its name, and does not overwrite it.
TEST(SettingsCommand, CorruptSettingsAreNamedOnceAndLeftAlone) {
    const std::filesystem::path home = getenv("HOME");
    const std::string file = home.parent_path().string() + "/defaults/org.delvio.Delvio.plist";
    std::filesystem::create_directories(home.parent_path() / "defaults");
    std::ofstream(file) << "<<< no property list";
    const struct {
        Words words;
        int status;
    } rows[] = {{{"settings", "list"}, 0},
                {{"settings", "get", "sort_order"}, 0},
                {{"menu", "--print", home.string()}, 0},
                {{"settings", "set", "sort_order", "1"}, 1},
                {{"settings", "add", "folders", "/usr"}, 1},
                {{"settings", "reset", "--all"}, 1}};
    for (const auto& row : rows) {
        const Outcome outcome = run_delvio(row.words);
        EXPECT_EQ(outcome.status, row.status) << outcome.err;
        EXPECT_TRUE(is_one_line(outcome.err)) << outcome.err;
        EXPECT_NE(outcome.err.find(file), std::string::npos) << outcome.err;
        EXPECT_EQ(test::read_file(file), "<<< no property list");
    }
    std::filesystem::remove(file);
}

}  // namespace
