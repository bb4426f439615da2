// Each call of the resident host, and of the client before it, fails in turn over a whole popup and
// over a whole copy. The host is afterwards the same process, shows the next menu, and holds no
// more than before.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <sstream>

#include "faults/faulty_run.h"
#include "hosts/bus_service.h"
#include "hosts/resident/scene.h"
#include "support/managed_windows.h"
#include "support/recording_program.h"
#include "support/settled.h"
#include "support/temp_folder.h"
#include "support/waiting.h"

namespace fs = std::filesystem;

namespace faults {

namespace {

using Clock = std::chrono::steady_clock;

// Whose calls fail.
enum class Failing { host, client, start };  // a client that also starts the host

// In a full run of a sanitized host, which looks for leaks when it ends by itself, because it was
// idle.
bool looks_for_leaks() { return __has_feature(address_sanitizer) && is_full_run(); }

struct FaultsInHost : test::ResidentScene {
    FaultsInHost() {
        folder.folder("to");
        if (looks_for_leaks()) setenv("DELVIO_IDLE_SECONDS", "40", 1);
    }
    void TearDown() override {
        if (looks_for_leaks()) EXPECT_TRUE(test::wait_for([&] { return hosts().empty(); }));
        // The host writes there what its sanitizers say.
        EXPECT_EQ(log().find("ERROR: "), std::string::npos) << log();
    }

    // How a call has ended.
    struct Seen {
        test::Outcome outcome;
        bool was_open = false;
        std::string panels;  // the titles of those that told something
        double seconds = 0;
    };

    static bool has_ended(const test::RunningCommand& command) {
        siginfo_t info = {};
        const auto id = static_cast<id_t>(command.process());
        return waitid(P_PID, id, &info, WEXITED | WNOHANG | WNOWAIT) == 0 && info.si_pid != 0;
    }

    void close_panels(Seen* seen) {
        for (const test::ManagedWindow& window : windows.shown()) {
            if (seen->panels.find(window.title) == std::string::npos) {
                seen->panels += window.title + "\n";
            }
            windows.ask_to_close(window);
        }
    }

    // Shows a menu and types the keys, which wait in the server for the program. Then whatever is
    // open is closed.
    Seen show(const test::Words& words, const test::Words& keys) {
        Seen seen;
        test::Words all = {"menu", "--at", "100,100"};
        all.insert(all.end(), words.begin(), words.end());
        const auto begin = Clock::now();
        test::RunningCommand command =
            call(all, {{variable, control.path()}, {"LD_PRELOAD", FAILING_LIBRARY}});
        const bool ended = test::wait_for([&] {
            if (has_ended(command)) return true;
            close_panels(&seen);
            if (screen.open_menu().width == 0) return false;
            if (!seen.was_open) {
                for (const std::string& key : keys) input.key(key);
            } else {
                input.key("Escape");
            }
            seen.was_open = true;
            return false;
        });
        EXPECT_TRUE(ended) << "the client stays:\n" << log();
        if (ended) seen.outcome = command.finish();
        seen.seconds = std::chrono::duration<double>(Clock::now() - begin).count();
        EXPECT_TRUE(screen.wait_until_closed());
        return seen;
    }

    void expect_message(const Seen& seen) {
        const int status = seen.outcome.status;
        EXPECT_TRUE(status == 0 || status == 1 || status == 3) << status;
        if (status == 1) EXPECT_NE(seen.outcome.err + seen.panels, "");
        EXPECT_TRUE(seen.was_open || status != 0);
    }

    static long descriptors_of(pid_t process) {
        const fs::path files = "/proc/" + std::to_string(process) + "/fd";
        std::error_code error;
        const fs::directory_iterator all(files, error);
        return error ? -1 : std::distance(all, fs::directory_iterator());
    }

    // What the process has of its own, in KB; it includes no pages of files.
    static long memory_of(pid_t process) {
        std::istringstream words(test::read_file("/proc/" + std::to_string(process) + "/statm"));
        long size = 0, resident = 0, shared = 0;
        words >> size >> resident >> shared;
        return (resident - shared) * sysconf(_SC_PAGESIZE) / 1024;
    }

    pid_t only_host() const {
        const auto all = hosts();
        return all.size() == 1 ? all.front() : 0;
    }

    // A menu without faults; the host that has shown it.
    pid_t show_without_faults(const test::Words& words, const test::Words& keys) {
        control.arm(families, 0);
        const Seen seen = show(words, keys);
        EXPECT_EQ(seen.outcome.status, 0) << seen.outcome.err;
        EXPECT_TRUE(seen.was_open);
        EXPECT_EQ(seen.panels, "");
        EXPECT_TRUE(test::wait_for([&] { return only_host() != 0; }));
        return only_host();
    }

    // A host without its display ends. Any other one stays.
    bool may_end(Family family) const {
        return failing == Failing::start || (failing == Failing::host && family == display);
    }

    // A host that shows menus. While an old one is about to end, it is still there, but the client
    // shows the menu by itself; then the host makes no calls, and the next menu is waited for.
    pid_t showing_host() {
        pid_t host = 0;
        const bool shows = test::wait_for([&] {
            host = show_without_faults({top}, {"Escape"});
            control.arm(families, 0);
            control->only = host;
            show({top}, {"Escape"});
            return control->calls[display] > 0;
        });
        EXPECT_TRUE(shows) << log();
        return host;
    }

    void end_host() {
        for (const pid_t process : hosts()) kill(process, SIGKILL);
        EXPECT_TRUE(test::wait_for([&] { return hosts().empty(); }));
    }

    void arm(Family family, long number) {
        control.arm(family, number);
        control->only = failing == Failing::host ? host_ : first_process;
    }

    // Lets the call fail. If the host has ended since the last menu, its successor is tried.
    Seen fail(Family family, long number, const std::function<Seen()>& action) {
        constexpr int tries = 3;
        Seen seen;
        for (int i = 0; i < tries; i++) {
            arm(family, number);
            seen = action();
            if (control->failed > 0 || !may_end(family) || only_host() == host_) break;
            meet(showing_host());
        }
        return seen;
    }

    bool try_one(Family family, long number, const std::function<Seen()>& action,
                 const std::function<void(const Seen&)>& check) {
        const Seen seen = fail(family, number, action);
        const bool was_reached = control->failed > 0;
        control.arm(families, 0);
        if (!was_reached) return false;
        SCOPED_TRACE(std::string(family_names[family]) + " " + std::to_string(number) + ": " +
                     control->name + " of " + control->module + ": " + seen.outcome.err +
                     seen.panels);
        expect_message(seen);
        check(seen);
        const pid_t after =
            may_end(family) ? showing_host() : show_without_faults({top}, {"Escape"});
        if (!may_end(family)) EXPECT_EQ(after, host_) << "the host has ended:\n" << log();
        if (after == host_) EXPECT_FALSE(leaks(family, number, action));
        if (after != host_) meet(after);
        const auto again = [&](bool fails) {
            arm(fails ? family : families, number);
            return action().seconds;
        };
        if (family == bus) renew_host();
        EXPECT_FALSE(is_slow(seen.seconds, clean_seconds_, again)) << seen.seconds;
        return true;
    }

    // What is opened for the first time stays. What is left open each time is a leak.
    bool leaks(Family family, long number, const std::function<Seen()>& action) {
        if (descriptors_of(host_) <= descriptors_) return false;
        const long once = held();
        if (once <= descriptors_) return false;
        arm(family, number);
        action();
        EXPECT_EQ(show_without_faults({top}, {"Escape"}), host_);
        descriptors_ = held();
        return descriptors_ > once;
    }
    long held() const {
        return test::settled([&] { return descriptors_of(host_); }, 50);
    }

    // Without its bus a host goes on, and asks for another one after a while.
    void renew_host() {
        end_host();
        show_without_faults({top}, {"Escape"});
        meet(show_without_faults({top}, {"Escape"}));
    }

    void meet(pid_t host) {
        host_ = host;
        descriptors_ = held();
    }

    void fail_each(const char* what, const std::function<Seen()>& action,
                   const std::function<void(const Seen&)>& check) {
        for (int i = 0; i < 2; i++) {
            control.arm(families, 0);
            const Seen seen = action();
            EXPECT_EQ(seen.outcome.status, 0) << seen.outcome.err << seen.panels;
            check(seen);
        }
        meet(show_without_faults({top}, {"Escape"}));
        ASSERT_NE(host_, 0);
        arm(families, 0);
        const Seen clean = action();
        check(clean);
        clean_seconds_ = clean.seconds;
        const auto calls = calls_made(what, control);
        std::array<int, families> tried = {};
        const pid_t first = host_;
        const long before = memory_of(first);
        for (const Family family : tried_families) {
            tried[family] = fail_in_turn(calls[family], sample, [&](long number) {
                return (is_full_run() || !HasFailure()) && try_one(family, number, action, check);
            });
        }
        tell_tried(what, tried);
        if (host_ == first) printf("the host has %ld KB more\n", memory_of(first) - before);
    }

    Seen popup() { return show({top}, {"Down", "Right", "Escape"}); }

    Seen copy() {
        fs::remove_all(folder.path("to/a.txt"));
        return show({"--modifiers", "option", "--setting", "logLevel=1", folder.path("to"),
                     folder.path("top/a.txt")},
                    {"Down", "Right", "Return"});
    }
    // A refused copy has left nothing, not even a part, and the user is told. A reduced menu may
    // lack the folder's row; then nothing was picked, and there is nothing to say.
    void check_copy(const Seen& seen) {
        EXPECT_EQ(test::read_file(folder.path("top/a.txt")), "text");
        const std::string path = folder.path("to/a.txt"), there = test::read_file(path);
        EXPECT_TRUE(there == "text" || !fs::exists(path)) << there;
        const bool was_picked = seen.outcome.out.find("Will move [0]") != std::string::npos;
        if (was_picked && there != "text") EXPECT_NE(seen.outcome.err + seen.panels, "");
    }

    // Undoes the last operation, by the item of that name.
    Seen undo() { return show({top}, {"u", "n", "d", "o", "Return"}); }

    std::vector<Family> tried_families = families_to_try();
    int sample = 1;
    const test::SessionBus session_bus;
    test::WindowManager manager;
    test::ManagedWindows windows;
    SharedControl control;
    Failing failing = Failing::host;
    pid_t host_ = 0;
    long descriptors_ = 0;
    double clean_seconds_ = 0;
};

TEST_F(FaultsInHost, AMenuOfTheHostIsThereOrAMessage) {
    fail_each(
        "menus of the host", [&] { return popup(); }, [](const Seen&) {});
}

TEST_F(FaultsInHost, ACopyOfTheHostIsMadeOrRefused) {
    fail_each(
        "copies of the host", [&] { return copy(); }, [&](const Seen& seen) { check_copy(seen); });
}

TEST_F(FaultsInHost, ACopyIsMadeThoughACallGetsNoMemory) {
    tried_families = families_to_try({memory, objects});
    sample = 4;
    fail_each(
        "copies with a reserve of memory", [&] { return copy(); },
        [&](const Seen&) { EXPECT_EQ(test::read_file(folder.path("to/a.txt")), "text"); });
}

TEST_F(FaultsInHost, AnUndoWithoutAThreadIsMadeOrRefused) {
    const std::string made = folder.path("to/a.txt");
    bool was_reached = true;
    int refused = 0;
    for (long number = 1; was_reached && number < 60; number++) {
        control.arm(families, 0);
        copy();
        ASSERT_EQ(test::read_file(made), "text");
        meet(show_without_faults({top}, {"Escape"}));
        arm(threads, number);
        const Seen seen = undo();
        was_reached = control->failed > 0;
        SCOPED_TRACE("thread " + std::to_string(number) + " of " + control->module + ": " +
                     seen.outcome.err + seen.panels);
        EXPECT_TRUE(!fs::exists(made) || seen.outcome.err + seen.panels != "");
        refused += fs::exists(made);
        EXPECT_EQ(only_host(), host_) << "the host has ended:\n" << log();
    }
    EXPECT_EQ(refused, 1);  // by the undo's own thread
}

TEST_F(FaultsInHost, AFileThatIsPickedIsOpenedOrAMessage) {
    test::RecordingProgram program({"text/plain"});
    const auto open_file = [&] {
        program.forget();
        return show({"--setting", "logLevel=1", folder.path("top/a.txt")}, {"a", "Return"});
    };
    fail_each("files opened by the host", open_file, [&](const Seen& seen) {
        // A reduced menu may lack the file's row, and no other one begins with its letter.
        const bool has_row = seen.outcome.out.find("Add item 'a.txt'") != std::string::npos;
        const bool was_told = seen.outcome.err + seen.panels != "";
        if (has_row && !was_told) EXPECT_FALSE(program.wait().empty());
    });
}

TEST_F(FaultsInHost, AMenuOfAClientThatStartsTheHostIsThereOrAMessage) {
    failing = Failing::start;
    const auto first_popup = [&] {
        end_host();
        return popup();
    };
    fail_each("first menus of a session", first_popup, [](const Seen&) {});
}

TEST_F(FaultsInHost, AMenuOfTheClientIsThereOrAMessage) {
    failing = Failing::client;
    fail_each(
        "calls of the client", [&] { return popup(); }, [](const Seen&) {});
}

}  // namespace

}  // namespace faults
