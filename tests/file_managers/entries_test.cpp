// What delvio install and uninstall do to the files of a user's file managers.
#include <gtest/gtest.h>

#include <stdlib.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <map>

#include "hosts/command_runner.h"
#include "support/temp_folder.h"

using namespace test;

namespace fs = std::filesystem;

namespace {

const char* const system_actions =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE actions [\n"
    "  <!ELEMENT actions (action)+>\n]>\n<actions>\n\n  <action>\n"
    "    <name>Open Terminal Here</name>\n    <name xml:lang=\"de\">Terminal hier \xc3\xb6"
    "ffnen</name>\n    <command>exo-open --working-directory %f</command>\n"
    "    <startup-notify/>\n    <directories/>\n  </action>\n\n</actions>\n";

// As Thunar writes it after an edit, with a user's own comment, and things that look like tags.
const char* const users_actions =
    "<?xml encoding=\"UTF-8\" version=\"1.0\"?>\n<actions>\n<!-- mine: </actions> <action> -->\n"
    "<action>\n\t<icon>utilities-terminal</icon>\n\t<name>Open &lt;Terminal&gt;</name>\n"
    "\t<unique-id>1689000000000000-1</unique-id>\n\t<command>sh -c 'a > b &amp;&amp; c' %f"
    "</command>\n\t<patterns>*.\"x>y\"</patterns>\n\t<directories/>\n</action>\n"
    "<action>\n\t<name><![CDATA[</actions>]]></name>\n\t<command>second</command>\n</action>\n"
    "</actions>\n";

std::string folder_of(const char* variable) { return getenv(variable); }

class Entries : public testing::Test {
  protected:
    Entries() {
        system.file("Thunar/uca.xml", system_actions);
        setenv("XDG_CONFIG_DIRS", system.path().c_str(), 1);
        for (const std::string& folder : {config, data}) {
            fs::remove_all(folder);
            fs::create_directories(folder);
        }
    }

    static Outcome run(const std::string& verb, const std::string& name) {
        return run_delvio({verb, name});
    }

    // All files and folders of the user, each with its mode and content.
    std::map<std::string, std::string> everything() const {
        std::map<std::string, std::string> all;
        for (const std::string& folder : {config, data}) {
            for (const auto& entry : fs::recursive_directory_iterator(folder)) {
                struct stat status;
                lstat(entry.path().c_str(), &status);
                all[entry.path()] = std::to_string(status.st_mode) + " " + read_file(entry.path());
            }
        }
        return all;
    }

    std::string actions_file(const std::string& content) const {
        fs::create_directories(config + "/Thunar");
        std::ofstream(actions) << content;
        return actions;
    }

    TempFolder system;
    const std::string config = folder_of("XDG_CONFIG_HOME"), data = folder_of("XDG_DATA_HOME");
    const std::string actions = config + "/Thunar/uca.xml";
};

size_t count_of(const std::string& text, const std::string& part) {
    size_t count = 0;
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        count++;
    }
    return count;
}

void expect_refusal(const Outcome& outcome, const std::string& file) {
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(count_of(outcome.err, "\n"), 1u) << outcome.err;
    EXPECT_NE(outcome.err.find(file), std::string::npos) << outcome.err;
}

struct Way {
    const char* name;
    bool is_script;
    std::vector<std::string> files;  // C: in the folder of settings, D: in that of data
};

const Way ways[] = {
    {"caja", true, {"C/caja/scripts/Delvio"}},
    {"dolphin", true, {"D/kio/servicemenus/delvio.desktop"}},
    {"nautilus", true, {"D/nautilus/scripts/Delvio"}},
    {"nemo",
     false,
     {"D/nemo/actions/delvio.nemo_action", "D/nemo/actions/delvio-folder.nemo_action"}},
    {"pcmanfm", false, {"D/file-manager/actions/delvio.desktop"}},
    {"pcmanfm-qt", false, {"D/file-manager/actions/delvio.desktop"}},
};

class WholeFiles : public Entries, public testing::WithParamInterface<Way> {
  protected:
    std::vector<std::string> files() const {
        std::vector<std::string> paths;
        for (const std::string& file : GetParam().files) {
            paths.push_back((file[0] == 'C' ? config : data) + file.substr(1));
        }
        return paths;
    }
    std::string name() const { return GetParam().name; }
};

INSTANTIATE_TEST_SUITE_P(EachFileManager, WholeFiles, testing::ValuesIn(ways),
                         [](const auto& info) {
                             std::string name = info.param.name;
                             std::erase(name, '-');
                             return name;
                         });

}  // namespace

TEST_P(WholeFiles, AreMadeAndRemovedAndNothingElseChanges) {
    std::ofstream(data + "/neighbour") << "kept";
    const auto before = everything();
    const Outcome installed = run("install", name());
    EXPECT_EQ(installed.status, 0) << installed.err;
    for (const std::string& file : files()) {
        EXPECT_NE(installed.out.find(file), std::string::npos) << installed.out;
        EXPECT_NE(read_file(file).find("/delvio menu -- "), std::string::npos) << file;
        EXPECT_EQ(access(file.c_str(), X_OK) == 0, GetParam().is_script) << file;
    }
    const Outcome removed = run("uninstall", name());
    EXPECT_EQ(removed.status, 0) << removed.err;
    EXPECT_EQ(everything(), before);
}

TEST_P(WholeFiles, AgainSaysThatTheyAreThereAndChangesNothing) {
    run("install", name());
    const auto once = everything();
    const Outcome again = run("install", name());
    EXPECT_EQ(again.status, 0);
    EXPECT_NE(again.out.find("already"), std::string::npos) << again.out;
    EXPECT_EQ(everything(), once);
}

TEST_P(WholeFiles, AUsersFileOfTheSameNameIsRefusedAndKept) {
    const std::string theirs = files().back();
    fs::create_directories(fs::path(theirs).parent_path());
    std::ofstream(theirs) << "the user's own\n";
    const auto before = everything();
    expect_refusal(run("install", name()), theirs);
    EXPECT_EQ(everything(), before);
    EXPECT_EQ(run("uninstall", name()).status, 0);
    EXPECT_EQ(everything(), before);
}

TEST_P(WholeFiles, AnEntryForAnotherCommandIsReplaced) {
    run("install", name());
    const auto right = everything();
    for (const std::string& file : files()) {
        std::string text = read_file(file);
        const size_t end = text.find(" menu -- ");
        const size_t begin = text.find_last_of(" =", end - 1) + 1;
        std::ofstream(file) << text.replace(begin, end - begin, "/old/place/delvio");
    }
    EXPECT_NE(run_delvio({"install", "--list"}).out.find("another Delvio"), std::string::npos);
    EXPECT_EQ(run("install", name()).status, 0);
    EXPECT_EQ(everything(), right);
}

TEST_P(WholeFiles, WhatIsNotThereIsNothingToRemove) {
    const auto before = everything();
    const Outcome outcome = run("uninstall", name());
    EXPECT_EQ(outcome.status, 0);
    EXPECT_NE(outcome.out.find("nothing to do"), std::string::npos) << outcome.out;
    EXPECT_EQ(everything(), before);
}

TEST_F(Entries, AScriptThatLostItsPermissionGetsItBack) {
    run("install", "caja");
    const std::string script = config + "/caja/scripts/Delvio";
    chmod(script.c_str(), 0600);
    EXPECT_EQ(run("install", "caja").status, 0);
    EXPECT_EQ(access(script.c_str(), X_OK), 0);
}

// What a file manager's script gives to the command, one argument per line in brackets.
class Scripts : public Entries {
  protected:
    Scripts() {
        chmod(recorder.file("delvio", "#!/bin/sh\nprintf '[%s]\\n' \"$@\"\n").c_str(), 0755);
        run("install", "caja");
        std::string text = read_file(script);
        const size_t end = text.find(" menu -- "), begin = text.find("exec ") + 5;
        std::ofstream(script) << text.replace(begin, end - begin, recorder.path("delvio"));
    }

    std::string arguments(const std::string& words) {
        const std::string line = "cd '" + recorder.path() + "' && " + words + " > out";
        const std::string shell = recorder.file("run", line);
        EXPECT_EQ(system_call("sh '" + shell + "'"), 0);
        return read_file(recorder.path("out"));
    }
    static int system_call(const std::string& line) { return std::system(line.c_str()); }

    TempFolder recorder;
    const std::string script = config + "/caja/scripts/Delvio";
};

TEST_F(Scripts, PathsCountMoreThanArgumentsThatLostACode) {
    EXPECT_EQ(arguments("CAJA_SCRIPT_SELECTED_FILE_PATHS='/a/100 %F\n/a/$HOME *\n' "
                        "NAUTILUS_SCRIPT_SELECTED_FILE_PATHS=/a/other '" +
                        script + "' '100 ' '$HOME *'"),
              "[menu]\n[--]\n[/a/100 %F]\n[/a/$HOME *]\n");
    EXPECT_EQ(arguments("NAUTILUS_SCRIPT_SELECTED_FILE_PATHS='/b/x y\n' '" + script + "' 'x y'"),
              "[menu]\n[--]\n[/b/x y]\n");
}

TEST_F(Scripts, ANameWithALineBreakIsTakenFromTheArguments) {
    EXPECT_EQ(arguments("CAJA_SCRIPT_SELECTED_FILE_PATHS='/a/two\nlines\n' '" + script +
                        "' 'two\nlines'"),
              "[menu]\n[--]\n[two\nlines]\n");
}

TEST_F(Scripts, WithoutASelectionTheFolderCounts) {
    EXPECT_EQ(arguments("'" + script + "'"), "[menu]\n[--]\n[" + recorder.path() + "]\n");
}

TEST_F(Entries, AFileInPlaceOfAFolderIsNamed) {
    std::ofstream(data + "/nemo") << "no folder";
    expect_refusal(run("install", "nemo"), data + "/nemo");
    EXPECT_EQ(read_file(data + "/nemo"), "no folder");
}

TEST_F(Entries, ThunarsNewFileBeginsWithTheSystemsActionsAndGoesAgain) {
    const auto before = everything();
    EXPECT_EQ(run("install", "thunar").status, 0);
    const std::string text = read_file(actions);
    EXPECT_NE(text.find("Open Terminal Here"), std::string::npos) << text;
    EXPECT_EQ(count_of(text, "<unique-id>delvio-menu</unique-id>"), 1u) << text;
    EXPECT_EQ(count_of(text, "/delvio menu -- %F</command>"), 1u) << text;
    EXPECT_EQ(run("uninstall", "thunar").status, 0);
    EXPECT_EQ(everything(), before);
}

TEST_F(Entries, WithoutActionsOfTheSystemThunarsFileHasOurActionAlone) {
    setenv("XDG_CONFIG_DIRS", system.path("none").c_str(), 1);
    const auto before = everything();
    EXPECT_EQ(run("install", "thunar").status, 0);
    EXPECT_EQ(count_of(read_file(actions), "<action>"), 1u);
    EXPECT_EQ(run("uninstall", "thunar").status, 0);
    EXPECT_EQ(everything(), before);
}

TEST_F(Entries, AUsersActionsStayByteForByte) {
    for (const std::string& text :
         {std::string(users_actions), std::string(system_actions), std::string("<actions/>"),
          std::string("<actions />"), std::string("<actions a=\"<actions\" b='>'/>\n"),
          std::string("<actions></actions>"), std::string("<actions>\r\n</actions>\r\n"),
          std::string("<actions><action><name>a</name></action></actions>")}) {
        actions_file(text);
        chmod(actions.c_str(), 0640);
        const auto before = everything();
        EXPECT_EQ(run("install", "thunar").status, 0) << text;
        const std::string changed = read_file(actions);
        EXPECT_EQ(count_of(changed, "<unique-id>delvio-menu</unique-id>"), 1u) << changed;
        EXPECT_EQ(run("install", "thunar").status, 0);
        EXPECT_EQ(read_file(actions), changed);
        EXPECT_EQ(run("uninstall", "thunar").status, 0);
        EXPECT_EQ(everything(), before) << text;
    }
}

// GLib's parser, with which Thunar reads the file, gives quotes no meaning in a document type.
TEST_F(Entries, AnInnerSubsetOfTheDocumentTypeHidesNoTags) {
    const std::string type =
        "<!DOCTYPE actions [\n  <!-- the user's -->\n  <!ELEMENT actions (action)*>\n"
        "  <!ENTITY end \"<actions><action/></actions>\">\n]>\n";
    actions_file(type + "<actions>\n<action><command>sh -c 'a'</command></action>\n</actions>\n");
    const auto before = everything();
    EXPECT_EQ(run("install", "thunar").status, 0);
    const std::string changed = read_file(actions);
    EXPECT_EQ(changed.find(type + "<actions>\n<action><command>sh"), 0u) << changed;
    EXPECT_NE(changed.find("</command></action>\n<action>\n\t<icon>"), std::string::npos)
        << changed;
    EXPECT_EQ(run("uninstall", "thunar").status, 0);
    EXPECT_EQ(everything(), before);
}

TEST_F(Entries, OnlyAnActionsOwnIdentifierMakesItOurs) {
    const std::string id = "<unique-id>delvio-menu</unique-id>";
    actions_file("<actions>\n<action><!-- " + id + " --><name>a</name></action>\n<action><name>" +
                 id + "</name></action>\n</actions>\n");
    const auto before = everything();
    EXPECT_EQ(run("uninstall", "thunar").status, 0);
    EXPECT_EQ(everything(), before);
    EXPECT_EQ(run("install", "thunar").status, 0);
    EXPECT_EQ(count_of(read_file(actions), id), 3u);
    EXPECT_EQ(run("uninstall", "thunar").status, 0);
    EXPECT_EQ(everything(), before);
}

TEST_F(Entries, TheLinkToAUsersActionsStaysALink) {
    TempFolder elsewhere;
    const std::string target = elsewhere.file("uca.xml", users_actions);
    chmod(target.c_str(), 0600);
    fs::create_directories(config + "/Thunar");
    fs::create_symlink(target, actions);
    EXPECT_EQ(run("install", "thunar").status, 0);
    EXPECT_TRUE(fs::is_symlink(actions));
    EXPECT_NE(read_file(target).find("delvio-menu"), std::string::npos);
    EXPECT_EQ(run("uninstall", "thunar").status, 0);
    EXPECT_TRUE(fs::is_symlink(actions));
    EXPECT_EQ(read_file(target), users_actions);
    struct stat status;
    stat(target.c_str(), &status);
    EXPECT_EQ(status.st_mode & 07777, 0600u);
}

TEST_F(Entries, AfterThunarHasWrittenTheFileOnlyOurActionGoes) {
    run("install", "thunar");
    const std::string ours =
        "<action>\n\t<icon>folder</icon>\n\t<name>Delvio</name>\n\t<submenu></submenu>\n"
        "\t<unique-id>delvio-menu</unique-id>\n\t<command>/x/delvio menu -- %F</command>\n"
        "\t<patterns>*</patterns>\n\t<directories/>\n</action>\n";
    std::string rewritten = users_actions;
    rewritten.insert(rewritten.find("<action>\n"), ours);
    actions_file(rewritten);
    EXPECT_EQ(run("uninstall", "thunar").status, 0);
    EXPECT_EQ(read_file(actions), users_actions);
}

TEST_F(Entries, AFileThatDelvioMadeStaysOnceItHasAUsersAction) {
    run("install", "thunar");
    std::string text = read_file(actions);
    text.insert(text.rfind("</actions>"), "<action><name>mine</name></action>\n");
    actions_file(text);
    EXPECT_EQ(run("uninstall", "thunar").status, 0);
    const std::string rest = read_file(actions);
    EXPECT_NE(rest.find("mine"), std::string::npos) << rest;
    EXPECT_NE(rest.find("Open Terminal Here"), std::string::npos) << rest;
    EXPECT_EQ(rest.find("elvio"), std::string::npos) << rest;
}

TEST_F(Entries, AnActionForAnotherCommandIsReplacedWhereItStands) {
    actions_file(users_actions);
    run("install", "thunar");
    const std::string right = read_file(actions);
    std::string old = right;
    const size_t begin = old.find("<command>/"), end = old.find("/delvio menu", begin);
    actions_file(old.replace(begin + 9, end - begin - 9, "/old/place"));
    EXPECT_EQ(run("install", "thunar").status, 0);
    EXPECT_EQ(read_file(actions), right);
}

TEST_F(Entries, WhatIsNoFileOfActionsIsRefusedAndKept) {
    const std::string large = "<actions>" + std::string(2 << 20, ' ') + "</actions>";
    for (const std::string& text :
         {std::string("<actions><action></actions>"), std::string("<other/>"), std::string(),
          std::string("no xml at all"), std::string("<actions>\xff</actions>"), large,
          std::string("<actions></actions><actions></actions>"),
          std::string("<actions/>\n<!-- -->\n<other/>\n"),
          std::string("<!DOCTYPE actions [<!E\n<!DOCTYPE a (b)>]>\n<actions>act/actions>\n"),
          std::string("<actions><a\0\"/></actions>", 25)}) {
        actions_file(text);
        const auto before = everything();
        expect_refusal(run("install", "thunar"), actions);
        expect_refusal(run("uninstall", "thunar"), actions);
        EXPECT_EQ(everything(), before);
    }
}

TEST_F(Entries, FoldersPipesAndLinksThatLeadNowhereAreRefused) {
    fs::create_directories(actions);
    expect_refusal(run("install", "thunar"), actions);
    fs::remove(actions);
    mkfifo(actions.c_str(), 0600);
    expect_refusal(run("install", "thunar"), actions);
    fs::remove(actions);
    fs::create_symlink("/nowhere/at/all", actions);
    expect_refusal(run("install", "thunar"), actions);
    EXPECT_TRUE(fs::is_symlink(actions));
}

TEST_F(Entries, TheListShowsWhatIsFoundAndWhatIsIn) {
    TempFolder programs;
    chmod(programs.file("caja", "#!/bin/sh\n").c_str(), 0755);
    run("install", "nemo");
    actions_file("<broken");
    const Outcome outcome = run_delvio({"install", "--list"}, {{"PATH", programs.path()}});
    EXPECT_EQ(outcome.status, 0);
    const auto line_of = [&](const std::string& name) {
        const size_t begin = outcome.out.find("\n" + name + " ") + 1;
        return outcome.out.substr(begin, outcome.out.find('\n', begin) - begin);
    };
    EXPECT_EQ(outcome.out.find("caja         found      without Delvio\n"), 0u) << outcome.out;
    EXPECT_EQ(line_of("nemo"), "nemo         not found  with Delvio");
    EXPECT_EQ(line_of("pcmanfm-qt"), "pcmanfm-qt   not found  without Delvio");
    EXPECT_NE(line_of("thunar").find(actions), std::string::npos) << outcome.out;
}

TEST_F(Entries, ACommandWhosePathNoFileManagerCanReadMayStillBeTakenOut) {
    ASSERT_EQ(run("install", "nemo").status, 0);
    TempFolder place;
    const std::string there = place.folder("odd\xff\nfolder");
    fs::create_directories(there + "/bin");
    fs::create_directories(there + "/lib");
    fs::copy_file(DELVIO_CLIENT, there + "/bin/delvio");
    fs::copy(fs::path(DELVIO_LIBRARY).parent_path(), there + "/lib");
    const Changes odd = {{"LD_LIBRARY_PATH", there + "/lib"}};
    const auto before = everything();
    const Outcome refused = run_delvio({"install", "caja"}, odd);
    EXPECT_EQ(refused.status, 1);
    EXPECT_NE(refused.err.find("not UTF-8"), std::string::npos) << refused.err;
    EXPECT_EQ(everything(), before);
    const Outcome removed = run_delvio({"uninstall", "nemo"}, odd);
    EXPECT_EQ(removed.status, 0) << removed.err;
    EXPECT_NE(removed.out.find("no longer has Delvio"), std::string::npos) << removed.out;
    EXPECT_EQ(run_delvio({"install", "--list"}, odd).status, 0);
}

TEST_F(Entries, NamesThatNobodyKnowsAreMisuse) {
    for (const std::vector<std::string>& words : {std::vector<std::string>{"install", "emacs"},
                                                  {"install"},
                                                  {"uninstall"},
                                                  {"install", "--list", "nemo"}}) {
        EXPECT_EQ(run_delvio(words).status, 2);
    }
}
