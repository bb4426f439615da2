// The steps by themselves, in what operations rarely ask of them.
#include <gtest/gtest.h>
#include <errno.h>
#include <fcntl.h>
#include <stdlib.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "file_steps/file_data.h"
#include "file_steps/folder.h"
#include "file_steps/new_names.h"
#include "file_steps/temporaries.h"
#include "file_steps/trash.h"
#include "file_steps/visible_text.h"
#include "hosts/operations/scene.h"
#include "support/temp_folder.h"
#include "support/unprivileged.h"

using operations::Descriptor;

namespace {

using Names = std::vector<std::string>;

// Sets a variable of the environment, or removes it; the destructor puts it back.
class Variable {
  public:
    Variable(const char* name, const char* value) : name_(name) {
        if (const char* before = getenv(name)) before_ = before;
        has_before_ = getenv(name) != nullptr;
        value ? setenv(name, value, 1) : unsetenv(name);
    }
    ~Variable() { has_before_ ? setenv(name_, before_.c_str(), 1) : unsetenv(name_); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

  private:
    const char* name_;
    std::string before_;
    bool has_before_;
};

class FileSteps : public testing::Test {
  protected:
    Descriptor open_file(const std::string& name, const std::string& bytes) {
        return Descriptor(open(folder_.file(name, bytes).c_str(), O_RDWR | O_CLOEXEC));
    }
    bool remove(const std::string& name) {
        const Descriptor folder(open(folder_.path().c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
        return operations::remove_tree(folder.get(), name.c_str());
    }

    test::TempFolder folder_;
};

bool go_on(uint64_t) { return true; }
bool stop(uint64_t) { return false; }

}  // namespace

TEST_F(FileSteps, AFileOfAnotherSizeThanExpectedIsNotCopied) {
    const Descriptor source = open_file("source", "bytes"), target = open_file("target", "");
    for (const uint64_t size : {4, 6}) {
        EXPECT_EQ(operations::copy_data(source.get(), target.get(), size, 8, go_on), ESTALE);
    }
    EXPECT_EQ(test::read_file(folder_.path("target")), "");
}

TEST_F(FileSteps, CopyingAndComparingStopWhenTheyAreTold) {
    const std::string bytes(300000, 'x');
    const Descriptor source = open_file("source", bytes), target = open_file("target", "");
    EXPECT_EQ(operations::copy_data(source.get(), target.get(), bytes.size(), 600, stop),
              ECANCELED);
    const Descriptor same = open_file("same", bytes);
    EXPECT_EQ(operations::compare_data(source.get(), same.get(), stop), ECANCELED);
    EXPECT_EQ(operations::compare_data(source.get(), same.get(), go_on), 0);
}

TEST_F(FileSteps, FilesDifferInTheirBytesAndInTheirLength) {
    const Descriptor one = open_file("one", "bytes"), longer = open_file("longer", "bytes!"),
                     other = open_file("other", "BYTES");
    EXPECT_EQ(operations::compare_data(one.get(), longer.get(), go_on), EBADMSG);
    EXPECT_EQ(operations::compare_data(longer.get(), one.get(), go_on), EBADMSG);
    EXPECT_EQ(operations::compare_data(one.get(), other.get(), go_on), EBADMSG);
}

TEST_F(FileSteps, FoldersThatTheirUserHasClosedAreRemoved) {
    for (const mode_t mode : {0, 0500}) {
        folder_.file("tree/inside/file", "bytes");
        ASSERT_EQ(chmod(folder_.path("tree/inside").c_str(), mode), 0);
        ASSERT_EQ(chmod(folder_.path("tree").c_str(), mode), 0);
        const test::Unprivileged obeying;
        EXPECT_TRUE(remove("tree")) << mode;
    }
    EXPECT_EQ(test::names_in(folder_.path()), Names());
}

TEST_F(FileSteps, AFolderIsMadeWithItsParentsUnlessAFileIsInTheWay) {
    EXPECT_TRUE(operations::make_folders(folder_.path("a/b/c")));
    EXPECT_TRUE(operations::make_folders(folder_.path("a/b/c")));
    folder_.file("a/file", "bytes");
    EXPECT_FALSE(operations::make_folders(folder_.path("a/file/b/c")));
    EXPECT_EQ(operations::parent_of("name"), "/");
}

TEST_F(FileSteps, TheStateIsWhereTheEnvironmentSays) {
    {
        const Variable state("XDG_STATE_HOME", "/state"), home("HOME", "/home/x");
        EXPECT_EQ(operations::default_state_folder(), "/state/delvio");
    }
    for (const char* value : {static_cast<const char*>(nullptr), "relative", ""}) {
        const Variable state("XDG_STATE_HOME", value), home("HOME", "/home/x");
        EXPECT_EQ(operations::default_state_folder(), "/home/x/.local/state/delvio");
    }
    const Variable state("XDG_STATE_HOME", nullptr), home("HOME", nullptr);
    EXPECT_EQ(operations::default_state_folder(), "/.local/state/delvio");
}

TEST_F(FileSteps, WithoutAFolderOfDataTheTrashIsInTheHome) {
    for (const char* value : {static_cast<const char*>(nullptr), "relative"}) {
        const Variable data("XDG_DATA_HOME", value);
        const Variable home("HOME", folder_.path("home").c_str());
        test::Notes notes;
        const auto report = operations::perform_request(
            {operations::Kind::Trash, {folder_.file("from/a", "a")}, "", false}, notes,
            folder_.path("state"));
        EXPECT_EQ(report.outcomes.front().state, operations::State::Done)
            << report.outcomes.front().reason;
    }
    EXPECT_EQ(test::names_in(folder_.path("home/.local/share/Trash/files")), Names({"a", "a.2"}));
}

TEST_F(FileSteps, AVolumesSharedTrashHasAFolderForEachUser) {
    const std::string volume = folder_.folder("volume");
    const bool mounted = test::in_child([&] {
        if (!test::mount_small_volume(volume, 1 << 20)) return false;
        const std::string file = folder_.file("volume/a", "bytes");
        EXPECT_EQ(chmod(folder_.folder("volume/.Trash").c_str(), 01777), 0);
        test::Notes notes;
        const auto report = operations::perform_request(
            {operations::Kind::Trash, {file}, "", false}, notes, folder_.path("state"));
        const std::string trash = volume + "/.Trash/" + std::to_string(getuid());
        EXPECT_EQ(report.outcomes.front().target, trash + "/files/a")
            << report.outcomes.front().reason;
        EXPECT_EQ(test::read_file(trash + "/files/a"), "bytes");
        return true;
    });
    if (!mounted) GTEST_SKIP() << "no volume can be mounted";
}

TEST_F(FileSteps, OnlyAWholePathInAFolderOfFilesIsAPlaceInATrash) {
    using operations::is_place_in_trash;
    EXPECT_TRUE(is_place_in_trash({"/t/files/a", "/t/info/a.trashinfo"}));
    EXPECT_FALSE(is_place_in_trash({"/t/files/", "/t/info/.trashinfo"}));
    EXPECT_FALSE(is_place_in_trash({"/t/files/.", "/t/info/..trashinfo"}));
    EXPECT_FALSE(is_place_in_trash({"/t/files/..", "/t/info/...trashinfo"}));
    EXPECT_FALSE(is_place_in_trash({"t/files/a", "t/info/a.trashinfo"}));
    EXPECT_FALSE(is_place_in_trash({"/t/other/a", "/t/info/a.trashinfo"}));
}

TEST_F(FileSteps, OnlyTheirOwnNamesAreJournalsOfTemporaries) {
    const Variable run_time("XDG_RUNTIME_DIR", nullptr);
    const std::string digits(15, '0');
    const Names others = {"delvio-" + digits + "g", std::string(digits.size() + 7, 'x'),
                          "new-" + digits, "new-delvio"};
    for (const std::string& name : others) folder_.file("state/temporaries/" + name, "");
    operations::remove_left_temporaries(folder_.path("state"));
    Names sorted = others;
    std::sort(sorted.begin(), sorted.end());
    EXPECT_EQ(test::names_in(folder_.path("state/temporaries")), sorted);
}

TEST_F(FileSteps, ACharacterThatIsWrittenTooLongIsEscaped) {
    EXPECT_EQ(operations::quoted_name("/a\xe0\x80\xaf"), "\"a\\xe0\\x80\\xaf\"");
}

TEST_F(FileSteps, AnExtensionHasSixteenCharactersAtMost) {
    EXPECT_EQ(operations::copy_name("a." + std::string(15, 'x'), false, 1),
              "a copy." + std::string(15, 'x'));
    EXPECT_EQ(operations::copy_name("a." + std::string(16, 'x'), false, 1),
              "a." + std::string(16, 'x') + " copy");
    // Bytes that are no text are cut at the limit.
    EXPECT_EQ(operations::copy_name(std::string(255, '\x80'), false, 1),
              std::string(250, '\x80') + " copy");
}

TEST_F(FileSteps, ACopyThatDiffersKeepsTheOriginalOfAMove) {
    const test::OtherVolume volume(folder_.path());
    if (volume.path().empty()) GTEST_SKIP() << "/dev/shm is no file system of its own";
    const std::string source = folder_.file("from/a", "bytes");
    test::Notes notes;
    // The copy is there under its temporary name when its bytes have been counted.
    notes.at_progress = [&](const operations::Progress&) {
        for (const std::string& name : test::names_in(volume.path())) {
            const Descriptor copy(open((volume.path() + "/" + name).c_str(), O_WRONLY | O_CLOEXEC));
            if (copy) (void)!pwrite(copy.get(), "X", 1, 0);
        }
    };
    const auto report = operations::perform_request(
        {operations::Kind::Move, {source}, volume.path(), false}, notes, folder_.path("state"));
    EXPECT_EQ(report.outcomes.front().state, operations::State::Failed);
    EXPECT_EQ(report.outcomes.front().reason, "the copy of \"a\" differs from the original");
    EXPECT_EQ(test::read_file(source), "bytes");
    EXPECT_EQ(test::names_in(volume.path()), Names());
}

TEST_F(FileSteps, AFileThatOnlyItsOwnerMayRemoveIsNotCopiedForAMove) {
    const test::OtherVolume volume(folder_.path());
    if (volume.path().empty()) GTEST_SKIP() << "/dev/shm is no file system of its own";
    if (geteuid() != 0) GTEST_SKIP() << "only root can be two users";
    constexpr uid_t other_user = 65534, third_user = 65533;
    char to[] = "/tmp/delvio-test.XXXXXX";
    ASSERT_NE(mkdtemp(to), nullptr);
    ASSERT_EQ(chmod(to, 0777), 0);
    ASSERT_EQ(chmod(volume.path().c_str(), 01777), 0);
    const struct {
        uid_t folder, file;
        bool can_move;
    } rows[] = {{0, 0, false}, {0, other_user, true}, {other_user, third_user, true}};
    for (const auto& row : rows) {
        const std::string source = volume.path() + "/a";
        close(open(source.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644));
        ASSERT_EQ(chown(volume.path().c_str(), row.folder, 0), 0);
        ASSERT_EQ(chown(source.c_str(), row.file, 0), 0);
        EXPECT_TRUE(test::in_child([&] {
            if (seteuid(other_user) != 0) return false;
            test::Notes notes;
            const std::string state = std::string(to) + "/state";
            const auto report = operations::perform_request(
                {operations::Kind::Move, {source}, to, false}, notes, state);
            EXPECT_EQ(report.outcomes.front().reason,
                      row.can_move ? "" : "cannot remove \"a\": Operation not permitted");
            return true;
        }));
        EXPECT_EQ(access(source.c_str(), F_OK) == 0, !row.can_move);
        unlink((std::string(to) + "/a").c_str());
    }
    const Descriptor parent(open("/tmp", O_PATH | O_DIRECTORY | O_CLOEXEC));
    operations::remove_tree(parent.get(), to + 5);
}
