// Menus that the resident host shows for its clients.
#include <signal.h>
#include <sys/wait.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "hosts/resident/scene.h"
#include "support/recording_program.h"

namespace {

using test::Changes;
using test::Outcome;
using test::RunningCommand;
using test::ShownArea;
using test::Words;

struct ResidentCalls : test::ResidentScene {
    // How often the host has said this in its log.
    int said(const std::string& text) const {
        std::istringstream lines(log());
        int count = 0;
        for (std::string line; std::getline(lines, line);) {
            count += line.find(text) != std::string::npos;
        }
        return count;
    }

    // Runs a command with and without the host: both must say the same.
    void expect_same_words(const Words& words) {
        const Outcome by_host = call(words).finish();
        const Outcome alone = call(words, {{"DELVIO_RESIDENT", "0"}}).finish();
        EXPECT_EQ(by_host.status, alone.status) << testing::PrintToString(words);
        EXPECT_EQ(by_host.out, alone.out);
        EXPECT_EQ(by_host.err, alone.err);
        EXPECT_NE(by_host.status, 0);
    }

    static bool has_ended(pid_t process) {
        siginfo_t ended = {};
        return waitid(P_PID, static_cast<id_t>(process), &ended, WEXITED | WNOHANG | WNOWAIT) ==
                   0 &&
               ended.si_pid == process;
    }

    int height_of_menu(const Words& words) {
        RunningCommand command = call(words);
        EXPECT_TRUE(screen.wait_until_open());
        const ShownArea menu = screen.open_menu();
        input.key("Escape");
        EXPECT_EQ(command.finish().status, 0);
        EXPECT_TRUE(screen.wait_until_closed());
        return menu.height;
    }
};

TEST_F(ResidentCalls, TheFirstCallStartsTheHostAndTheNextOnesUseIt) {
    const Outcome first = show_and_close();
    EXPECT_EQ(first.status, 0);
    EXPECT_EQ(first.out + first.err, "");
    const pid_t process = host();
    const Outcome second = show_and_close();
    EXPECT_EQ(second.status, 0);
    EXPECT_EQ(second.out + second.err, "");
    EXPECT_EQ(host(), process);
}

TEST_F(ResidentCalls, AClientLoadsNoToolkit) {
    RunningCommand command = call_at(100, 100);
    ASSERT_TRUE(screen.wait_until_open());
    const std::string maps =
        test::read_file("/proc/" + std::to_string(command.process()) + "/maps");
    EXPECT_NE(maps.find("/libc.so"), std::string::npos);
    for (const char* library : {"gnustep", "libobjc", "libX11", "libxcb", "glib"}) {
        EXPECT_EQ(maps.find(library), std::string::npos) << library;
    }
#if !__has_feature(address_sanitizer)  // whose library needs it
    EXPECT_EQ(maps.find("libstdc++"), std::string::npos);
#endif
    input.key("Escape");
    EXPECT_EQ(command.finish().status, 0);
}

TEST_F(ResidentCalls, NoResidentShowsTheMenuWithoutTheHost) {
    RunningCommand command = call({"menu", "--no-resident", "--at", "100,100", top});
    ASSERT_TRUE(screen.wait_until_open());
    EXPECT_TRUE(hosts().empty());
    input.key("Escape");
    EXPECT_EQ(command.finish().status, 0);
}

TEST_F(ResidentCalls, AMenuThatIsWrittenNeedsNoHost) {
    const Outcome outcome = call({"menu", "--print", top}).finish();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_NE(outcome.out.find("top"), std::string::npos);
    EXPECT_TRUE(hosts().empty());
}

TEST_F(ResidentCalls, TwoClientsAtOnceStartOneHost) {
    RunningCommand one = call_at(100, 100), other = call_at(500, 300);
    // Whichever is served second closes the other's menu, or comes before it was shown.
    ASSERT_TRUE(test::wait_for([this] {
        if (screen.open_menu().width > 0) input.key("Escape");
        return said("the menu has closed") + said("a call gave way") == 2;
    }));
    EXPECT_EQ(hosts().size(), 1u);
    EXPECT_EQ(one.finish().status, 0);
    EXPECT_EQ(other.finish().status, 0);
}

TEST_F(ResidentCalls, ASecondCallClosesTheOpenMenuAndShowsItsOwn) {
    RunningCommand first = call_at(100, 100);
    ASSERT_TRUE(screen.wait_until_open());
    RunningCommand second = call_at(600, 300);
    EXPECT_EQ(first.finish().status, 0);
    ASSERT_TRUE(test::wait_for([this] { return screen.open_menu().x > 400; }));
    input.key("Escape");
    EXPECT_EQ(second.finish().status, 0);
    EXPECT_EQ(hosts().size(), 1u);
}

TEST_F(ResidentCalls, ASignalToTheClientClosesItsMenu) {
    const std::pair<int, int> ends[] = {{SIGINT, 130}, {SIGTERM, 143}, {SIGHUP, 129}};
    for (const auto& [number, status] : ends) {
        RunningCommand command = call_at(100, 100);
        ASSERT_TRUE(screen.wait_until_open());
        command.send_signal(number);
        EXPECT_EQ(command.finish().status, status);
        EXPECT_TRUE(screen.wait_until_closed());
    }
    EXPECT_EQ(show_and_close().status, 0);
    EXPECT_EQ(hosts().size(), 1u);
}

TEST_F(ResidentCalls, TheDeathOfTheClientClosesItsMenu) {
    RunningCommand command = call_at(100, 100);
    ASSERT_TRUE(screen.wait_until_open());
    const pid_t process = host();
    command.send_signal(SIGKILL);
    EXPECT_TRUE(screen.wait_until_closed());
    EXPECT_EQ(show_and_close().status, 0);
    EXPECT_EQ(host(), process);
}

TEST_F(ResidentCalls, MistakesAreToldInTheSameWordsAsWithoutTheHost) {
    expect_same_words({"menu", folder.path("missing")});
    expect_same_words({"menu", "--at", "here", top});
    expect_same_words({"menu", "--modifiers", "knee", top});
    expect_same_words({"menu", "--setting", "no_such=1", top});
    expect_same_words({"menu", "--setting", "show_hidden_files=many", top});
    expect_same_words({"menu", "--at", top});
}

TEST_F(ResidentCalls, NamesAreThoseOfTheCallersFolder) {
    const std::string before = std::filesystem::current_path();
    for (const char* name : {"one", "other"}) {
        std::filesystem::current_path(folder.folder(name));
        folder.file(std::string(name) + "/only " + name);
        RunningCommand command = call({"menu", "--at", "100,100", std::string("only ") + name});
        std::filesystem::current_path(before);
        EXPECT_TRUE(screen.wait_until_open()) << name;
        input.key("Escape");
        const Outcome outcome = command.finish();
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        EXPECT_TRUE(screen.wait_until_closed());
    }
    std::filesystem::current_path(folder.path("one"));
    const Outcome missing = call({"menu", "only other"}).finish();
    std::filesystem::current_path(before);
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(hosts().size(), 1u);
}

TEST_F(ResidentCalls, ProgramsGetTheEnvironmentOfTheCallThatStartsThem) {
    const test::RecordingProgram program({"text/plain"});
    const std::string file = folder.file("picked.txt", "text\n");
    for (const std::string mark : {"MARK=one", "MARK=other"}) {
        const Changes changes = {{"MARK", mark.substr(5)}};
        RunningCommand command = call({"menu", "--at", "100,100", file}, changes);
        ASSERT_TRUE(screen.wait_until_open());
        input.key("Down");
        input.key("Return");
        EXPECT_EQ(command.finish().status, 0);
        ASSERT_TRUE(test::wait_for([&] { return program.environment().count(mark) == 1; })) << mark;
    }
    EXPECT_EQ(hosts().size(), 1u);
}

TEST_F(ResidentCalls, ASettingOfOneCallDoesNotReachTheNext) {
    const int usual = height_of_menu({"menu", "--at", "100,100", top});
    const int off = height_of_menu({"menu", "--at", "100,100", "--setting", "delvio_is_on=0", top});
    EXPECT_LT(off, usual);
    EXPECT_EQ(height_of_menu({"menu", "--at", "100,100", top}), usual);
    EXPECT_EQ(hosts().size(), 1u);
}

TEST_F(ResidentCalls, AChangedSettingCountsFromTheNextMenu) {
    const int usual = height_of_menu({"menu", "--at", "100,100", top});
    ASSERT_EQ(call({"settings", "set", "delvio_is_on", "0"}).finish().status, 0);
    const int off = height_of_menu({"menu", "--at", "100,100", top});
    EXPECT_EQ(call({"settings", "reset", "delvio_is_on"}).finish().status, 0);
    EXPECT_LT(off, usual);
    EXPECT_EQ(height_of_menu({"menu", "--at", "100,100", top}), usual);
    EXPECT_EQ(hosts().size(), 1u);
}

TEST_F(ResidentCalls, AProblemIsToldOnTheCallersStandardError) {
    const std::string bad = folder.file(std::string("bad\xff name"));
    RunningCommand command = call({"menu", "--at", "100,100", bad});
    ASSERT_TRUE(screen.wait_until_open());
    input.key("Escape");
    const Outcome outcome = command.finish();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_NE(outcome.err.find("is not UTF-8"), std::string::npos) << outcome.err;
    EXPECT_EQ(show_and_close().err, "");
}

TEST_F(ResidentCalls, AReaderThatDoesNotReadHoldsUpItsOwnClientOnly) {
    // The problems are more than the reader's pipe takes.
    constexpr int names = 1500;
    Words words = {"menu", "--at", "100,100"};
    for (int i = 0; i < names; ++i) {
        words.push_back(folder.file("bad\xff/" + std::to_string(i) + "\xff"));
    }
    RunningCommand unread = call(words);
    ASSERT_TRUE(screen.wait_until_open());
    input.key("Escape");
    EXPECT_TRUE(screen.wait_until_closed());
    EXPECT_TRUE(test::wait_for([&] { return said("the menu has closed with status 0") == 1; }));
    EXPECT_EQ(show_and_close().status, 0);
    EXPECT_EQ(hosts().size(), 1u);
    const Outcome outcome = unread.finish();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), names);
    EXPECT_TRUE(outcome.err.ends_with("none of Delvio's\n"));
}

TEST_F(ResidentCalls, ASignalEndsAClientWhoseReaderDoesNotRead) {
    Words words = {"menu", "--at", "100,100"};
    for (int i = 0; i < 1500; ++i) words.push_back(folder.file("\xff" + std::to_string(i)));
    RunningCommand unread = call(words);
    ASSERT_TRUE(screen.wait_until_open());
    unread.send_signal(SIGTERM);
    EXPECT_TRUE(test::wait_for([&] { return has_ended(unread.process()); }));
    EXPECT_EQ(unread.finish().status, 128 + SIGTERM);
    EXPECT_TRUE(screen.wait_until_closed());
    EXPECT_EQ(show_and_close().status, 0);
}

TEST_F(ResidentCalls, AMessageForAClosedStreamGoesNowhere) {
    const std::string closed = folder.path("closed");
    std::ofstream(closed) << "#!/bin/sh\nexec " DELVIO_CLIENT " \"$@\" <&- >&- 2>&-\n";
    std::filesystem::permissions(closed, std::filesystem::perms::owner_all);
    const std::string bad = folder.file(std::string("bad\xff name"));
    for (int i = 0; i < 2; ++i) {  // the first one starts the host
        RunningCommand command = call({"menu", "--at", "100,100", bad}, {{"TEST_PROGRAM", closed}});
        ASSERT_TRUE(screen.wait_until_open());
        input.key("Escape");
        EXPECT_EQ(command.finish().status, 0);
        EXPECT_TRUE(screen.wait_until_closed());
    }
    EXPECT_TRUE(test::wait_for([&] { return said("the menu has closed with status 0") == 2; }));
    EXPECT_EQ(said("the caller"), 0);
}

}  // namespace
