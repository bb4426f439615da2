// How the engine handles files, names and conflicts.
#include "operations/engine.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <condition_variable>
#include <mutex>

#include "file_steps/folder.h"
#include "hosts/operations/failing_calls.h"
#include "hosts/operations/scene.h"
#include "support/temp_folder.h"

using operations::Choice;
using operations::Kind;
using operations::Outcome;
using operations::Report;
using operations::State;

namespace {

using Names = std::vector<std::string>;

class EngineTest : public testing::Test {
  protected:
    Report perform(Kind kind, const Names& sources, const std::string& destination,
                   bool replace = false) {
        return operations::perform_request({kind, sources, destination, replace}, notes_,
                                           folder_.path("state"));
    }
    Outcome perform_one(Kind kind, const std::string& source, const std::string& destination,
                        bool replace = false) {
        return perform(kind, {source}, destination, replace).outcomes.at(0);
    }
    // The contents of the trash, under any name.
    Names trashed() {
        return test::names_in(std::string(getenv("XDG_DATA_HOME")) + "/Trash/files");
    }

    void SetUp() override {
        // The folder is beside the files, so that it is on their volume.
        setenv("XDG_DATA_HOME", folder_.folder("data").c_str(), 1);
    }

    struct stat look(const std::string& path) {
        struct stat what = {};
        EXPECT_EQ(lstat(path.c_str(), &what), 0) << path;
        return what;
    }

    // A tree with every kind of entry that a file system has.
    std::string full_tree() {
        const std::string tree = folder_.folder("tree");
        test::make_tree(tree, 60);
        folder_.file("tree/first", "linked");
        EXPECT_EQ(link((tree + "/first").c_str(), (tree + "/second").c_str()), 0);
        folder_.link("tree/link", "first");
        folder_.link("tree/dangling", "nowhere");
        EXPECT_EQ(mkfifo((tree + "/pipe").c_str(), 0640), 0);
        EXPECT_EQ(chmod(folder_.file("tree/program", "#!").c_str(), 0751), 0);
        EXPECT_EQ(chmod(folder_.folder("tree/shared").c_str(), 01777), 0);
        for (const char* name : {"/first", "/pipe", "/shared", ""}) {
            const timespec times[2] = {{1000000000, 123456789}, {1100000000, 987654321}};
            EXPECT_EQ(utimensat(AT_FDCWD, (tree + name).c_str(), times, 0), 0);
        }
        return tree;
    }

    test::TempFolder folder_;
    test::OtherVolume volume_{folder_.path()};
    test::Notes notes_;
};

TEST_F(EngineTest, ACopyHasAllThatTheOriginalHas) {
    const std::string tree = full_tree(), to = folder_.folder("to");
    const test::State before = test::state_of(tree, true);
    const Outcome outcome = perform_one(Kind::Copy, tree, to);
    EXPECT_EQ(outcome.state, State::Done) << outcome.reason;
    EXPECT_EQ(outcome.target, to + "/tree");
    EXPECT_EQ(test::state_of(to + "/tree", true), before);
    EXPECT_EQ(test::state_of(tree, true), before);
    EXPECT_EQ(look(to + "/tree/first").st_ino, look(to + "/tree/second").st_ino);
    EXPECT_EQ(look(to + "/tree/first").st_nlink, 2u);
    EXPECT_EQ(look(to + "/tree").st_mtim.tv_nsec, 987654321);
    EXPECT_EQ(test::names_in(to), Names({"tree"}));
}

TEST_F(EngineTest, AMoveToAnotherVolumeKeepsAllThatTheOriginalHad) {
    if (volume_.path().empty()) GTEST_SKIP() << "/dev/shm is no file system of its own";
    const std::string tree = full_tree();
    const test::State before = test::state_of(tree, true);
    const Outcome outcome = perform_one(Kind::Move, tree, volume_.path());
    EXPECT_EQ(outcome.state, State::Done) << outcome.reason;
    EXPECT_EQ(test::state_of(volume_.path() + "/tree", true), before);
    EXPECT_EQ(look(volume_.path() + "/tree/first").st_nlink, 2u);
    EXPECT_EQ(access(tree.c_str(), F_OK), -1);
    EXPECT_EQ(test::names_in(volume_.path()), Names({"tree"}));
}

TEST_F(EngineTest, LinksBetweenThingsOfOneRequestAreKept) {
    const std::string one = folder_.file("from/one", "text"), two = folder_.path("from/two");
    ASSERT_EQ(link(one.c_str(), two.c_str()), 0);
    const std::string to = folder_.folder("to");
    perform(Kind::Copy, {one, two}, to);
    EXPECT_EQ(look(to + "/one").st_ino, look(to + "/two").st_ino);
    EXPECT_EQ(look(to + "/one").st_nlink, 2u);
    EXPECT_NE(look(to + "/one").st_ino, look(one).st_ino);
}

TEST_F(EngineTest, ExtendedAttributesAndAccessListsAreKept) {
    const std::string source = folder_.file("a", "a"), to = folder_.folder("to");
    ASSERT_EQ(setxattr(source.c_str(), "user.delvio", "value", 5, 0), 0) << test::no_attributes;
    // Version 2: the owner rw, the user 1 r, the group r, the mask r, others nothing.
    const unsigned char list[] = {2, 0, 0,   0,   1,   0,   6,  0, 255, 255, 255, 255, 2,   0,  4,
                                  0, 1, 0,   0,   0,   4,   0,  4, 0,   255, 255, 255, 255, 16, 0,
                                  4, 0, 255, 255, 255, 255, 32, 0, 0,   0,   255, 255, 255, 255};
    const bool has_list =
        setxattr(source.c_str(), "system.posix_acl_access", list, sizeof list, 0) == 0;
    EXPECT_EQ(perform_one(Kind::Copy, source, to).reason, "");
    char value[64];
    EXPECT_EQ(getxattr((to + "/a").c_str(), "user.delvio", value, sizeof value), 5);
    EXPECT_EQ(std::string(value, 5), "value");
    if (!has_list) return;
    ASSERT_EQ(getxattr((to + "/a").c_str(), "system.posix_acl_access", value, sizeof value),
              static_cast<ssize_t>(sizeof list));
    EXPECT_EQ(memcmp(value, list, sizeof list), 0);
}

TEST_F(EngineTest, AccessListsOfTheDestinationAreNotPassedOn) {
    const std::string tree = folder_.folder("tree"), to = folder_.folder("to");
    const std::string file = folder_.file("tree/inner/a", "a");
    chmod(file.c_str(), 0600);
    const unsigned char list[] = {2, 0, 0,   0,   1,   0,   7,  0, 255, 255, 255, 255, 2,   0,  7,
                                  0, 1, 0,   0,   0,   4,   0,  7, 0,   255, 255, 255, 255, 16, 0,
                                  7, 0, 255, 255, 255, 255, 32, 0, 7,   0,   255, 255, 255, 255};
    if (setxattr(to.c_str(), "system.posix_acl_default", list, sizeof list, 0) != 0) {
        GTEST_SKIP() << "this file system keeps no access lists";
    }
    perform(Kind::Copy, {tree, file}, to);
    char value[64];
    for (const char* name : {"/tree", "/tree/inner", "/tree/inner/a", "/a"}) {
        EXPECT_EQ(getxattr((to + name).c_str(), "system.posix_acl_access", value, sizeof value), -1)
            << name;
    }
    EXPECT_EQ(look(to + "/a").st_mode & 0777, 0600u);
}

TEST_F(EngineTest, HolesStayHoles) {
    const std::string source = folder_.file("sparse"), to = folder_.folder("to");
    const int file = open(source.c_str(), O_WRONLY | O_CLOEXEC);
    ASSERT_EQ(pwrite(file, "middle", 6, 8 << 20), 6);
    ASSERT_EQ(ftruncate(file, 32 << 20), 0);
    close(file);
    perform_one(Kind::Copy, source, to);
    EXPECT_EQ(look(to + "/sparse").st_size, 32 << 20);
    EXPECT_LT(look(to + "/sparse").st_blocks * 512, 1 << 20);
    EXPECT_EQ(test::read_file(to + "/sparse"), test::read_file(source));
}

TEST_F(EngineTest, NamesAreBytes) {
    const Names names = {
        "-rf", "\xff\xfe", "a\nb", std::string(255, 'x'), std::string(84, '.') + "\xc3",
        " ",   "%41",      "*"};
    const std::string from = folder_.folder("from"), to = folder_.folder("to");
    const std::string again = folder_.folder("again");
    Names sources, sorted = names;
    for (const std::string& name : names) sources.push_back(folder_.file("from/" + name, name));
    std::sort(sorted.begin(), sorted.end());
    for (const Outcome& outcome : perform(Kind::Copy, sources, to).outcomes) {
        EXPECT_EQ(outcome.state, State::Done) << outcome.reason;
    }
    EXPECT_EQ(test::names_in(to), sorted);
    perform(Kind::Copy, sources, to, true);
    EXPECT_EQ(test::names_in(to), sorted);
    EXPECT_EQ(trashed().size(), names.size());
    perform(Kind::Move, sources, again);
    EXPECT_EQ(test::names_in(again), sorted);
    EXPECT_EQ(test::names_in(from), Names());
    for (const std::string& name : names) EXPECT_EQ(test::read_file(again + "/" + name), name);
    for (std::string& source : sources) source = again + "/" + operations::name_in_path(source);
    EXPECT_EQ(perform(Kind::Alias, sources, again).outcomes[3].target,
              again + "/" + std::string(249, 'x') + " alias");
    for (const Outcome& outcome : perform(Kind::Trash, sources, "").outcomes) {
        EXPECT_EQ(outcome.state, State::Done) << outcome.reason;
    }
}

TEST_F(EngineTest, AMoveWithinAVolumeIsTheSameFile) {
    const std::string source = folder_.file("from/a", "a"), to = folder_.folder("to");
    const ino_t inode = look(source).st_ino;
    EXPECT_EQ(perform_one(Kind::Move, source, to).target, to + "/a");
    EXPECT_EQ(look(to + "/a").st_ino, inode);
}

TEST_F(EngineTest, AFolderIsNeverPutIntoItself) {
    const std::string tree = folder_.folder("tree"), inner = folder_.folder("tree/inner");
    const std::string link = folder_.link("link", inner);
    for (const std::string& destination : {tree, inner, link}) {
        EXPECT_EQ(perform_one(Kind::Copy, tree, destination).reason,
                  "\"tree\" cannot be copied into itself");
        EXPECT_EQ(perform_one(Kind::Move, tree, destination).reason,
                  "\"tree\" cannot be moved into itself");
    }
    EXPECT_EQ(test::names_in(tree), Names({"inner"}));
    EXPECT_EQ(test::names_in(inner), Names());
    EXPECT_EQ(perform_one(Kind::Alias, tree, inner).target, inner + "/tree");
}

TEST_F(EngineTest, AMoveIntoTheSameFolderIsSkippedAndACopyKeepsBoth) {
    const std::string source = folder_.file("in/a.txt", "a"), in = folder_.path("in");
    EXPECT_EQ(perform_one(Kind::Move, source, in, true).state, State::Skipped);
    EXPECT_EQ(perform_one(Kind::Copy, source, in, true).target, in + "/a copy.txt");
    EXPECT_EQ(perform_one(Kind::Copy, source, in).target, in + "/a copy 2.txt");
    EXPECT_EQ(test::names_in(in), Names({"a copy 2.txt", "a copy.txt", "a.txt"}));
    EXPECT_TRUE(notes_.conflicts.empty());
}

TEST_F(EngineTest, AnAliasIsALinkWithANameOfItsOwn) {
    const std::string source = folder_.file("from/a.txt", "a"), to = folder_.folder("to");
    for (const char* name : {"/a.txt", "/a.txt alias", "/a.txt alias 2"}) {
        EXPECT_EQ(perform_one(Kind::Alias, source, to, true).target, to + name);
        EXPECT_EQ(test::read_file(to + name), "a");
        char text[PATH_MAX] = {};
        EXPECT_GT(readlink((to + name).c_str(), text, sizeof text - 1), 0);
        EXPECT_EQ(text, source);
    }
    EXPECT_TRUE(notes_.conflicts.empty());
}

TEST_F(EngineTest, ATakenNameIsAskedAboutAndSkippedWithoutAnAnswer) {
    const std::string source = folder_.file("from/a", "new"), to = folder_.folder("to");
    folder_.file("to/a", "old");
    for (const Kind kind : {Kind::Copy, Kind::Move}) {
        const Outcome outcome = perform_one(kind, source, to);
        EXPECT_EQ(outcome.state, State::Skipped);
        EXPECT_EQ(outcome.reason, "\"a\" is there already");
    }
    ASSERT_EQ(notes_.conflicts.size(), 2u);
    EXPECT_EQ(notes_.conflicts[0].source, source);
    EXPECT_EQ(notes_.conflicts[0].target, to + "/a");
    EXPECT_EQ(test::read_file(to + "/a"), "old");
}

TEST_F(EngineTest, WhatIsReplacedGoesToTheTrash) {
    const std::string to = folder_.folder("to");
    for (const Kind kind : {Kind::Copy, Kind::Move}) {
        const std::string source = folder_.file("from/a", "new");
        folder_.file("to/a", "old");
        EXPECT_EQ(perform_one(kind, source, to, true).state, State::Done);
        EXPECT_EQ(test::read_file(to + "/a"), "new");
    }
    EXPECT_EQ(trashed(), Names({"a", "a.2"}));
    EXPECT_EQ(test::read_file(folder_.path("data/Trash/files/a")), "old");
    EXPECT_EQ(test::read_file(folder_.path("data/Trash/files/a.2")), "old");
    EXPECT_TRUE(notes_.conflicts.empty());
}

TEST_F(EngineTest, WhatCannotGoToTheTrashIsNotReplaced) {
    const std::string source = folder_.file("from/a", "new"), to = folder_.folder("to");
    folder_.file("to/a", "old");
    // Blocks the home's trash and, unless root runs this, the volume's trash.
    folder_.file("data/Trash", "a file");
    const bool done = test::in_child([&] {
        if (geteuid() == 0 && setuid(65534) != 0) return false;
        const Outcome outcome = perform_one(Kind::Copy, source, to, true);
        EXPECT_EQ(outcome.state, State::Failed);
        return true;
    });
    EXPECT_TRUE(done);
    EXPECT_EQ(test::read_file(to + "/a"), "old");
}

TEST_F(EngineTest, WithoutAThreadARequestIsRefusedAndNothingIsTouched) {
    const std::string source = folder_.file("from/a", "a");
    const std::string destination = folder_.folder("to");
    const bool done = test::in_child([&] {
        const auto engine = operations::make_engine(folder_.path("state"));
        if (!test::fail_call(SYS_clone3, EAGAIN) || !test::fail_call(SYS_clone, EAGAIN)) {
            return false;
        }
        const auto notes = std::make_shared<test::Notes>();
        engine->carry_out({operations::Kind::Move, {source}, destination, false}, notes);
        EXPECT_EQ(notes->report.outcomes.size(), 1u);
        if (notes->report.outcomes.size() == 1) {
            EXPECT_EQ(notes->report.outcomes[0].state, operations::State::Failed);
        }
        return true;
    });
    EXPECT_TRUE(done);
    EXPECT_TRUE(std::filesystem::exists(source));
}

TEST_F(EngineTest, WhereNobodyAnswersATakenNameIsSkipped) {
    class Silent : public operations::Observer {
        void ended(const operations::Report&) override {}
    } silent;
    const std::string source = folder_.file("from/a", "new"), taken = folder_.file("to/a", "old");
    const auto report = operations::perform_request(
        {Kind::Move, {source}, folder_.path("to"), false}, silent, folder_.path("state"));
    EXPECT_EQ(report.outcomes.front().state, State::Skipped);
    EXPECT_FALSE(report.stopped);
    EXPECT_EQ(test::read_file(source), "new");
    EXPECT_EQ(test::read_file(taken), "old");
}

TEST_F(EngineTest, AFolderIsNotReplacedByWhatIsInIt) {
    const std::string inner = folder_.file("to/a/a", "inner"), to = folder_.path("to");
    for (const Kind kind : {Kind::Copy, Kind::Move}) {
        EXPECT_EQ(perform_one(kind, inner, to, true).reason,
                  "\"a\" cannot be replaced by what is in it");
    }
    EXPECT_EQ(test::read_file(inner), "inner");
    EXPECT_EQ(test::names_in(to), Names({"a"}));
}

TEST_F(EngineTest, AnAnswerForAllIsAskedForOnce) {
    Names sources;
    for (const char* name : {"a", "b", "c"}) {
        sources.push_back(folder_.file(std::string("from/") + name, "new"));
        folder_.file(std::string("to/") + name, "old");
    }
    notes_.answers = {{Choice::Skip, false}, {Choice::KeepBoth, true}};
    perform(Kind::Move, sources, folder_.path("to"));
    EXPECT_EQ(notes_.conflicts.size(), 2u);
    EXPECT_EQ(notes_.conflicts[0].sources_left, 2u);
    EXPECT_EQ(test::names_in(folder_.path("to")), Names({"a", "b", "b copy", "c", "c copy"}));
    EXPECT_EQ(test::names_in(folder_.path("from")), Names({"a"}));
}

TEST_F(EngineTest, StopLeavesTheRestWhereItIs) {
    const std::string one = folder_.file("from/one", "1"), two = folder_.file("from/two", "2");
    folder_.file("to/one", "old");
    notes_.answers = {{Choice::Stop, false}};
    const Report report = perform(Kind::Move, {one, two}, folder_.path("to"));
    EXPECT_TRUE(report.stopped);
    EXPECT_EQ(report.outcomes[1].reason, "stopped");
    EXPECT_EQ(test::names_in(folder_.path("from")), Names({"one", "two"}));
    EXPECT_EQ(test::names_in(folder_.path("to")), Names({"one"}));
}

TEST_F(EngineTest, WhatIsCancelledBeforeItBeginsTouchesNothing) {
    notes_.cancelled = true;
    const Report report = perform(Kind::Move, {folder_.file("from/a", "a")}, folder_.folder("to"));
    EXPECT_TRUE(report.stopped);
    EXPECT_EQ(report.outcomes[0].reason, "stopped");
    EXPECT_EQ(test::names_in(folder_.path("from")), Names({"a"}));
}

TEST_F(EngineTest, MoreFilesThanAreSyncedAtATimeAreAllCopied) {
    Names sources;
    for (int i = 0; i < 1030; i++)
        sources.push_back(folder_.file("from/" + std::to_string(i), "x"));
    perform(Kind::Copy, sources, folder_.folder("to"));
    EXPECT_EQ(test::state_of(folder_.path("to")), test::state_of(folder_.path("from")));
}

TEST_F(EngineTest, TwoSourcesOfOneNameConflictWithEachOther) {
    const std::string one = folder_.file("one/a", "1"), two = folder_.file("two/a", "2");
    notes_.answers = {{Choice::KeepBoth, false}};
    for (const Kind kind : {Kind::Copy, Kind::Move}) {
        const std::string to = folder_.folder(kind == Kind::Copy ? "copied" : "moved");
        perform(kind, {one, two}, to);
        EXPECT_EQ(test::read_file(to + "/a"), "1");
        EXPECT_EQ(test::read_file(to + "/a copy"), "2");
    }
}

TEST_F(EngineTest, PathsWithoutANameAreRefused) {
    const std::string to = folder_.folder("to");
    for (const char* path : {"", "/", "relative", "/tmp/..", "/tmp/.", "/tmp/"}) {
        EXPECT_EQ(perform_one(Kind::Move, path, to).reason, "the path names no file") << path;
    }
    const std::string cut = folder_.file("from/a", "a") + std::string("\0b", 2);
    EXPECT_EQ(perform_one(Kind::Move, cut, to).reason, "the path names no file");
    EXPECT_EQ(test::names_in(folder_.path("from")), Names({"a"}));
}

TEST_F(EngineTest, ATreeDeeperThanAnyPathIsCopied) {
    const std::string tree = folder_.folder("tree"), to = folder_.folder("to");
    const std::string name(200, 'd');
    int at = open(tree.c_str(), O_PATH | O_CLOEXEC);
    for (int depth = 0; depth < 50; depth++) {
        ASSERT_EQ(mkdirat(at, name.c_str(), 0755), 0);
        const int next = openat(at, name.c_str(), O_PATH | O_CLOEXEC);
        close(at);
        at = next;
    }
    close(openat(at, "bottom", O_WRONLY | O_CREAT | O_CLOEXEC, 0644));
    close(at);
    EXPECT_EQ(perform_one(Kind::Copy, tree, to).state, State::Done);
    EXPECT_EQ(notes_.last.items_done, 52u);
    operations::remove_tree(open(to.c_str(), O_PATH | O_CLOEXEC), "tree");
    EXPECT_EQ(test::names_in(to), Names());
    operations::remove_tree(open(folder_.path().c_str(), O_PATH | O_CLOEXEC), "tree");
}

TEST_F(EngineTest, FilesOfMoreFoldersThanCanBeOpenAreCopied) {
    Names sources;
    for (int index = 0; index < 400; index++) {
        const std::string name = std::to_string(index);
        sources.push_back(folder_.file("from" + name + "/" + name, name));
    }
    const std::string to = folder_.folder("to");
    rlimit limit, before;
    getrlimit(RLIMIT_NOFILE, &before);
    limit = before;
    limit.rlim_cur = 256;
    setrlimit(RLIMIT_NOFILE, &limit);
    const Report report = perform(Kind::Copy, sources, to);
    setrlimit(RLIMIT_NOFILE, &before);
    for (const Outcome& outcome : report.outcomes) EXPECT_EQ(outcome.reason, "");
    EXPECT_EQ(test::names_in(to).size(), sources.size());
}

TEST_F(EngineTest, ProgressCountsEverythingThatThereIs) {
    const std::string tree = folder_.folder("tree"), to = folder_.folder("to");
    folder_.file("tree/inner/a", std::string(1000, 'a'));
    folder_.file("tree/b", std::string(500, 'b'));
    perform_one(Kind::Copy, tree, to);
    EXPECT_EQ(notes_.last.items_done, 4u);
    EXPECT_EQ(notes_.last.bytes_done, 1500u);
}

// Tells the test's thread that the work has ended.
class Signal : public test::Notes {
  public:
    void ended(const Report& report) override {
        const std::lock_guard guard(mutex_);
        Notes::ended(report);
        changed_.notify_all();
    }
    void wait() {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return has_ended; });
    }

  private:
    std::mutex mutex_;
    std::condition_variable changed_;
};

TEST_F(EngineTest, TheCarrierWorksBesideItsCallerInOrder) {
    const std::string source = folder_.file("a", "a");
    folder_.folder("one");
    folder_.folder("two");
    auto first = std::make_shared<Signal>(), second = std::make_shared<Signal>();
    const auto engine = operations::make_engine(folder_.path("state"));
    engine->carry_out({Kind::Move, {source}, folder_.path("one"), false}, first);
    engine->carry_out({Kind::Move, {folder_.path("one/a")}, folder_.path("two"), false}, second);
    first->wait();
    second->wait();
    EXPECT_EQ(first->report.outcomes[0].state, State::Done);
    EXPECT_EQ(second->report.outcomes[0].target, folder_.path("two/a"));
}

}  // namespace
