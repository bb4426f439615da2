#include <AppKit/AppKit.h>
#include <Carbon/Carbon.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "support/app.h"
#include "support/announced_window.h"
#include "support/moment.h"
#include "support/temp_folder.h"

extern char** environ;

namespace {

using Words = std::vector<std::string>;

// Ten seconds at most.
template <typename Condition>
bool wait_until(Condition condition) {
    for (int i = 0; i < 500; i++) {
        @autoreleasepool {
            if (condition()) return true;
        }
        usleep(20000);
    }
    return false;
}

// Another program; it ends with the test.
class Child {
  public:
    Child(const std::string& program, const Words& words, const Words& variables = {}) {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0) return;
        input_ = ends[1];
        std::vector<char*> arguments = {const_cast<char*>(program.c_str())};
        for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
        arguments.push_back(nullptr);
        std::vector<char*> environment;
        for (const std::string& one : variables) {
            environment.push_back(const_cast<char*>(one.c_str()));
        }
        for (char** one = environ; *one; one++) environment.push_back(*one);
        environment.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, ends[0], 0);
        posix_spawnp(&process, program.c_str(), &actions, nullptr, arguments.data(),
                     environment.data());
        posix_spawn_file_actions_destroy(&actions);
        close(ends[0]);
    }
    ~Child() { end(); }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    // The next client gets the same window numbers as this one. A slow window manager would mistake
    // the news of one client for the other's, so the test waits for its list.
    void end() {
        if (process > 0) {
            kill(process, SIGKILL);
            waitpid(process, nullptr, 0);
            wait_until([] { return test::listed_windows_are_there(); });
        }
        process = 0;
        close(input_);
        input_ = -1;
    }
    pid_t process = 0;

  private:
    int input_ = -1;
};

NSRunningApplication* now_running(pid_t process) {
    for (NSRunningApplication* one in [[NSWorkspace sharedWorkspace] runningApplications]) {
        if ([one processIdentifier] == process) return one;
    }
    return nil;
}

NSRunningApplication* running(const Child& child) {
    wait_until([&] { return now_running(child.process) != nil; });
    return now_running(child.process);
}

std::string text(NSString* string) { return string ? [string UTF8String] : "none"; }
std::string path(NSURL* url) { return text([url path]); }

// Null when the program has not started: it creates a file when it is ready for windows.
Child* start_manager() {
    const test::TempFolder folder;
    const std::string ready = folder.path("ready");
    auto* manager = new Child("openbox", {"--startup", "touch " + ready});
    if (wait_until([&] { return access(ready.c_str(), F_OK) == 0; })) {
        return manager;
    }
    delete manager;
    return nullptr;
}

// The programs other than the test's own, which may also have windows.
NSUInteger other_programs() {
    NSArray* all = [[NSWorkspace sharedWorkspace] runningApplications];
    return [all count] - (now_running(getpid()) ? 1 : 0);
}

// These tests run with and without a window manager.
class RunningApplications : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        test::start_application();
        mkdir(applications().c_str(), 0755);
        if (WINDOW_MANAGER) manager = start_manager();
    }
    static void TearDownTestSuite() { delete manager; }
    void SetUp() override {
        pool = [NSAutoreleasePool new];
        ASSERT_EQ(manager != nullptr, WINDOW_MANAGER != 0);
    }
    void TearDown() override {
        (void)!system(("rm -f '" + applications() + "'/*").c_str());
        test::let_a_moment_pass();
        [pool release];
    }
    static std::string applications() {
        return std::string(getenv("XDG_DATA_HOME")) + "/applications";
    }

    static std::string install(const std::string& id, const std::string& lines) {
        const std::string path = applications() + "/" + id + ".desktop";
        std::ofstream(path) << "[Desktop Entry]\nType=Application\n" << lines;
        test::let_a_moment_pass();
        return path;
    }
    // The client under another name, as another program.
    std::string client_named(const std::string& name) {
        const std::string program = folder.file(name, test::read_file(WINDOW_CLIENT));
        chmod(program.c_str(), 0755);
        return program;
    }
    NSAutoreleasePool* pool;
    test::TempFolder folder;
    inline static Child* manager = nullptr;
};

// The application as the menus see it.
bool is_application(const std::string& path) {
    FSRef ref;
    LSItemInfoRecord info = {};
    return FSPathMakeRef(reinterpret_cast<const UInt8*>(path.c_str()), &ref, nullptr) == noErr &&
           LSCopyItemInfoForRef(&ref, kLSRequestTypeCreator, &info) == noErr &&
           info.filetype == OSType{0x4150504C};  // 'APPL'
}

const Words plain = {"window", "class=plain,Plain", "show"};

}  // namespace

TEST_F(RunningApplications, AProgramWithWindowsIsOneRegularApplication) {
    const std::string program = client_named("plain-program");
    const Child child(
        program, {"window", "class=plain,Plain", "show", "window", "class=plain,Plain", "show"});
    NSRunningApplication* application = running(child);
    ASSERT_NE(application, nil);
    EXPECT_EQ([application activationPolicy], NSApplicationActivationPolicyRegular);
    EXPECT_EQ(text([application localizedName]), "plain-program");
    EXPECT_EQ(path([application executableURL]), program);
    EXPECT_EQ([application bundleURL], nil);
    EXPECT_EQ([application bundleIdentifier], nil);
    int count = 0;
    for (NSRunningApplication* one in [[NSWorkspace sharedWorkspace] runningApplications]) {
        count += [one processIdentifier] == child.process;
    }
    EXPECT_EQ(count, 1);
}

TEST_F(RunningApplications, AProgramWithoutABundleIsAnApplicationWhileItRuns) {
    const std::string program = client_named("bare-program");
    EXPECT_FALSE(is_application(program));
    {
        const Child child(program, plain);
        ASSERT_NE(running(child), nil);
        EXPECT_TRUE(is_application(program));
        EXPECT_TRUE(is_application(folder.link("link", program)));
        EXPECT_FALSE(is_application(folder.file("other-program", "x")));
    }
    EXPECT_TRUE(wait_until([] { return other_programs() == 0; }));
    EXPECT_FALSE(is_application(program));
}

TEST_F(RunningApplications, WhatRunsManyProgramsIsNoneItself) {
    const std::string python = client_named("python3.99");
    const Child child(python, plain);
    ASSERT_NE(running(child), nil);
    EXPECT_FALSE(is_application(python));
}

TEST_F(RunningApplications, AnEntryThatIsNotShownCountsWhileItsProgramRuns) {
    const std::string entry = install("quiet", "Name=Quiet\nExec=quiet-program\nNoDisplay=true\n");
    EXPECT_FALSE(is_application(entry));
    const Child child(client_named("quiet-program"), plain);
    ASSERT_NE(running(child), nil);
    EXPECT_TRUE(is_application(entry));
}

TEST_F(RunningApplications, PanelsDialogsAndHiddenHelpersAreAccessories) {
    for (const Words& words : {Words{"window", "class=p,P", "type=DOCK", "show"},
                               Words{"window", "class=p,P", "type=DIALOG", "show"},
                               Words{"window", "class=p,P", "state=SKIP_TASKBAR", "show"}}) {
        const Child child(WINDOW_CLIENT, words);
        NSRunningApplication* application = running(child);
        ASSERT_NE(application, nil) << words[2];
        EXPECT_EQ([application activationPolicy], NSApplicationActivationPolicyAccessory)
            << words[2];
    }
}

TEST_F(RunningApplications, AnApplicationsDialogDoesNotHideItsWindow) {
    const Child child(WINDOW_CLIENT,
                      {"window", "class=p,P", "show", "window", "class=p,P", "transient", "show",
                       "window", "type=DOCK", "class=p,P", "show"});
    ASSERT_NE(running(child), nil);
    EXPECT_EQ([running(child) activationPolicy], NSApplicationActivationPolicyRegular);
}

TEST_F(RunningApplications, AProgramThatCannotBeGivenAFileIsNoRegularOne) {
    const test::TempFolder folder;
    const std::string runner = folder.path("python3");
    std::filesystem::copy_file(WINDOW_CLIENT, runner);
    const Child child(runner, {"window", "class=odd,Odd", "show"});
    ASSERT_NE(running(child), nil);
    EXPECT_EQ([running(child) activationPolicy], NSApplicationActivationPolicyAccessory);
}

TEST_F(RunningApplications, WindowsThatAreNotShownAreNotListed) {
    const Child hidden(WINDOW_CLIENT, {"window", "class=plain,Plain"});
    const Child shown(WINDOW_CLIENT, plain);
    ASSERT_NE(running(shown), nil);
    EXPECT_EQ(now_running(hidden.process), nil);
}

TEST_F(RunningApplications, AWindowFromAnotherMachineIsNoProcessHere) {
    const Child far(WINDOW_CLIENT,
                    {"window", "class=far,Far", "machine=elsewhere", "pid=1", "show"});
    const Child near(WINDOW_CLIENT, plain);
    ASSERT_NE(running(near), nil);
    EXPECT_EQ(now_running(far.process), nil);
    EXPECT_EQ(now_running(1), nil);
}

TEST_F(RunningApplications, AWindowClassLeadsToTheEntry) {
    install("aaa-wrong", "Name=Wrong\nExec=wrong\n");
    const std::string entry = install(
        "org.example.Drawing", "Name=Drawing\nExec=drawing %F\nStartupWMClass=DrawingWindow\n");
    const Child child(WINDOW_CLIENT, {"window", "class=d,DrawingWindow", "show"});
    NSRunningApplication* application = running(child);
    ASSERT_NE(application, nil);
    EXPECT_EQ(text([application localizedName]), "Drawing");
    EXPECT_EQ(path([application bundleURL]), entry);
    EXPECT_EQ(text([application bundleIdentifier]), "org.example.Drawing");
    EXPECT_EQ(path([application executableURL]), WINDOW_CLIENT);
}

TEST_F(RunningApplications, AWindowClassThatIsTheIdentifierLeadsToTheEntry) {
    const std::string entry = install("org.example.Notes", "Name=Notes\nExec=sh -c notes\n");
    const Child whole(WINDOW_CLIENT, {"window", "class=x,org.example.notes", "show"});
    const Child last(WINDOW_CLIENT, {"window", "class=notes,X", "show"});
    ASSERT_NE(running(whole), nil);
    ASSERT_NE(running(last), nil);
    EXPECT_EQ(path([running(whole) bundleURL]), entry);
    EXPECT_EQ(path([running(last) bundleURL]), entry);
}

TEST_F(RunningApplications, AProgramLeadsToTheEntryThatRunsIt) {
    const std::string entry = install("painter", "Name=Painter\nExec=env A=1 paint-program %F\n");
    const Child child(client_named("paint-program"), plain);
    ASSERT_NE(running(child), nil);
    EXPECT_EQ(path([running(child) bundleURL]), entry);
}

TEST_F(RunningApplications, AHintLeadsToTheEntryWhereNothingElseDoes) {
    const std::string entry = install("hinted", "Name=Hinted\nExec=sh -c hinted\n");
    const Child child(WINDOW_CLIENT, plain, {"BAMF_DESKTOP_FILE_HINT=" + entry});
    ASSERT_NE(running(child), nil);
    EXPECT_EQ(path([running(child) bundleURL]), entry);
}

TEST_F(RunningApplications, TheLaunchersNoteCountsForTheProcessThatItNames) {
    const std::string entry = install("launched", "Name=Launched\nExec=sh -c launched\n");
    // A shell knows the process number of the program that replaces it.
    const std::string start =
        "GIO_LAUNCHED_DESKTOP_FILE_PID=$$; export "
        "GIO_LAUNCHED_DESKTOP_FILE_PID; exec " WINDOW_CLIENT " window class=plain,Plain show";
    const Child child("sh", {"-c", start}, {"GIO_LAUNCHED_DESKTOP_FILE=" + entry});
    const Child inheritor(WINDOW_CLIENT, plain,
                          {"GIO_LAUNCHED_DESKTOP_FILE=" + entry,
                           "GIO_LAUNCHED_DESKTOP_FILE_PID=" + std::to_string(getpid())});
    ASSERT_NE(running(child), nil);
    EXPECT_EQ(path([running(child) bundleURL]), entry);
    ASSERT_NE(running(inheritor), nil);
    EXPECT_EQ([running(inheritor) bundleURL], nil);
}

TEST_F(RunningApplications, AGNUstepProgramIsItsBundle) {
    const std::string program = client_named("Mail.app/Mail");
    folder.file("Mail.app/Resources/Info-gnustep.plist",
                "{ NSExecutable = Mail; ApplicationName = \"Post Office\"; CFBundleIdentifier = "
                "\"org.example.mail\"; }\n");
    const Child child(program, plain);
    NSRunningApplication* application = running(child);
    ASSERT_NE(application, nil);
    EXPECT_EQ(path([application bundleURL]), folder.path("Mail.app"));
    EXPECT_EQ(text([application localizedName]), "Post Office");
    EXPECT_EQ(text([application bundleIdentifier]), "org.example.mail");
}

TEST_F(RunningApplications, AProgramThatDoesNotTellItsProcessIsKnownByTheServer) {
    const Child child("xmessage", {"hello"});
    NSRunningApplication* application = running(child);
    ASSERT_NE(application, nil);
    EXPECT_EQ(path([application executableURL]), "/usr/bin/xmessage");
}

TEST_F(RunningApplications, TheActiveWindowsProgramIsInFront) {
    const Child other(WINDOW_CLIENT, plain);
    ASSERT_NE(running(other), nil);
    Words words = plain;
    words.push_back("focus");
    const Child child(WINDOW_CLIENT, words);
    NSWorkspace* workspace = [NSWorkspace sharedWorkspace];
    EXPECT_TRUE(wait_until(
        [&] { return [[workspace frontmostApplication] processIdentifier] == child.process; }));
    EXPECT_TRUE([running(child) isActive]);
    EXPECT_FALSE([running(other) isActive]);
    EXPECT_TRUE([[workspace frontmostApplication] isEqual:running(child)]);
}

TEST_F(RunningApplications, NamesCanBeSorted) {
    const Child second(client_named("b-program"), plain), first(client_named("a-program"), plain);
    ASSERT_NE(running(first), nil);
    ASSERT_NE(running(second), nil);
    NSSortDescriptor* order = [[[NSSortDescriptor alloc] initWithKey:@"localizedName"
                                                           ascending:YES] autorelease];
    NSArray* sorted = [[[NSWorkspace sharedWorkspace] runningApplications]
        sortedArrayUsingDescriptors:@[ order ]];
    EXPECT_LT([sorted indexOfObject:running(first)], [sorted indexOfObject:running(second)]);
    EXPECT_LT([sorted indexOfObject:running(second)], [sorted count]);
}

TEST_F(RunningApplications, WindowsThatVanishMeanwhileAreLeftOut) {
    std::vector<Child*> children;
    for (int i = 0; i < 12; i++) children.push_back(new Child(WINDOW_CLIENT, plain));
    ASSERT_NE(running(*children.back()), nil);
    for (Child* child : children) {
        kill(child->process, SIGKILL);
        EXPECT_NE([[NSWorkspace sharedWorkspace] runningApplications], nil);
    }
    for (Child* child : children) delete child;
    EXPECT_TRUE(wait_until([] { return other_programs() == 0; }));
}

TEST_F(RunningApplications, FiftyWindowsAreAllListed) {
    Words words;
    for (int i = 0; i < 50; i++) words.insert(words.end(), plain.begin(), plain.end());
    const Child one(WINDOW_CLIENT, words);
    ASSERT_NE(running(one), nil);
    EXPECT_EQ(other_programs(), 1u);
}

TEST(AfterTheWindowManager, ItsListIsNotBelievedWhenItHasGone) {
    test::start_application();
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    Child* manager = start_manager();
    ASSERT_NE(manager, nullptr);
    delete manager;
    const Child child(WINDOW_CLIENT, plain);
    EXPECT_NE(running(child), nil);
    [pool release];
}
