// Each call of the engine's program fails in turn: every byte is still there, the start after it
// leaves nothing of the engine's behind, and what was done can be undone.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <set>

#include "faults/faulty_run.h"
#include "hosts/operations/scene.h"
#include "support/temp_folder.h"
#include "support/waiting.h"

namespace fs = std::filesystem;

namespace faults {

namespace {

struct Scenario {
    const char* name;
    const char* kind;
    bool to_other_volume, replaces, undoes;
};

constexpr Scenario scenarios[] = {
    {"copy", "copy", false, false, false},
    {"copy that replaces", "copy", false, true, false},
    {"move", "move", false, true, false},
    {"move to another volume", "move", true, false, false},
    {"trash", "trash", false, false, false},
    {"undo of a copy", "copy", false, true, true},
    {"undo of a move to another volume", "move", true, false, true},
};

struct FaultsInOperations : testing::Test {
    FaultsInOperations() : volume(folder.path()) {}

    std::string from() const { return folder.path("from"); }
    std::string to() const {
        return scenario.to_other_volume ? volume.path() + "/to" : folder.path("to");
    }

    void reset() {
        for (const char* name : {"from", "to", "data", "state"}) {
            fs::remove_all(folder.path(name));
        }
        if (!volume.path().empty()) {
            for (const auto& entry : fs::directory_iterator(volume.path())) fs::remove_all(entry);
        }
        fs::create_directory(to());
        folder.file("from/a", "new a");
        folder.file("from/b", std::string(70000, 'b'));
        folder.file("from/tree/c", "new c");
        folder.file("from/tree/inner/d", "new d");
        EXPECT_EQ(link((from() + "/tree/c").c_str(), (from() + "/tree/again").c_str()), 0);
        folder.link("from/tree/link", "c");
        if (!scenario.replaces) return;
        folder.file("to/a", "older a");
        folder.file("to/tree/e", "older e");
    }

    // In messages, long contents are replaced by their length and a sum.
    static std::string brief(const std::string& what) {
        if (what.size() < 100) return what;
        return what.substr(0, 20) + "... " + std::to_string(what.size()) + " " +
               std::to_string(std::hash<std::string>()(what));
    }

    test::State world() const {
        test::State state;
        for (const auto& [path, what] : test::state_of(from())) state["from/" + path] = brief(what);
        for (const auto& [path, what] : test::state_of(to())) state["to/" + path] = brief(what);
        return state;
    }

    std::set<std::string> contents() const {
        std::set<std::string> all;
        for (const std::string& place : {folder.path(), volume.path()}) {
            if (place.empty()) continue;
            for (const auto& [path, what] : test::state_of(place)) {
                if (path.find(".delvio-") == std::string::npos) all.insert(brief(what));
            }
        }
        return all;
    }

    void expect_nothing_lost(const test::State& before) const {
        const std::set<std::string> there = contents();
        std::set<std::string> known;
        for (const auto& [path, what] : before) {
            known.insert(what);
            if (S_ISREG(static_cast<mode_t>(std::stoul(what))))
                EXPECT_TRUE(there.count(what)) << path << " is lost";
        }
        for (const auto& [path, what] : world()) {
            if (!S_ISREG(static_cast<mode_t>(std::stoul(what)))) continue;
            EXPECT_TRUE(known.count(what) || path.find(".delvio-") != std::string::npos)
                << path << " is half-written";
        }
    }

    Ended operate(const Words& words) {
        Words all = {OPERATE_PROGRAM};
        all.insert(all.end(), words.begin(), words.end());
        return run_with_faults(
            control, all,
            {{"XDG_DATA_HOME", folder.path("data")}, {"XDG_STATE_HOME", folder.path("state")}});
    }

    Ended perform() {
        Words words = {scenario.kind, strcmp(scenario.kind, "trash") ? to() : std::string()};
        if (scenario.replaces) words.push_back("--replace");
        for (const char* name : {"/a", "/b", "/tree"}) words.push_back(from() + name);
        return operate(words);
    }

    Ended without_faults(const Words& words) {
        control.arm(families, 0);
        return operate(words);
    }

    // A line for each thing that is wrong with the end of a program.
    void expect_good_end(const Ended& ended) {
        EXPECT_FALSE(ended.hung);
        EXPECT_TRUE(ended.status == 0 || ended.status == 1) << ended.status << ended.err;
        EXPECT_EQ(ended.status == 0, ended.err.empty()) << ended.status << ended.err;
        EXPECT_EQ(control.leaked_since(files_at_end), "");
    }

    void expect_clean_after_start() {
        EXPECT_EQ(without_faults({"start"}).status, 0);
        EXPECT_TRUE(test::wait_for([&] { return left().empty(); })) << left();
    }
    std::string left() const {
        for (const auto& entry : world()) {
            if (entry.first.find(".delvio-") != std::string::npos) return entry.first;
        }
        return "";
    }

    bool fail_one(Family family, long number) {
        reset();
        const test::State before = world();
        if (scenario.undoes) {
            control.arm(families, 0);
            EXPECT_EQ(perform().status, 0);
        }
        const test::State after = world();
        control.arm(family, number);
        const Ended ended = scenario.undoes ? operate({"undo"}) : perform();
        if (control->failed == 0) return false;
        SCOPED_TRACE(std::string(scenario.name) + ", " + family_names[family] + " " +
                     std::to_string(number) + ": " + control->name + " of " + control->module +
                     ": " + ended.err);
        expect_good_end(ended);
        expect_nothing_lost(before);
        expect_clean_after_start();
        if (ended.status == 0 && !scenario.undoes) EXPECT_EQ(world(), done);
        const test::State now = world();
        const Ended undone = without_faults({"undo"});
        const bool was_undone = undone.status == 0;
        EXPECT_TRUE(world() == before || (!was_undone && world() == now)) << undone.err;
        if (scenario.undoes) EXPECT_EQ(world(), before) << undone.err;
        expect_nothing_lost(before);
        return true;
    }

    void fail_each() {
        reset();
        control.arm(families, 0);
        EXPECT_EQ(perform().status, 0);
        done = world();
        files_at_end = control->files_at_end;
        if (scenario.undoes) {
            control.arm(families, 0);
            EXPECT_EQ(operate({"undo"}).status, 0);
        }
        const auto calls = calls_made(scenario.name, control);
        for (const Family family : families_to_try()) {
            tried[family] += fail_in_turn(calls[family], sample, [&](long number) {
                return (is_full_run() || !HasFailure()) && fail_one(family, number);
            });
        }
    }

    static constexpr int sample = 2;
    test::TempFolder folder;
    test::OtherVolume volume;
    SharedControl control;
    Scenario scenario = scenarios[0];
    test::State done;
    std::string files_at_end;
    std::array<int, families> tried = {};
};

TEST_F(FaultsInOperations, LoseNothingAndLeaveNothing) {
    for (const Scenario& one : scenarios) {
        if (one.to_other_volume && volume.path().empty()) continue;
        scenario = one;
        fail_each();
    }
    tell_tried("operations", tried);
}

}  // namespace

}  // namespace faults
