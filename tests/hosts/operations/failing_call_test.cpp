// Each system call that an operation needs, failing every time: what is said, and that both the
// source and what was there before keep their bytes.
#include <gtest/gtest.h>
#include <errno.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "hosts/operations/failing_calls.h"
#include "hosts/operations/scene.h"
#include "support/temp_folder.h"

using operations::Kind;
using operations::Outcome;
using operations::State;

namespace {

struct Failure {
    long call;
    int error;
};
using Failures = std::vector<Failure>;

class FailingCall : public testing::Test {
  protected:
    void SetUp() override {
        setenv("XDG_DATA_HOME", folder_.folder("data").c_str(), 1);
        to_ = folder_.folder("to");
    }
    // The only outcome of the request where these calls fail. Its reason, and what it leaves, are
    // checked in the child.
    void perform(Kind kind, const std::string& source, const std::string& to,
                 const Failures& failures, const std::function<void(const Outcome&)>& check) {
        EXPECT_TRUE(test::in_child([&] {
            for (const Failure& failure : failures) {
                if (!test::fail_call(failure.call, failure.error)) return false;
            }
            test::Notes notes;
            const operations::Report report =
                operations::perform_request({kind, {source}, to, false}, notes, state_);
            check(report.outcomes.front());
            return true;
        }));
    }
    // Fails with these words, and leaves everything as it was.
    void expect_failure(Kind kind, const std::string& source, const Failures& failures,
                        const std::string& words) {
        const test::State before = test::state_of(folder_.path("from"));
        const test::State there = test::state_of(to_);
        perform(kind, source, to_, failures, [&](const Outcome& outcome) {
            EXPECT_EQ(outcome.state, State::Failed);
            EXPECT_NE(outcome.reason.find(words), std::string::npos) << outcome.reason;
        });
        EXPECT_EQ(test::state_of(folder_.path("from")), before) << words;
        EXPECT_EQ(test::state_of(to_), there) << words;
    }
    // Copies all the same, with the same bytes; says the remark.
    void expect_copy(const std::string& source, const Failures& failures,
                     const std::string& remark = "") {
        const std::string name = source.substr(source.rfind('/') + 1);
        const std::string to = folder_.folder("copies/" + std::to_string(copies_++));
        perform(Kind::Copy, source, to, failures, [&](const Outcome& outcome) {
            EXPECT_EQ(outcome.state, State::Done) << outcome.reason;
            EXPECT_EQ(outcome.reason, remark);
        });
        EXPECT_EQ(test::read_file(to + "/" + name), test::read_file(source));
    }
    // A file of data, a hole and data.
    std::string sparse_file() {
        const std::string path = folder_.file("from/sparse", std::string(70000, 'x'));
        const int file = open(path.c_str(), O_WRONLY | O_CLOEXEC);
        EXPECT_EQ(pwrite(file, "end", 3, 1 << 20), 3);
        close(file);
        return path;
    }

    test::TempFolder folder_;
    const std::string state_ = folder_.path("state");
    std::string to_;
    int copies_ = 0;
};

}  // namespace

TEST_F(FailingCall, ACopyThatCannotBeMadeWholeIsNotMade) {
    const std::string file = folder_.file("from/file", "bytes"),
                      large = folder_.file("from/large", std::string(300000, 'x'));
    const std::string sparse = sparse_file();
    const std::string link = folder_.link("from/link", "file");
    const std::string pipe = folder_.path("from/pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const struct {
        std::string source;
        Failures failures;
        const char* words;
    } rows[] = {
        {file, {{SYS_fchmod, EIO}}, "cannot set the permissions of"},
        {file, {{SYS_utimensat, EIO}}, "cannot set the times of"},
        {link, {{SYS_utimensat, EIO}}, "cannot set the times of"},
        {link, {{SYS_symlinkat, EIO}}, "cannot make the link"},
        {pipe, {{SYS_mknodat, EPERM}}, "cannot make the FIFO or socket"},
        {file, {{SYS_pread64, EIO}}, "Input/output error"},
        {file, {{SYS_write, ENOSPC}}, "No space left on device"},
        {large, {{SYS_copy_file_range, EIO}}, "Input/output error"},
        {large, {{SYS_copy_file_range, EXDEV}, {SYS_pread64, EIO}}, "Input/output error"},
        {large, {{SYS_copy_file_range, EXDEV}, {SYS_lseek, EIO}}, "Input/output error"},
        {sparse, {{SYS_ftruncate, EIO}}, ""},
        {file, {{SYS_getrandom, EIO}}, "cannot tell where the destination is"},
        {file, {{SYS_flock, EWOULDBLOCK}}, "cannot write"},
        {file, {{SYS_renameat2, EIO}}, "cannot write"},
        {file, {{SYS_renameat2, EINVAL}, {SYS_linkat, EIO}}, "cannot write"},
        {file, {{SYS_faccessat2, EROFS}, {SYS_faccessat, EROFS}}, "cannot put anything into"},
    };
    for (const auto& row : rows) expect_failure(Kind::Copy, row.source, row.failures, row.words);
}

TEST_F(FailingCall, AnAttributeThatFindsNoRoomEndsTheCopy) {
    const std::string file = folder_.file("from/file", "bytes");
    ASSERT_EQ(setxattr(file.c_str(), "user.note", "value", 5, 0), 0);
    for (const int error : {ENOSPC, EDQUOT, E2BIG}) {
        expect_failure(Kind::Copy, file, {{SYS_fsetxattr, error}},
                       "no room for the extended attributes of");
    }
}

TEST_F(FailingCall, AnAttributeThatCannotBeKeptIsRemarked) {
    const std::string file = folder_.file("from/file", "bytes");
    ASSERT_EQ(setxattr(file.c_str(), "user.note", "value", 5, 0), 0);
    const char remark[] = "the destination cannot keep extended attributes or access lists";
    expect_copy(file, {{SYS_fsetxattr, EOPNOTSUPP}}, remark);
    expect_copy(file, {{SYS_fgetxattr, EIO}}, remark);
    expect_copy(file, {{SYS_fgetxattr, ENODATA}});
    expect_copy(file, {{SYS_flistxattr, EIO}});
    expect_copy(file, {{SYS_flistxattr, ERANGE}});
}

TEST_F(FailingCall, MoreAttributesThanUsualAreKept) {
    const std::string file = folder_.file("from/file", "bytes");
    for (int i = 0; i < 12; i++) {
        const std::string name = "user." + std::string(100, static_cast<char>('a' + i));
        ASSERT_EQ(setxattr(file.c_str(), name.c_str(), "v", 1, 0), 0);
    }
    expect_copy(file, {});
    char names[4096];
    EXPECT_EQ(listxattr(folder_.path("copies/0/file").c_str(), names, sizeof names), 12 * 106);
}

TEST_F(FailingCall, WhatTheUserMayNotChangeIsLeftAsItIs) {
    const std::string file = folder_.file("from/file", "bytes");
    const std::string link = folder_.link("from/link", file);
    ASSERT_EQ(chmod(file.c_str(), 06755), 0);
    expect_copy(file, {{SYS_fchown, EPERM}});
    struct stat copy = {};
    ASSERT_EQ(stat(folder_.path("copies/0/file").c_str(), &copy), 0);
    EXPECT_EQ(copy.st_mode & 07777, 0755u) << "another owner's program must not run as the user";
    expect_copy(file, {{SYS_fchmod, EPERM}});
    expect_copy(file, {{SYS_utimensat, EPERM}});
    expect_copy(link, {{SYS_utimensat, EPERM}});
}

TEST_F(FailingCall, AKernelThatDoesNotCopyIsDoneWithout) {
    const std::string large = folder_.file("from/large", std::string(300000, 'x'));
    for (const int error : {EXDEV, EINVAL, ENOSYS, EOPNOTSUPP, EBADF, EPERM, ETXTBSY}) {
        expect_copy(large, {{SYS_copy_file_range, error}});
    }
    expect_copy(sparse_file(), {{SYS_copy_file_range, EXDEV}});
}

TEST_F(FailingCall, ACopyIsMadeAlsoWhereNoThreadIsToBeHad) {
    expect_copy(folder_.file("from/file", "bytes"), {{SYS_clone3, EAGAIN}, {SYS_clone, EAGAIN}});
}

TEST_F(FailingCall, AMoveWhoseJournalCannotBeLockedIsMadeAndCannotBeUndone) {
    const std::string file = folder_.file("from/file", "bytes");
    EXPECT_TRUE(test::in_child([&] {
        if (!test::fail_call(SYS_flock, EWOULDBLOCK)) return false;
        test::Notes notes;
        const auto report =
            operations::perform_request({Kind::Move, {file}, to_, false}, notes, state_);
        EXPECT_EQ(report.outcomes.front().state, State::Done);
        EXPECT_EQ(report.operation, "");
        return true;
    }));
    EXPECT_EQ(test::read_file(to_ + "/file"), "bytes");
}

TEST_F(FailingCall, ADiskWithoutTheNewRenameKeepsWhatIsThere) {
    const Failures ways[] = {{{SYS_renameat2, EINVAL}},
                             {{SYS_renameat2, EINVAL}, {SYS_linkat, EPERM}},
                             {{SYS_renameat2, EINVAL}, {SYS_linkat, EOPNOTSUPP}},
                             {{SYS_renameat2, EINVAL}, {SYS_linkat, EMLINK}}};
    for (const Failures& way : ways) {
        const std::string file = folder_.file("from/file", "bytes");
        perform(Kind::Move, file, to_, way, [](const Outcome& outcome) {
            EXPECT_EQ(outcome.state, State::Done) << outcome.reason;
        });
        EXPECT_EQ(test::read_file(to_ + "/file"), "bytes");
        EXPECT_NE(access(file.c_str(), F_OK), 0);
        folder_.file("from/file", "others");
        perform(Kind::Move, file, to_, way, [](const Outcome& outcome) {
            EXPECT_EQ(outcome.state, State::Skipped) << "nobody answers the question";
        });
        EXPECT_EQ(test::read_file(to_ + "/file"), "bytes");
        EXPECT_EQ(test::read_file(file), "others");
        unlink((to_ + "/file").c_str());
    }
}

TEST_F(FailingCall, AMoveWhoseAnswerIsLostAndThatWasNotDoneFails) {
    const std::string file = folder_.file("from/file", "bytes");
    for (const int error : {EIO, ETIMEDOUT, EINTR, ESTALE, ENOTCONN, EREMOTEIO, EACCES}) {
        expect_failure(Kind::Move, file, {{SYS_renameat2, error}}, "cannot move \"file\"");
    }
}

TEST_F(FailingCall, ATrashThatCannotBeWrittenKeepsTheFile) {
    const std::string file = folder_.file("from/file", "bytes");
    expect_failure(Kind::Trash, file, {{SYS_mkdir, EACCES}}, "cannot make");
    expect_failure(Kind::Trash, file, {{SYS_write, ENOSPC}}, "No space left on device");
    expect_failure(Kind::Trash, file, {{SYS_renameat2, EACCES}}, "Permission denied");
    EXPECT_EQ(test::names_in(folder_.path("data/Trash/info")), std::vector<std::string>());
}

TEST_F(FailingCall, AnAliasThatCannotBeMadeIsSaid) {
    expect_failure(Kind::Alias, folder_.file("from/file", "bytes"), {{SYS_symlinkat, ENOSPC}},
                   "cannot make an alias of \"file\"");
}
