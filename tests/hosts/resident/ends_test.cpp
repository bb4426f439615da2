// When the resident host ends, and what the next call finds then.
#include <signal.h>
#include <string.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

#include "hosts/bus_service.h"
#include "hosts/resident/scene.h"

namespace fs = std::filesystem;

namespace {

using test::Outcome;
using test::RunningCommand;
using test::Screen;

struct ResidentEnds : test::ResidentScene {
    bool wait_until_gone(pid_t process) const {
        return test::wait_for([&] {
            for (const pid_t each : hosts()) {
                if (each == process) return false;
            }
            return true;
        });
    }

    // How often each thread of the process has gone to sleep.
    static std::map<std::string, long> sleeps_of(pid_t process) {
        std::map<std::string, long> sleeps;
        for (const auto& thread :
             fs::directory_iterator("/proc/" + std::to_string(process) + "/task")) {
            std::ifstream status(thread.path() / "status");
            for (std::string word; status >> word;) {
                long count = 0;
                const bool is_count =
                    word == "voluntary_ctxt_switches:" || word == "nonvoluntary_ctxt_switches:";
                if (is_count && status >> count) sleeps[thread.path().filename()] += count;
            }
        }
        return sleeps;
    }

    // The kilobytes of files, libraries included, that are in the memory of the process.
    static long file_kilobytes(pid_t process) {
        std::ifstream status("/proc/" + std::to_string(process) + "/status");
        long kilobytes = 0;
        for (std::string word; status >> word;) {
            if (word == "RssFile:" && status >> kilobytes) return kilobytes;
        }
        return 0;
    }
};

TEST_F(ResidentEnds, AnIdleHostGivesBackWhatOnlyItsStartHasNeeded) {
    RunningCommand command = call_at(100, 100);
    ASSERT_TRUE(screen.wait_until_open());
    const pid_t process = host();
    const long started = file_kilobytes(process);
    ASSERT_GT(started, 0);
    input.key("Escape");
    EXPECT_EQ(command.finish().status, 0);
    EXPECT_TRUE(test::wait_for([&] { return file_kilobytes(process) < started / 2; }))
        << file_kilobytes(process) << " KB of files instead of " << started;
    EXPECT_TRUE(screen.wait_until_closed());
    EXPECT_EQ(show_and_close().status, 0);
    EXPECT_EQ(host(), process);
    EXPECT_GT(file_kilobytes(process), 0);
}

TEST_F(ResidentEnds, AnIdleHostDoesNotWakeUp) {
    const test::SessionBus bus;  // where it has a name
    show_and_close();
    const pid_t process = host();
    ASSERT_TRUE(test::wait_for([] {
        return system(
                   "dbus-send --session --print-reply --dest=org.freedesktop.DBus / "
                   "org.freedesktop.DBus.GetNameOwner string:org.delvio.Delvio >&2") == 0;
    }));
    // Work that the last menu has left behind ends first. The host gives it three seconds, so two
    // equal counts must lie further apart.
    std::map<std::string, long> before;
    ASSERT_TRUE(test::wait_for([&] {
        const auto last = before;
        before = sleeps_of(process);
        usleep(5000000);
        return before == last && sleeps_of(process) == last;
    }));
    // The toolkit has a timer of 30 seconds. GLib ends threads that have had no work for a while.
    for (int seconds = 0; seconds < 35; ++seconds) {
        usleep(1000000);
        for (const auto& [thread, sleeps] : sleeps_of(process)) EXPECT_EQ(sleeps, before[thread]);
    }
}

TEST_F(ResidentEnds, AnIdleHostEndsAfterItsTime) {
    show_and_close({{"DELVIO_IDLE_SECONDS", "1"}});
    EXPECT_TRUE(test::wait_for([this] { return hosts().empty(); }));
    EXPECT_NE(log().find("ends: idle"), std::string::npos);
    EXPECT_EQ(show_and_close({{"DELVIO_IDLE_SECONDS", "1"}}).status, 0);
}

TEST_F(ResidentEnds, AMenuThatIsOpenLongerThanThatTimeStaysOpen) {
    RunningCommand command = call_at(100, 100, {{"DELVIO_IDLE_SECONDS", "1"}});
    ASSERT_TRUE(screen.wait_until_open());
    usleep(2500000);
    EXPECT_GT(screen.open_menu().width, 0);
    input.key("Escape");
    EXPECT_EQ(command.finish().status, 0);
}

TEST_F(ResidentEnds, ACrashWithAMenuOpenIsToldAndTheNextCallHasANewHost) {
    RunningCommand command = call_at(100, 100);
    ASSERT_TRUE(screen.wait_until_open());
    const pid_t crashed = host();
    kill(crashed, SIGKILL);
    const Outcome outcome = command.finish();
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err.rfind("delvio: ", 0), 0u) << outcome.err;
    EXPECT_NE(outcome.err.find("ended unexpectedly"), std::string::npos) << outcome.err;
    EXPECT_TRUE(wait_until_gone(crashed));
    EXPECT_TRUE(screen.wait_until_closed());  // the server notices it a moment later
    EXPECT_EQ(show_and_close().status, 0);
    EXPECT_NE(host(), crashed);
}

TEST_F(ResidentEnds, AHostThatWasKilledWhileIdleIsReplacedUnnoticed) {
    show_and_close();
    const pid_t killed = host();
    kill(killed, SIGKILL);
    EXPECT_TRUE(wait_until_gone(killed));
    const Outcome outcome = show_and_close();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_NE(host(), killed);
}

TEST_F(ResidentEnds, ASignalEndsAnIdleHost) {
    show_and_close();
    kill(host(), SIGTERM);
    EXPECT_TRUE(test::wait_for([this] { return hosts().empty(); }));
    EXPECT_NE(log().find("ends: signal 15"), std::string::npos);
}

TEST_F(ResidentEnds, AHostLeavesTheSocketOfItsSuccessor) {
    show_and_close();
    const pid_t old = host();
    std::string socket = meeting_files(".log").at(0);
    socket.resize(socket.size() - strlen(".log"));
    ASSERT_TRUE(fs::remove(socket));
    show_and_close();
    ASSERT_EQ(hosts().size(), 2u);
    kill(old, SIGTERM);
    EXPECT_TRUE(wait_until_gone(old));
    EXPECT_TRUE(fs::exists(socket));
    const pid_t successor = host();
    EXPECT_EQ(show_and_close().status, 0);
    EXPECT_EQ(host(), successor);
}

TEST_F(ResidentEnds, ACallerThatIgnoresTheEndsOfItsChildrenUsesTheHost) {
    signal(SIGCHLD, SIG_IGN);
    RunningCommand command = call_at(100, 100);
    signal(SIGCHLD, SIG_DFL);
    ASSERT_TRUE(screen.wait_until_open());
    input.key("Escape");
    EXPECT_EQ(command.finish().status, 0);
    EXPECT_NE(log().find("the menu has closed"), std::string::npos);
    const pid_t process = host();
    EXPECT_EQ(show_and_close().status, 0);
    EXPECT_EQ(host(), process);
}

TEST_F(ResidentEnds, ASignalToTheHostClosesTheMenuFirst) {
    RunningCommand command = call_at(100, 100);
    ASSERT_TRUE(screen.wait_until_open());
    kill(host(), SIGTERM);
    EXPECT_EQ(command.finish().status, 128 + SIGTERM);
    EXPECT_TRUE(test::wait_for([this] { return hosts().empty(); }));
}

TEST_F(ResidentEnds, TheHostEndsWithItsDisplay) {
    test::OwnServer server;
    {
        const Screen own(server.name().c_str());
        RunningCommand command = call_at(100, 100, {{"DISPLAY", server.name()}});
        ASSERT_TRUE(own.wait_until_open());
        command.send_signal(SIGTERM);
        command.finish();
        EXPECT_EQ(hosts().size(), 1u);
    }
    server.end();
    EXPECT_TRUE(test::wait_for([this] { return hosts().empty(); }));
}

TEST_F(ResidentEnds, AHostWhoseDisplayHasChangedIsReplaced) {
    show_and_close();
    const pid_t old = host();
    ASSERT_EQ(system("echo 'Xft.dpi: 192' | xrdb -merge"), 0);
    const Outcome outcome = show_and_close();
    EXPECT_EQ(system("xrdb -remove"), 0);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_TRUE(wait_until_gone(old));
}

// A copy of the programs, as an installation has them.
struct ReplacedProgram : ResidentEnds {
    std::string client, program;

    void SetUp() override {
        fs::create_directories(folder.path("bin"));
        fs::create_directories(folder.path("libexec/delvio"));
        client = folder.path("bin/delvio");
        program = folder.path("libexec/delvio/delvio-host");
        fs::copy_file(DELVIO_CLIENT, client);
        fs::copy_file(DELVIO_HOST, program);
    }

    void replace() const {
        fs::copy_file(program, program + ".new");
        fs::rename(program + ".new", program);
    }

    Outcome show_by_copy() {
        RunningCommand command({"menu", "--at", "100,100", top}, with({{"TEST_PROGRAM", client}}));
        EXPECT_TRUE(screen.wait_until_open());
        input.key("Escape");
        const Outcome outcome = command.finish();
        EXPECT_TRUE(screen.wait_until_closed());
        return outcome;
    }
};

TEST_F(ReplacedProgram, GetsANewHostAndTheOldOneEnds) {
    EXPECT_EQ(show_by_copy().status, 0);
    const pid_t old = host();
    replace();
    const Outcome outcome = show_by_copy();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_TRUE(wait_until_gone(old));
    EXPECT_NE(host(), old);
}

TEST_F(ReplacedProgram, TakesTheScreenFromAMenuOfTheOldHost) {
    RunningCommand first({"menu", "--at", "100,100", top}, with({{"TEST_PROGRAM", client}}));
    ASSERT_TRUE(screen.wait_until_open());
    const pid_t old = host();
    replace();
    RunningCommand second({"menu", "--at", "600,300", top}, with({{"TEST_PROGRAM", client}}));
    EXPECT_EQ(first.finish().status, 0);
    EXPECT_TRUE(wait_until_gone(old));
    ASSERT_TRUE(test::wait_for([&] { return screen.open_menu().x > 400; }));
    EXPECT_EQ(hosts().size(), 1u);
    input.key("Escape");
    EXPECT_EQ(second.finish().status, 0);
}

}  // namespace
