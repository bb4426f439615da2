// Random walks through the menus of the resident host, which is afterwards as it was.
#include <signal.h>
#include <sys/wait.h>

#include <algorithm>
#include <filesystem>

#include "hosts/resident/scene.h"
#include "soak/walker.h"
#include "support/managed_windows.h"
#include "support/recording_program.h"

namespace fs = std::filesystem;

namespace {

struct HostWalks : test::ResidentScene {
    test::WindowManager manager;
    test::ManagedWindows windows;
    test::RecordingProgram program{{"text/plain", "application/x-zerosize", "inode/directory"}};
    const unsigned long seed = soak::seed();
    soak::Walker walker{seed, input};

    void set_out_files() {
        folder.file("top/a.txt", "text");
        folder.file("top/inner/b.txt", "text");
        folder.file("top/inner/deeper/c.txt", "text");
        fs::remove_all(std::string(getenv("XDG_DATA_HOME")) + "/Trash");
        program.forget();
    }

    // A sanitized host looks for leaks when it ends by itself, because it was idle. The walks
    // follow one another faster.
    static bool looks_for_leaks() { return getenv("DELVIO_SOAK_LEAKS") != nullptr; }

    void change_a_setting() {
        static const std::vector<test::Words> changes = {{"set", "hideMoveCopyAlias", "1"},
                                                         {"set", "show_package_contents", "1"},
                                                         {"set", "finderInSeparateSubmenu", "1"},
                                                         {"set", "hoverPreviews", "1"},
                                                         {"reset", "--all"},
                                                         {"reset", "--all"}};
        test::Words words = {"settings"};
        const auto& change = changes[static_cast<size_t>(walker.any(6))];
        words.insert(words.end(), change.begin(), change.end());
        walker.tell("setting " + change.back());
        test::run_delvio(words, with());
    }

    static bool has_ended(const test::RunningCommand& command) {
        siginfo_t info = {};
        const auto id = static_cast<id_t>(command.process());
        return waitid(P_PID, id, &info, WEXITED | WNOHANG | WNOWAIT) == 0 && info.si_pid != 0;
    }

    soak::Spot spot() const {
        const test::ShownArea menu = screen.open_menu();
        return {menu.x, menu.y, menu.width, menu.height};
    }

    // Panels and the settings window, by the title bar's button or as a task bar does.
    void close_windows() {
        for (const test::ManagedWindow& window : windows.shown()) {
            walker.tell("closes " + window.title);
            if (walker.one_in(2)) {
                windows.ask_to_close(window);
            } else {
                const test::ScreenPoint button = windows.close_button(window);
                input.move(button.x, button.y);
                input.click(1);
            }
        }
    }

    test::Outcome finish(test::RunningCommand& command) {
        const bool ended = test::wait_for([&] {
            if (has_ended(command)) return true;
            close_windows();
            if (spot().width > 0) input.key("Escape");
            return false;
        });
        EXPECT_TRUE(ended) << "the client stays";
        return ended ? command.finish() : test::Outcome();
    }

    test::Words call_words() {
        test::Words words = {
            "menu", "--at",
            std::to_string(walker.any(1200)) + "," + std::to_string(walker.any(700))};
        if (walker.one_in(5)) words.insert(words.end(), {"--modifiers", "option"});
        words.push_back(walker.one_in(3) ? top + "/a.txt" : top);
        if (walker.one_in(4)) words.push_back(top + "/inner");
        return words;
    }

    void walk() {
        walker.begin();
        set_out_files();
        if (walker.one_in(40)) change_a_setting();
        test::RunningCommand command = call(call_words());
        EXPECT_TRUE(test::wait_for([&] { return spot().width > 0 || has_ended(command); }));
        for (int steps = walker.any(8); steps > 0 && !has_ended(command); steps--) {
            walker.step(spot());
            if (walker.one_in(6)) walker.change_files(folder, "top");
        }
        const bool is_stopped = walker.one_in(15);
        if (is_stopped) {
            walker.tell("signal");
            command.send_signal(SIGTERM);
        } else {
            walker.end(spot());
        }
        input.let_go();
        const test::Outcome outcome = finish(command);
        const int status = outcome.status;
        EXPECT_TRUE(status == 0 || status == 1 || status == 3 || status == 128 + SIGTERM)
            << status << ": " << outcome.err;
        if (status == 1) EXPECT_NE(outcome.err, "");
        EXPECT_TRUE(screen.wait_until_closed());
        EXPECT_TRUE(test::wait_for([&] {
            close_windows();
            return is_alone() && windows.shown().empty();
        }));
    }

    // A settings window may only be starting: first its program looks like the host.
    bool is_alone() const { return hosts().size() <= 1 && programs("settings").empty(); }

    // Of the host and its clients; the test's own are left out.
    std::vector<std::string> temporary_files() const {
        std::vector<std::string> found;
        for (const char* place : {"TMPDIR", "XDG_RUNTIME_DIR"}) {
            for (const std::string& file : soak::files_below(getenv(place))) {
                if (file.starts_with(folder.path() + "/")) continue;
                // A drag starts the toolkit's server for pasteboards, which stays.
                if (file.find("/GNUstepSecure") == file.npos) found.push_back(file);
            }
        }
        return found;
    }

    std::string new_files(const std::vector<std::string>& before) const {
        std::string text;
        for (const std::string& file : temporary_files()) {
            if (std::ranges::find(before, file) == before.end()) text += file + "\n";
        }
        return text;
    }
};

TEST_F(HostWalks, LeaveTheHostAsItWas) {
    if (looks_for_leaks()) setenv("DELVIO_IDLE_SECONDS", "40", 1);
    const int all = soak::walks(150), first = std::max(10, all / 5);
    pid_t process = 0;
    soak::Held held, now;
    std::vector<std::string> files;
    for (int number = 1; number <= all + first; number++) {
        walk();
        ASSERT_FALSE(HasFailure()) << "walk " << number << ": " << walker.story() << log();
        if (number == first) {
            process = host();
            files = temporary_files();
        }
        if (number < first) continue;
        ASSERT_EQ(host(), process) << "walk " << number << ": " << walker.story() << log();
        if (number % first != 0 && number != all + first) continue;
        soak::tell_held(number, now = soak::settled(process));
        if (number == first) held = now;
    }
    soak::expect_no_more(now, held);
    EXPECT_TRUE(test::wait_for([&] { return new_files(files).empty(); })) << new_files(files);
    if (looks_for_leaks()) EXPECT_TRUE(test::wait_for([&] { return hosts().empty(); }));
    // The host writes there what its sanitizers say.
    EXPECT_EQ(log().find("ERROR: "), std::string::npos) << log();
}

}  // namespace
