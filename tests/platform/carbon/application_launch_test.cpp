#include <Carbon/LaunchServices.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

#include "support/heap.h"
#include "support/temp_folder.h"

namespace {

using Names = std::vector<std::string>;

// A program that records each of its starts in a separate file: its working folder, its open
// descriptors, its session, its arguments.
class ApplicationLaunch : public testing::Test {
  protected:
    void SetUp() override {
        folder.folder("starts");
        program = executable(
            "recorder",
            "#!/bin/sh\n"
            "out=$(mktemp '" +
                folder.path() +
                "/starts/.new.XXXXXX')\n"
                "{ pwd; ls /proc/$$/fd | tr '\\n' ' '; echo; cut -d' ' -f6 /proc/$$/stat; "
                "for a; do printf '%s\\036' \"$a\"; done; } >\"$out\"\n"
                "mv \"$out\" '" +
                folder.path() + "/starts/'${out##*.new.}\n");
    }
    std::string executable(const std::string& name, const std::string& text) {
        const std::string path = folder.file(name, text);
        chmod(path.c_str(), 0755);
        return path;
    }
    // A program that the user has made executable.
    std::string entry(const std::string& exec, const std::string& more = "") {
        return executable("app.desktop", "[Desktop Entry]\nType=Application\nName=App\nExec=" +
                                             exec + "\n" + more);
    }
    std::string bundle(const std::string& text) {
        executable("Tool.app/Tool", text);
        folder.file("Tool.app/Resources/Info-gnustep.plist", "{ NSExecutable = Tool; }\n");
        return folder.path("Tool.app");
    }
    static FSRef reference(const std::string& path) {
        FSRef ref = {};
        EXPECT_EQ(FSPathMakeRef(reinterpret_cast<const UInt8*>(path.c_str()), &ref, nullptr), noErr)
            << path;
        return ref;
    }
    static OSStatus open(const std::string& application, const Names& documents) {
        const FSRef app = reference(application);
        std::vector<FSRef> refs;
        for (const std::string& document : documents) refs.push_back(reference(document));
        const LSLaunchFSRefSpec spec = {
            &app,   static_cast<UInt32>(refs.size()), refs.data(), nullptr, kLSLaunchDefaults,
            nullptr};
        return LSOpenFromRefSpec(&spec, nullptr);
    }
    // The records of `count` starts, sorted; after ten seconds fewer.
    Names starts(size_t count) {
        Names found;
        const std::string list = "ls '" + folder.path() + "/starts' >'" + folder.path("list") + "'";
        for (int i = 0; i < 500 && found.size() < count; i++) {
            found.clear();
            if (i) usleep(20000);
            if (system(list.c_str()) != 0) return {"no list"};
            const std::string names = test::read_file(folder.path("list"));
            for (size_t at = 0, end; (end = names.find('\n', at)) != names.npos; at = end + 1) {
                found.push_back(
                    test::read_file(folder.path("starts/" + names.substr(at, end - at))));
            }
        }
        std::sort(found.begin(), found.end());
        return found;
    }
    static std::string line(const std::string& start, int number) {
        size_t at = 0;
        while (number--) at = start.find('\n', at) + 1;
        return start.substr(at, start.find('\n', at) - at);
    }
    static Names arguments(const std::string& start) {
        Names result;
        size_t at = 0;
        for (int i = 0; i < 3; i++) at = start.find('\n', at) + 1;
        for (size_t end; (end = start.find('\036', at)) != start.npos; at = end + 1) {
            result.push_back(start.substr(at, end - at));
        }
        return result;
    }
    Names only_arguments() {
        const Names found = starts(1);
        return found.size() == 1 ? arguments(found[0]) : Names{"not one start"};
    }
    test::TempFolder folder;
    std::string program;
};

}  // namespace

TEST_F(ApplicationLaunch, AnEntryThatTakesSeveralGetsAllDocumentsAtOnce) {
    const Names documents = {folder.file("one"), folder.file("two"), folder.folder("three")};
    for (const char* field : {" %F", " %U"}) {
        ASSERT_EQ(open(entry(program + " first" + field), documents), noErr);
    }
    const Names found = starts(2);
    ASSERT_EQ(found.size(), 2u);
    for (const std::string& start : found) {
        const Names all = arguments(start);
        ASSERT_EQ(all.size(), 4u);
        EXPECT_EQ(all[0], "first");
        EXPECT_TRUE(all[1].ends_with(documents[0]));
        EXPECT_TRUE(all[3].ends_with(documents[2]));
    }
}

TEST_F(ApplicationLaunch, AnEntryThatTakesOneIsStartedForEachDocument) {
    const Names documents = {folder.file("one"), folder.file("two")};
    ASSERT_EQ(open(entry(program + " %f"), documents), noErr);
    const Names found = starts(2);
    ASSERT_EQ(found.size(), 2u);
    Names opened = {arguments(found[0]).at(0), arguments(found[1]).at(0)};
    std::sort(opened.begin(), opened.end());
    EXPECT_EQ(opened, documents);
}

TEST_F(ApplicationLaunch, AnEntryWithoutAFieldStillGetsTheDocument) {
    const std::string document = folder.file("one");
    ASSERT_EQ(open(entry(program), {document}), noErr);
    EXPECT_EQ(only_arguments(), Names{document});
}

TEST_F(ApplicationLaunch, AnApplicationOpensWithoutDocuments) {
    ASSERT_EQ(open(entry(program + " alone %U"), {}), noErr);
    EXPECT_EQ(only_arguments(), Names{"alone"});
}

TEST_F(ApplicationLaunch, NamesArriveByteForByte) {
    const Names documents = {folder.file("caf\xe9"), folder.file("a b%20c"),
                             folder.file("new\nline"), folder.file("-dash $x 'q' \"d\"")};
    ASSERT_EQ(open(entry(program + " %F"), documents), noErr);
    EXPECT_EQ(only_arguments(), documents);
}

TEST_F(ApplicationLaunch, ProgramsRunFromTheHomeFolderInASessionOfTheirOwnWithoutOurFiles) {
    const int leaked = ::open("/dev/null", O_RDONLY);
    const int high = fcntl(leaked, F_DUPFD, 90);
    const std::string document = folder.file("one");
    ASSERT_EQ(open(entry(program + " %f"), {document}), noErr);
    ASSERT_EQ(open(bundle("#!/bin/sh\nexec '" + program + "' \"$@\"\n"), {document}), noErr);
    ASSERT_EQ(open(program, {document}), noErr);
    const Names found = starts(3);
    ASSERT_EQ(found.size(), 3u);
    for (const std::string& start : found) {
        EXPECT_EQ(line(start, 0), getenv("HOME"));
        EXPECT_EQ((" " + line(start, 1)).find(" 90 "), std::string::npos) << start;
        EXPECT_NE(line(start, 2), std::to_string(getsid(0)));
    }
    close(high);
    close(leaked);
}

TEST_F(ApplicationLaunch, AnEntryMayNameAFolderToRunIn) {
    const std::string own = folder.folder("own");
    ASSERT_EQ(open(entry(program, "Path=" + own + "\n"), {}), noErr);
    const Names found = starts(1);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(line(found[0], 0), own);
}

TEST_F(ApplicationLaunch, ProgramsThatEndLeaveNoChildBehind) {
    const std::string document = folder.file("one");
    ASSERT_EQ(open(entry(program + " %f"), {document}), noErr);
    ASSERT_EQ(open(program, {document}), noErr);
    ASSERT_EQ(starts(2).size(), 2u);
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
}

TEST_F(ApplicationLaunch, ABundleGetsADocumentByGNUstepsOptionAndSeveralAsArguments) {
    const std::string one = folder.file("one"), two = folder.file("two");
    const std::string tool = bundle("#!/bin/sh\nexec '" + program + "' \"$@\"\n");
    ASSERT_EQ(open(tool, {one}), noErr);
    EXPECT_EQ(only_arguments(), (Names{"-GSFilePath", one}));
    ASSERT_EQ(open(tool, {one, two}), noErr);
    const Names found = starts(2);
    ASSERT_EQ(found.size(), 2u);
    const bool first = arguments(found[0]) == Names{one, two};
    EXPECT_TRUE(first || (arguments(found[1]) == Names{one, two}));
}

TEST_F(ApplicationLaunch, AnExecutableGetsTheDocumentsAsArguments) {
    const Names documents = {folder.file("one"), folder.file("caf\xe9")};
    ASSERT_EQ(open(program, documents), noErr);
    EXPECT_EQ(only_arguments(), documents);
}

TEST_F(ApplicationLaunch, ALinkToAnApplicationIsTheApplication) {
    const std::string document = folder.file("one");
    ASSERT_EQ(open(folder.link("shortcut", entry(program + " linked %f")), {document}), noErr);
    EXPECT_EQ(only_arguments(), (Names{"linked", document}));
}

TEST_F(ApplicationLaunch, DocumentsThatAreGoneAreLeftOut) {
    const std::string kept = folder.file("kept"), gone = folder.file("gone");
    const FSRef app = reference(entry(program + " %F"));
    const FSRef refs[] = {reference(gone), reference(kept), FSRef{}};
    unlink(gone.c_str());
    LSLaunchFSRefSpec spec = {&app, 3, refs, nullptr, kLSLaunchDefaults, nullptr};
    FSRef launched = {};
    ASSERT_EQ(LSOpenFromRefSpec(&spec, &launched), noErr);
    EXPECT_EQ(only_arguments(), Names{kept});
    EXPECT_EQ(memcmp(&launched, &app, sizeof app), 0);
    spec.numDocs = 1;
    EXPECT_EQ(LSOpenFromRefSpec(&spec, &launched), fnfErr);
}

TEST_F(ApplicationLaunch, WhatIsNoApplicationIsRefused) {
    const std::string document = folder.file("one");
    EXPECT_EQ(open(document, {document}), kLSNotAnApplicationErr);
    EXPECT_EQ(open(folder.folder("plain"), {document}), kLSNotAnApplicationErr);
    EXPECT_EQ(open(folder.file("link.desktop", "[Desktop Entry]\nType=Link\nURL=file:///\n"), {}),
              kLSNotAnApplicationErr);
    EXPECT_EQ(open(folder.file("noise.desktop", std::string("\0\xff[[", 4)), {document}),
              kLSNotAnApplicationErr);
    const std::string fifo = folder.path("fifo.desktop");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_EQ(open(fifo, {document}), kLSNotAnApplicationErr);
}

TEST_F(ApplicationLaunch, AStrangersEntryIsNoApplication) {
    const std::string document = folder.file("one");
    const std::string strange = entry(program + " %f");
    chmod(strange.c_str(), 0644);
    EXPECT_EQ(open(strange, {document}), kLSNotAnApplicationErr);
    EXPECT_EQ(open(folder.link("link", strange), {document}), kLSNotAnApplicationErr);
    EXPECT_EQ(open(entry(program + " %f", "Hidden=true\n"), {document}), kLSNotAnApplicationErr);
    ASSERT_EQ(open(entry(program + " known %f", "NoDisplay=true\n"), {document}), noErr);
    EXPECT_EQ(only_arguments(), (Names{"known", document}));
}

TEST_F(ApplicationLaunch, ABrokenApplicationAnswersTheMacsCodes) {
    const std::string document = folder.file("one");
    EXPECT_EQ(open(entry("/no/such/program %f"), {document}), kLSNoExecutableErr);
    EXPECT_EQ(open(entry("'unclosed"), {document}), kLSNoExecutableErr);
    EXPECT_EQ(open(entry(program, "TryExec=/no/such/program\n"), {document}), kLSNoExecutableErr);
    EXPECT_EQ(open(folder.folder("Empty.app"), {document}), kLSNoExecutableErr);
    EXPECT_EQ(open(folder.link("dangling", "nowhere"), {document}), kLSApplicationNotFoundErr);
    const std::string gone = entry(program);
    const FSRef app = reference(gone);
    unlink(gone.c_str());
    const LSLaunchFSRefSpec spec = {&app, 0, nullptr, nullptr, kLSLaunchDefaults, nullptr};
    EXPECT_EQ(LSOpenFromRefSpec(&spec, nullptr), kLSApplicationNotFoundErr);
    EXPECT_TRUE(starts(0).empty());
}

// Asks as the plug-in does, with a reference that leads nowhere.
TEST_F(ApplicationLaunch, AnApplicationThatHasGoneLeavesNoMemoryBehind) {
    const std::string document = folder.file(std::string(200, 'n'));
    const auto open_often = [&](int times) {
        for (int i = 0; i < times; i++) {
            FSRef nowhere = {};
            FSRef opened = reference(document);
            const LSLaunchFSRefSpec spec = {&nowhere,          1,      &opened, nullptr,
                                            kLSLaunchDefaults, nullptr};
            EXPECT_EQ(LSOpenFromRefSpec(&spec, nullptr), kLSApplicationNotFoundErr);
        }
        return test::memory_in_use();
    };
    // Repeats until the table of references is full.
    const size_t before = open_often(5000);
    EXPECT_LT(open_often(1000), before + 1000);
}

TEST_F(ApplicationLaunch, AProgramThatTheSystemCannotRunIsReported) {
    EXPECT_EQ(open(executable("bad", "#!/no/such/interpreter\n"), {}), kLSNoExecutableErr);
}

TEST_F(ApplicationLaunch, ARequestForNothingIsAMistake) {
    const LSLaunchFSRefSpec nothing = {};
    const LSLaunchFSRefSpec no_array = {nullptr, 1, nullptr, nullptr, kLSLaunchDefaults, nullptr};
    EXPECT_EQ(LSOpenFromRefSpec(nullptr, nullptr), paramErr);
    EXPECT_EQ(LSOpenFromRefSpec(&nothing, nullptr), paramErr);
    EXPECT_EQ(LSOpenFromRefSpec(&no_array, nullptr), paramErr);
}

TEST_F(ApplicationLaunch, WithoutAnApplicationTheDefaultProgramIsSought) {
    const FSRef document = reference(folder.file("unknown.qqq", std::string("\0\1\2\3", 4)));
    const LSLaunchFSRefSpec spec = {nullptr, 1, &document, nullptr, kLSLaunchDefaults, nullptr};
    EXPECT_EQ(LSOpenFromRefSpec(&spec, nullptr), kLSApplicationNotFoundErr);
}
