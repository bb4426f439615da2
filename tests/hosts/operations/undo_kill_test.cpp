// An operation is killed at a random moment and then undone. The undo is killed as well and
// repeated. Afterwards everything is where it was, as it was, and nothing else is there.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <random>

#include "file_steps/temporaries.h"
#include "hosts/operations/killed_program.h"
#include "hosts/operations/scene.h"
#include "support/temp_folder.h"

namespace {

constexpr int files = 150, most_runs = 2000;
constexpr double longest = 0.9;

class UndoKillTest : public testing::Test {
  protected:
    void SetUp() override {
        if (volume_.path().empty()) GTEST_SKIP() << "/dev/shm is no file system of its own";
        setenv("XDG_DATA_HOME", (volume_.path() + "/data").c_str(), 1);
        test::make_tree(origin_, files);
        // Several names of one file, within a folder and between the things that are given to the
        // engine.
        const std::string first = origin_ + "/0.txt";
        ASSERT_EQ(link(first.c_str(), (origin_ + "/again.txt").c_str()), 0);
        ASSERT_EQ(link(first.c_str(), (origin_ + "/folder 1/again.txt").c_str()), 0);
        ASSERT_EQ(
            link((origin_ + "/folder 1/1.txt").c_str(), (origin_ + "/folder 1/twice.txt").c_str()),
            0);
        std::random_device seed;
        seed_ = seed();
        random_.seed(seed_);
    }

    void reset() {
        for (const std::string& folder : {from_, to_, volume_.path() + "/data"}) {
            std::filesystem::remove_all(folder);
        }
        const std::string copy = "cp -a '" + origin_ + "' '" + from_ + "'";
        ASSERT_EQ(system(copy.c_str()), 0);
        ASSERT_EQ(mkdir(to_.c_str(), 0755), 0);
        if (!replaces_) return;
        for (const std::string& name : test::names_in(origin_)) {
            std::ofstream(to_ + "/" + name) << "older " << name;
        }
    }

    test::State world() {
        test::State state;
        for (const auto& [path, what] : test::state_of(from_, true)) state["from/" + path] = what;
        for (const auto& [path, what] : test::state_of(to_, true)) state["to/" + path] = what;
        return state;
    }

    double moment(double takes) {
        return std::uniform_real_distribution<double>(0.0005, std::min(takes, longest))(random_);
    }

    // Kills it at a random moment. Runs that are not killed show how long it takes.
    test::Run run(const std::vector<std::string>& words, double* takes) {
        const test::Run run = test::run_operate(words, moment(*takes));
        killed_ += run.was_killed;
        if (!run.was_killed) *takes = std::max(0.002, std::min(*takes, run.seconds * 1.2));
        return run;
    }

    // Killed up to three times, then left to finish.
    void undo(const test::State& before) {
        for (int tries = 0; tries < 3; tries++) {
            const test::Run run = this->run({"undo"}, &undo_takes_);
            if (!run.was_killed) return expect_undone(run, before);
            undo_kills_++;
        }
        expect_undone(test::run_operate({"undo"}, 0), before);
    }

    void expect_undone(const test::Run& run, const test::State& before) {
        const bool was_nothing = run.complaints == "there is nothing to undo\n";
        EXPECT_TRUE(run.status == 0 || was_nothing) << run.complaints;
        clean_up();
        const test::State after = world();
        for (const auto& [path, what] : before) {
            const auto found = after.find(path);
            EXPECT_TRUE(found != after.end()) << path << " is missing";
            if (found != after.end()) EXPECT_EQ(found->second, what) << path;
        }
        for (const auto& entry : after) EXPECT_TRUE(before.count(entry.first)) << entry.first;
    }

    // Whoever was started meanwhile may be at it.
    void clean_up() {
        const std::string journals = operations::default_state_folder() + "/temporaries";
        for (int tries = 0; tries < 6000; tries++) {
            operations::remove_left_temporaries(operations::default_state_folder());
            if (test::names_in(journals).empty()) return;
            usleep(10000);
        }
        ADD_FAILURE() << "something is left";
    }

    void kill_often(const std::string& kind, const std::string& from, int usual) {
        from_ = from;
        to_ = volume_.path() + "/to";
        SCOPED_TRACE("seed " + std::to_string(seed_));
        const int wanted = test::kills_to_make(usual);
        std::vector<std::string> words = {kind, to_, from_ + "/"};
        if (replaces_) words.insert(words.begin() + 2, "--replace");
        int runs = 0;
        for (; killed_ < wanted && runs < most_runs && !HasFailure(); runs++) {
            reset();
            const test::State before = world();
            run(words, &takes_);
            undo(before);
        }
        printf("%d operations, %d kills, %d of them of an undo\n", runs, killed_, undo_kills_);
        EXPECT_GE(killed_, wanted);
    }

    // On another file system, in memory where possible.
    void kill_often_between_volumes(const std::string& kind, int usual) {
        const std::string memory = folder_.folder("memory");
        const bool done = test::in_child([&] {
            if (!test::mount_small_volume(memory, 64 << 20)) return false;
            kill_often(kind, memory + "/from", usual);
            return true;
        });
        if (!done) kill_often(kind, folder_.path("from"), usual);
    }

    test::TempFolder folder_;
    test::OtherVolume volume_{folder_.path()};
    const std::string origin_ = folder_.path("origin");
    std::string from_, to_;
    std::mt19937 random_;
    unsigned seed_ = 0;
    double takes_ = longest, undo_takes_ = longest;
    int killed_ = 0, undo_kills_ = 0;
    bool replaces_ = false;
};

TEST_F(UndoKillTest, AKilledCopyIsUndone) { kill_often("copy", volume_.path() + "/from", 25); }

TEST_F(UndoKillTest, AKilledCopyThatReplacesIsUndone) {
    replaces_ = true;
    kill_often("copy", volume_.path() + "/from", 25);
}

TEST_F(UndoKillTest, AKilledMoveIsUndone) { kill_often("move", volume_.path() + "/from", 25); }

TEST_F(UndoKillTest, AKilledMoveThatReplacesIsUndone) {
    replaces_ = true;
    kill_often("move", volume_.path() + "/from", 25);
}

TEST_F(UndoKillTest, AKilledMoveToAnotherVolumeIsUndone) { kill_often_between_volumes("move", 25); }

TEST_F(UndoKillTest, AKilledMoveToAnotherVolumeThatReplacesIsUndone) {
    replaces_ = true;
    kill_often_between_volumes("move", 25);
}

}  // namespace
