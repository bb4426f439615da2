// The engine is killed at random moments. After each kill, every file is complete at its source or
// its destination, no half-written file has its final name, and the next start cleans up.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <random>

#include "file_steps/folder.h"
#include "file_steps/temporaries.h"
#include "hosts/operations/killed_program.h"
#include "hosts/operations/scene.h"
#include "support/temp_folder.h"

namespace {

constexpr int most_runs = 5000, files = 1000;

class KillTest : public testing::Test {
  protected:
    void SetUp() override {
        if (volume_.path().empty()) GTEST_SKIP() << "/dev/shm is no file system of its own";
        test::make_tree(origin_, files);
        whole_ = test::state_of(origin_, true);
        takes_ = 1;
        // The contents of each thing that is given to the engine.
        for (const auto& entry : whole_) {
            tops_[entry.first.substr(0, entry.first.find('/'))].insert(entry);
        }
    }

    // cp makes the copy: the engine under test must not make its own test data, and it waits for
    // the disk.
    void reset(const std::string& folder, bool full) {
        std::filesystem::remove_all(folder);
        const std::string copy = "cp -a '" + origin_ + "' '" + folder + "'";
        ASSERT_EQ(full ? system(copy.c_str()) : mkdir(folder.c_str(), 0755), 0);
    }

    // Runs the operation and kills it after this time. False when it had already ended.
    bool run(const std::string& kind, double seconds) {
        std::vector<std::string> words = {kind, to_, from_ + "/"};
        if (replaces_) words.insert(words.begin() + 2, "--replace");
        const test::Run run = test::run_operate(words, seconds);
        if (run.was_killed) return true;
        EXPECT_EQ(run.status, 0) << run.complaints;
        takes_ = std::min(takes_, run.seconds);
        return false;
    }

    // Every requested name has its complete contents.
    void expect_whole_targets(const test::State& there) {
        test::State expected;
        for (const auto& top : tops_) {
            if (there.count(top.first)) expected.insert(top.second.begin(), top.second.end());
        }
        test::State named;
        for (const auto& entry : there) {
            if (entry.first[0] != '.') named.insert(entry);
        }
        EXPECT_EQ(named, expected);
    }

    // Everything is at the source or at the destination.
    void expect_nothing_lost(const test::State& source, const test::State& target) {
        for (const auto& entry : whole_) {
            const auto at_source = source.find(entry.first), at_target = target.find(entry.first);
            // Emptying a folder changes it.
            const bool is_at_source =
                at_source != source.end() && at_source->second == entry.second;
            const bool is_at_target =
                at_target != target.end() && at_target->second == entry.second;
            EXPECT_TRUE(is_at_source || is_at_target) << entry.first;
        }
    }

    void expect_clean() {
        operations::remove_left_temporaries(operations::default_state_folder());
        for (const std::string& name : test::names_in(to_)) EXPECT_NE(name[0], '.') << name;
        EXPECT_EQ(test::names_in(operations::default_state_folder() + "/temporaries"),
                  std::vector<std::string>());
    }

    void kill_often(const std::string& kind, const std::string& from, const std::string& to) {
        from_ = from;
        to_ = to;
        std::random_device seed;
        const unsigned number = seed();
        SCOPED_TRACE("seed " + std::to_string(number));
        std::mt19937 random(number);
        int killed = 0;
        const int kills = test::kills_to_make(200);
        bool is_whole = false;
        for (int runs = 0; killed < kills && runs < most_runs && !HasFailure(); runs++) {
            if (!is_whole) reset(from_, true);
            reset(to_, false);
            std::uniform_real_distribution<double> moment(0, std::min(takes_, 0.9));
            killed += run(kind, runs == 0 ? 0.9 : moment(random));
            const test::State source = test::state_of(from_, true);
            const test::State target = test::state_of(to_, true);
            is_whole = source == whole_;
            EXPECT_TRUE(is_whole || kind == "move");
            expect_whole_targets(target);
            expect_nothing_lost(source, target);
            expect_clean();
        }
        EXPECT_EQ(killed, kills);
    }

    // Puts something older under each name at the destination.
    void put_older_ones() {
        for (const auto& top : tops_) {
            std::ofstream(to_ + "/" + top.first) << "older " << top.first;
        }
    }

    // An item that was to be replaced is still there or in the trash, or both it and the new one
    // exist.
    void expect_older_ones(const std::string& trash) {
        for (const auto& top : tops_) {
            const std::string older = "older " + top.first, path = to_ + "/" + top.first;
            const bool is_there = test::read_file(path) == older;
            const bool is_in_trash = test::read_file(trash + "/" + top.first) == older;
            EXPECT_NE(is_there, is_in_trash) << top.first;
            if (is_there || access(path.c_str(), F_OK) != 0) continue;
            test::State target = test::state_of(path, true), expected;
            for (const auto& entry : top.second) {
                if (entry.first.size() > top.first.size()) {
                    expected[entry.first.substr(top.first.size() + 1)] = entry.second;
                }
            }
            EXPECT_EQ(target, expected) << top.first;
        }
    }

    test::TempFolder folder_;
    test::OtherVolume volume_{folder_.path()};
    const std::string origin_ = folder_.path("origin");
    std::string from_, to_;
    test::State whole_;
    std::map<std::string, test::State> tops_;
    double takes_ = 1;
    bool replaces_ = false;
};

TEST_F(KillTest, ACopyLosesNothingAndLeavesNothing) {
    // In memory, so that no kill waits for a disk.
    kill_often("copy", volume_.path() + "/from", volume_.path() + "/to");
}

TEST_F(KillTest, WhatIsReplacedIsThereOrInTheTrash) {
    const std::string data = volume_.path() + "/data";
    setenv("XDG_DATA_HOME", data.c_str(), 1);
    from_ = volume_.path() + "/from";
    to_ = volume_.path() + "/to";
    replaces_ = true;
    reset(from_, true);
    std::random_device seed;
    const unsigned number = seed();
    SCOPED_TRACE("seed " + std::to_string(number));
    std::mt19937 random(number);
    int killed = 0;
    const int kills = test::kills_to_make(40);
    for (int runs = 0; killed < kills && runs < most_runs && !HasFailure(); runs++) {
        reset(to_, false);
        std::filesystem::remove_all(data);
        put_older_ones();
        std::uniform_real_distribution<double> moment(0, std::min(takes_, 0.9));
        killed += run("copy", runs == 0 ? 0.9 : moment(random));
        expect_clean();
        expect_older_ones(data + "/Trash/files");
    }
    EXPECT_EQ(killed, kills);
}

TEST_F(KillTest, AMoveToAnotherVolumeLosesNothingAndLeavesNothing) {
    const std::string memory = folder_.folder("memory");
    const auto test = [&](const std::string& from) {
        kill_often("move", from, volume_.path() + "/to");
    };
    // Moves out of memory as well where possible; otherwise off the disk, which takes minutes.
    const bool done = test::in_child([&] {
        if (!test::mount_small_volume(memory, 64 << 20)) return false;
        test(memory + "/from");
        return true;
    });
    if (!done) test(folder_.path("from"));
}

}  // namespace
