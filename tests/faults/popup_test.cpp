// Each call over a whole popup fails in turn: a written, a picked and a shown menu, and one of the
// resident host. What comes is a menu, or an end with a message.
#include <gtest/gtest.h>

#include <string.h>

#include <filesystem>

#include "faults/faulty_run.h"
#include "hosts/bus_service.h"
#include "hosts/resident/scene.h"
#include "support/temp_folder.h"
#include "support/waiting.h"
#include "support/x_clients.h"
#include "support/x_input.h"

namespace fs = std::filesystem;

namespace faults {

namespace {

// A PNG of one grey pixel.
constexpr char picture[] =
    "\211\120\116\107\015\012\032\012\000\000\000\015\111\110\104\122\000\000\000\001\000\000"
    "\000\001\010\000\000\000\000\072\176\233\125\000\000\000\012\111\104\101\124\170\234\143"
    "\150\000\000\000\202\000\201\167\315\162\266\000\000\000\000\111\105\116\104\256\102\140"
    "\202";

struct FaultsInPopups : testing::Test {
    FaultsInPopups() {
        folder.file("top/a.txt", "new a");
        folder.file("top/inner/b.txt", "b");
        folder.file("top/picture.png", std::string(picture, sizeof picture - 1));
        folder.link("top/link", "a.txt");
        folder.folder("to");
    }

    Ended run(const Words& words, const std::function<void()>& turn = {}) {
        Words all = {DELVIO_PROGRAM};
        all.insert(all.end(), words.begin(), words.end());
        return run_with_faults(control, all, {{"DELVIO_RESIDENT", "0"}}, turn);
    }

    // A clean end, or one with a message.
    void expect_good_end(const Ended& ended) {
        EXPECT_FALSE(ended.hung);
        EXPECT_TRUE(ended.status == 0 || ended.status == 1 || ended.status == 3) << ended.status;
        if (ended.status != 0) EXPECT_NE(ended.err, "") << ended.status;
        if (ended.status != 0) return;
        // GLib wakes its threads through a pipe when it gets nothing better.
        const bool is_wake_up = strcmp(control->name, "eventfd") == 0;
        const std::string leaked = control.leaked_since(files_at_end);
        EXPECT_TRUE(leaked.empty() || (is_wake_up && leaked == "pipe:\npipe:\n")) << leaked;
    }

    // One run after the other, each with another call that fails.
    void fail_each(const char* what, const std::function<Ended()>& action,
                   const std::function<void(const Ended&)>& check) {
        control.arm(families, 0);
        const Ended clean = action();
        ASSERT_EQ(clean.status, 0) << clean.err;
        check(clean);
        files_at_end = control->files_at_end;
        const auto calls = calls_made(what, control);
        const auto run_with = [&](Family family, long number) {
            control.arm(family, number);
            control->times = times;
            return action();
        };
        const auto try_one = [&](Family family, long number) {
            const Ended ended = run_with(family, number);
            if (control->failed == 0) return false;
            SCOPED_TRACE(std::string(what) + ", " + family_names[family] + " " +
                         std::to_string(number) + ": " + control->name + " of " + control->module +
                         ": " + ended.err);
            expect_good_end(ended);
            check(ended);
            const auto again = [&](bool fails) {
                return run_with(fails ? family : families, number).seconds;
            };
            if (!ended.hung)
                EXPECT_FALSE(is_slow(ended.seconds, clean.seconds, again)) << ended.seconds;
            return true;
        };
        std::array<int, families> tried = {};
        for (const Family family : tried_families) {
            tried[family] = fail_in_turn(calls[family], sample, [&](long number) {
                return (is_full_run() || !HasFailure()) && try_one(family, number);
            });
        }
        tell_tried(what, tried);
    }

    // Picks a copy, which is made, or refused with a message.
    void copy_with_faults() {
        const std::string copy = folder.path("to/a.txt");
        fail_each(
            "picks",
            [&] {
                fs::remove_all(copy);
                return run({"menu", "--pick", "to", "--pick", "Copy selection here",
                            folder.path("to"), folder.path("top/a.txt")});
            },
            [&](const Ended& ended) {
                EXPECT_EQ(test::read_file(folder.path("top/a.txt")), "new a");
                // A refused copy has left nothing, not even a part.
                const std::string there = test::read_file(copy);
                EXPECT_TRUE(there == "new a" || !fs::exists(copy)) << there;
                EXPECT_TRUE(there == "new a" || ended.err != "");
            });
    }

    std::vector<Family> tried_families = families_to_try();
    int sample = 1;
    long times = 1;
    const test::SessionBus session_bus;
    test::TempFolder folder;
    SharedControl control;
    std::string files_at_end;
};

TEST_F(FaultsInPopups, WriteAMenuOrAMessage) {
    fail_each(
        "written menus",
        [&] {
            return run({"menu", "--print", "--depth", "2", folder.path("top")});
        },
        [](const Ended& ended) {
            if (ended.status == 0) EXPECT_NE(ended.out.find("Move to Trash"), ended.out.npos);
        });
}

// The first objects are made before the program's own first line.
TEST_F(FaultsInPopups, EndWithAMessageWhenMemoryEndsBeforeTheyBegin) {
    for (long number = 1; number <= 30 && !HasFailure(); number++) {
        control.arm(objects, number);
        const Ended ended = run({"--version"});
        EXPECT_EQ(control->failed, 1) << number;
        EXPECT_EQ(ended.status, 1) << number << ": " << control->module;
        EXPECT_EQ(ended.err, "delvio: Cannot allocate memory\n") << number;
    }
}

TEST_F(FaultsInPopups, PickACopyOrRefuseIt) { copy_with_faults(); }

// Far more calls fail than there are blocks in the reserve.
TEST_F(FaultsInPopups, PickACopyOrSayThatMemoryIsShort) {
    tried_families = families_to_try({memory});
    sample = 12;
    times = 100000;
    copy_with_faults();
}

struct FaultsInShownMenus : FaultsInPopups {
    Ended show() {
        bool was_open = false;
        const Ended ended =
            run({"menu", "--no-resident", "--at", "100,100", folder.path("top")}, [&] {
                if (screen.open_menu().width == 0) return;
                // A submenu, and then the end. The keys wait in the server for the program.
                if (!was_open) {
                    input.key("Down");
                    input.key("Right");
                }
                was_open = true;
                input.key("Escape");
            });
        EXPECT_TRUE(was_open || ended.status != 0);
        EXPECT_TRUE(screen.wait_until_closed());
        return ended;
    }

    const test::Screen screen;
    test::XInput input;
};

// The first calls are those that find out whether the display can be used.
TEST_F(FaultsInShownMenus, ADisplayThatGoesWhileItIsTriedIsToldOf) {
    for (int number = 1; number <= 6; number++) {
        control.arm(display, number);
        const Ended ended = show();
        EXPECT_EQ(control->failed, 1) << number;
        EXPECT_FALSE(ended.hung) << number;
        EXPECT_TRUE(ended.status == 0 || !ended.err.empty()) << number << ": " << control->name;
    }
}

// Some begin when the menu has closed.
TEST_F(FaultsInShownMenus, EachThreadMayBeMissing) {
    files_at_end = show().status == 0 ? control->files_at_end : "";
    int number = 0;
    do {
        control.arm(threads, ++number);
        const Ended ended = show();
        SCOPED_TRACE(std::to_string(number) + ": " + control->module + ": " + ended.err);
        expect_good_end(ended);
    } while (control->failed > 0);
    EXPECT_GT(number, 4);
}

TEST_F(FaultsInShownMenus, AreMenusOrEndWithAMessage) {
    fail_each(
        "shown menus", [&] { return show(); }, [](const Ended&) {});
}

}  // namespace

}  // namespace faults
