// Each call to a disk fails in turn, alone or with all later calls. Nothing is lost, no
// half-written file has a requested name, everything ends, and the finished part can be undone.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <set>

#include "file_steps/temporaries.h"
#include "hosts/operations/faulty_file_system.h"
#include "hosts/operations/scene.h"
#include "support/temp_folder.h"

using operations::Kind;
using operations::Report;
using operations::State;
using test::Faults;

namespace {

constexpr int most_calls = 5000;

// The distance between failing calls: with DELVIO_FAULTS=all each call of an operation fails once,
// otherwise one in this many. Slow calls are rarer, because they take time.
int stride(Faults::How how) {
    const char* wanted = getenv("DELVIO_FAULTS");
    if (wanted && std::string(wanted) == "all") return 1;
    return how == Faults::slow_once ? 67 : 11;
}

struct Scenario {
    const char* name;
    Kind kind;
    bool from_disk, to_disk, replaces;
};

class DiskFaultTest : public testing::Test {
  protected:
    // False when this machine allows nobody to mount a file system.
    bool mount() {
        disk_ = folder_.folder("disk");
        behind_ = folder_.folder("behind");
        setenv("XDG_DATA_HOME", folder_.folder("data").c_str(), 1);
        return test::mount_faulty_file_system(disk_, behind_, &faults_) != 0;
    }

    // The real state, read without going through the failing disk.
    std::string real(const std::string& path) {
        return path.compare(0, disk_.size(), disk_) == 0 ? behind_ + path.substr(disk_.size())
                                                         : path;
    }

    void make(const std::string& path, const std::string& text) {
        folder_.file(real(path).substr(folder_.path().size() + 1), text);
    }

    void reset(const Scenario& scenario) {
        faults_->how = Faults::never;
        for (const std::string& folder : {behind_, folder_.path("here"), folder_.path("data")}) {
            for (const std::string& name : test::names_in(folder)) {
                std::filesystem::remove_all(folder + "/" + name);
            }
        }
        from_ = (scenario.from_disk ? disk_ : folder_.path("here")) + "/from";
        to_ = (scenario.to_disk ? disk_ : folder_.path("here")) + "/to";
        mkdir(folder_.path("here").c_str(), 0755);
        for (const std::string& folder : {from_, to_}) mkdir(real(folder).c_str(), 0755);
        make(from_ + "/a", "new a");
        make(from_ + "/b", std::string(70000, 'b'));
        make(from_ + "/tree/c", "new c");
        make(from_ + "/tree/inner/d", "new d");
        EXPECT_EQ(link(real(from_ + "/tree/c").c_str(), real(from_ + "/tree/again").c_str()), 0);
        EXPECT_EQ(symlink("c", real(from_ + "/tree/link").c_str()), 0);
        if (!scenario.replaces) return;
        make(to_ + "/a", "older a");
        make(to_ + "/tree/e", "older e");
    }

    Report perform(const Scenario& scenario) {
        const bool trashes = scenario.kind == Kind::Trash;
        return operations::perform_request({scenario.kind,
                                            {from_ + "/a", from_ + "/b", from_ + "/tree"},
                                            trashes ? "" : to_,
                                            scenario.replaces},
                                           notes_, state_);
    }

    // In messages, long contents are replaced by their length.
    static std::string brief(const std::string& what) {
        if (what.size() < 100) return what;
        return what.substr(0, 20) + "... " + std::to_string(what.size()) + " " +
               std::to_string(std::hash<std::string>()(what));
    }

    test::State world() {
        test::State state;
        for (const auto& [path, what] : test::state_of(real(from_))) {
            state["from/" + path] = brief(what);
        }
        for (const auto& [path, what] : test::state_of(real(to_))) {
            state["to/" + path] = brief(what);
        }
        return state;
    }

    // The bytes of all files, in any place.
    std::set<std::string> contents() {
        std::set<std::string> all;
        for (const std::string& folder : {behind_, folder_.path("here"), folder_.path("data")}) {
            for (const auto& [path, what] : test::state_of(folder)) {
                if (path.find(".delvio-") == std::string::npos) all.insert(brief(what));
            }
        }
        return all;
    }

    // A file that exists under a name is complete.
    void expect_nothing_lost(const test::State& before) {
        const std::set<std::string> there = contents();
        for (const auto& [path, what] : before) {
            if (S_ISREG(static_cast<mode_t>(std::stoul(what)))) {
                EXPECT_TRUE(there.count(what)) << path << " is lost";
            }
        }
        std::set<std::string> known;
        for (const auto& entry : before) known.insert(entry.second);
        for (const auto& [path, what] : world()) {
            const bool is_file = S_ISREG(static_cast<mode_t>(std::stoul(what)));
            if (is_file && path.find(".delvio-") == std::string::npos) {
                EXPECT_TRUE(known.count(what)) << path << " is half-written";
            }
        }
    }

    void heal() {
        faults_->how = Faults::never;
        operations::remove_left_temporaries(state_);
        for (const auto& entry : world()) {
            EXPECT_EQ(entry.first.find(".delvio-"), std::string::npos) << entry.first;
        }
    }

    std::string undo() {
        for (const auto& outcome : operations::undo_last(notes_, state_).outcomes) {
            if (outcome.state != State::Done) return outcome.reason;
        }
        return "";
    }

    // Undoes the operation as far as possible. Afterwards everything is as before, or nothing was
    // touched.
    void expect_undo(const test::State& before) {
        const test::State now = world();
        const std::string problem = undo();
        const bool was_done = problem.empty() || problem == "there is nothing to undo";
        EXPECT_EQ(world(), was_done ? before : now) << problem;
        refused_ += !was_done;
    }

    // How often the operation calls the disk.
    int count(const std::function<void()>& action) {
        faults_->set(Faults::never, 0);
        action();
        return faults_->calls;
    }

    void fail_in_turn(const Scenario& scenario, Faults::How how) {
        reset(scenario);
        const int calls = count([&] { perform(scenario); });
        EXPECT_GT(calls, 0);
        EXPECT_LT(calls, most_calls);
        for (int call = 1 + call_offset(how); call <= calls && !HasFailure(); call += stride(how)) {
            SCOPED_TRACE(std::string(scenario.name) + ", call " + std::to_string(call) + " of " +
                         std::to_string(calls));
            reset(scenario);
            const test::State before = world();
            faults_->set(how, call);
            const Report report = perform(scenario);
            EXPECT_EQ(report.outcomes.size(), 3u);
            injected_++;
            heal();
            expect_nothing_lost(before);
            if (how == Faults::slow_once) {
                for (const auto& outcome : report.outcomes) EXPECT_EQ(outcome.state, State::Done);
            }
            // When a call did its work but reported failure, nobody knows that it was done.
            if (how != Faults::once_late) expect_undo(before);
            expect_nothing_lost(before);
        }
    }

    void fail_undo_in_turn(const Scenario& scenario, Faults::How how) {
        reset(scenario);
        perform(scenario);
        const int calls = count([&] { EXPECT_EQ(undo(), "") << scenario.name; });
        for (int call = 1 + call_offset(how); call <= calls && !HasFailure(); call += stride(how)) {
            SCOPED_TRACE(std::string(scenario.name) + " undone, call " + std::to_string(call) +
                         " of " + std::to_string(calls));
            reset(scenario);
            const test::State before = world();
            perform(scenario);
            faults_->set(how, call);
            const std::string problem = undo();
            injected_++;
            heal();
            expect_nothing_lost(before);
            if (!problem.empty()) EXPECT_EQ(undo(), "") << "after: " << problem;
            heal();
            EXPECT_EQ(world(), before) << problem;
        }
    }

    static int call_offset(Faults::How how) {
        return stride(how) == 1 ? 0 : static_cast<int>(random() % stride(how));
    }

    void run(Faults::How how, bool undoes) {
        const bool done = test::in_child([&] {
            if (!mount()) return false;
            srandom(static_cast<unsigned>(getpid()));
            const Scenario scenarios[] = {
                {"copy to the disk", Kind::Copy, false, true, false},
                {"copy from the disk", Kind::Copy, true, false, false},
                {"copy that replaces", Kind::Copy, false, true, true},
                {"move to the disk", Kind::Move, false, true, false},
                {"move from the disk", Kind::Move, true, false, false},
                {"move on the disk", Kind::Move, true, true, false},
                {"move that replaces", Kind::Move, true, true, true},
                {"aliases", Kind::Alias, true, true, false},
                {"trash", Kind::Trash, true, true, false},
            };
            for (const Scenario& scenario : scenarios) {
                if (HasFailure()) break;
                if (undoes) {
                    fail_undo_in_turn(scenario, how);
                } else {
                    fail_in_turn(scenario, how);
                }
            }
            printf("%d faults, %d undos refused\n", injected_, refused_);
            EXPECT_GT(injected_, 0);
            return true;
        });
        if (!done) GTEST_SKIP() << "nobody may mount a file system here";
    }

    test::TempFolder folder_;
    const std::string state_ = folder_.path("state");
    std::string disk_, behind_, from_, to_;
    Faults* faults_ = nullptr;
    test::Notes notes_;
    int injected_ = 0, refused_ = 0;
};

TEST_F(DiskFaultTest, ACallThatFailsLosesNothing) { run(Faults::once, false); }

TEST_F(DiskFaultTest, ACallThatFailsAlthoughItWasDoneLosesNothing) {
    run(Faults::once_late, false);
}

TEST_F(DiskFaultTest, ADiskThatFailsFromSomeCallOnEndsEverythingAndLosesNothing) {
    run(Faults::from_then, false);
}

TEST_F(DiskFaultTest, ASlowCallIsWaitedFor) { run(Faults::slow_once, false); }

TEST_F(DiskFaultTest, AnUndoWhoseCallFailsIsRepeated) { run(Faults::once, true); }

TEST_F(DiskFaultTest, AnUndoOnADiskThatFailsFromSomeCallOnIsRepeated) {
    run(Faults::from_then, true);
}

}  // namespace
