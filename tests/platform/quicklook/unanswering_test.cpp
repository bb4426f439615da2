// Paths and programs that stop answering, or do not exist.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sched.h>
#include <seccomp.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>

#include "children.h"
#include "quicklook/background.h"
#include "quicklook/thumbnail_maker.h"
#include "sample_files.h"
#include "support/silent_file_system.h"
#include "support/temp_folder.h"

namespace {

using namespace thumbnails;

enum { all_well = 0, cannot_mount = 1, had_a_picture = 2, child_left = 4, no_answer_elsewhere = 5 };

const Box box = {256, 256};

Settings usual_settings(bool use_bubblewrap) {
    Settings settings;
    settings.helper_folder = helper_folder();
    settings.use_bubblewrap = use_bubblewrap;
    return settings;
}

Settings impatient_settings(bool use_bubblewrap) {
    Settings settings = usual_settings(use_bubblewrap);
    settings.stat_seconds = 1;
    settings.decoder_seconds = 1;
    return settings;
}

// Ends the server, which lets every waiting caller go.
void end_server(pid_t server) {
    kill(server, SIGKILL);
    waitpid(server, nullptr, 0);
}

// Asks for a thumbnail on a path that does not answer. Runs in a process that ends afterwards.
int ask(const std::string& folder, test::Silence silence, bool use_bubblewrap) {
    const pid_t server = test::mount_silent_file_system(folder, silence);
    if (!server) return cannot_mount;
    ThumbnailMaker maker(impatient_settings(use_bubblewrap));
    const bool has_picture = static_cast<bool>(maker.make(folder + "/a.png", box));
    end_server(server);
    if (has_picture) return had_a_picture;
    return test::no_child_is_left() ? all_well : child_left;
}

class Unanswering : public testing::Test {
  protected:
    // Runs `work` in a process that may mount file systems.
    template <typename Work>
    void expect_no_harm(const Work& work) {
        const std::string silent = folder.folder("silent");
        const pid_t child = fork();
        if (child == 0) {
            alarm(60);
            _exit(work(silent));
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFEXITED(status));
        if (WEXITSTATUS(status) == cannot_mount) {
            GTEST_SKIP() << "nobody may mount a file system here";
        }
        EXPECT_EQ(WEXITSTATUS(status), all_well);
    }
    void expect_no_thumbnail(test::Silence silence, bool use_bubblewrap) {
        expect_no_harm(
            [=](const std::string& silent) { return ask(silent, silence, use_bubblewrap); });
    }

    test::TempFolder folder;
};

TEST_F(Unanswering, AFileThatCannotBeOpenedHasNone) {
    expect_no_thumbnail(test::Silence::at_open, false);
    expect_no_thumbnail(test::Silence::at_open, true);
}

TEST_F(Unanswering, AFileThatCannotBeReadHasNone) {
    expect_no_thumbnail(test::Silence::at_read, false);
    expect_no_thumbnail(test::Silence::at_read, true);
}

TEST_F(Unanswering, AFileThatCannotEvenBeLookedAtHasNone) {
    expect_no_thumbnail(test::Silence::at_lookup, false);
}

// The test's own helper program.
class Helper : public testing::Test {
  protected:
    Picture make_with(const std::string& script, Settings settings = usual_settings(false)) {
        const std::string program = folder.file("delvio-thumbnailer", "#!/bin/sh\n" + script);
        chmod(program.c_str(), 0755);
        settings.helper_folder = folder.path();
        return ThumbnailMaker(settings).make(image, box);
    }
    void expect_nothing_from(const std::string& script,
                             const Settings& settings = usual_settings(false)) {
        EXPECT_FALSE(make_with(script, settings)) << script;
        EXPECT_TRUE(test::no_child_is_left()) << script;
        wait_for_background();
        std::filesystem::remove_all(std::string(getenv("XDG_CACHE_HOME")) + "/thumbnails");
    }

    test::TempFolder folder;
    const std::string image = folder.file("a.png", test::image_bytes(300, 300, "png"));
};

TEST_F(Helper, OneThatStopsIsEndedInTime) {
    expect_nothing_from("kill -STOP $$\n", impatient_settings(false));
}

TEST_F(Helper, OneThatIgnoresSignalsIsEndedWithItsChildren) {
    expect_nothing_from("trap '' TERM INT HUP\nsleep 300.125 &\nsleep 300.125\n",
                        impatient_settings(false));
    EXPECT_NE(system("pgrep -f 'sleep 300[.]125' >/dev/null"), 0);
}

TEST_F(Helper, OneThatTalksNonsenseHasNoPicture) {
    expect_nothing_from("head -c 100000 /dev/urandom >&3\n");
    expect_nothing_from("yes >&3\n");
    expect_nothing_from("exec 3>&-; sleep 300.5\n");
    expect_nothing_from("exit 0\n");
    expect_nothing_from("kill -SEGV $$\n");
}

// 31mhT, picture, then width and height: larger than the box, far too large, none at all.
TEST_F(Helper, APictureLargerThanTheBoxIsNotTaken) {
    const std::string head = "printf '1mhT\\2\\0\\0\\0";
    const std::string rest = "' >&3; head -c 200000000 /dev/zero >&3\n";
    expect_nothing_from(head + "\\1\\1\\0\\0\\1\\0\\0\\0" + rest);
    expect_nothing_from(head + "\\377\\377\\377\\377\\377\\377\\377\\377" + rest);
    expect_nothing_from(head + "\\0\\0\\0\\0\\0\\0\\0\\0" + rest);
    const Picture picture = make_with(head + "\\2\\0\\0\\0\\1\\0\\0\\0" + rest);
    EXPECT_EQ(picture.width, 2);
    EXPECT_EQ(picture.height, 1);
}

TEST_F(Helper, ItInheritsNothingOfOurs) {
    const int image_file = open(image.c_str(), O_RDONLY | O_CLOEXEC);
    const int secret = fcntl(image_file, F_DUPFD, 77);  // not closed on exec
    ASSERT_GE(secret, 77);
    sigset_t blocked, before;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &blocked, &before);
    setenv("LD_TEST_SECRET", "1", 1);
    const std::string report = folder.path("report");
    expect_nothing_from("{ ls /proc/$$/fd; env; grep SigBlk /proc/self/status; } >'" + report +
                        "'\n");
    unsetenv("LD_TEST_SECRET");
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    close(secret);
    close(image_file);
    const std::string text = test::read_file(report);
    EXPECT_NE(text.find("PATH="), std::string::npos);
    EXPECT_EQ(text.find("SECRET"), std::string::npos);
    EXPECT_EQ(text.find("HOME="), std::string::npos);
    EXPECT_NE(text.find("SigBlk:\t0000000000000000"), std::string::npos) << text;
    EXPECT_EQ(text.find("\n" + std::to_string(secret) + "\n"), std::string::npos) << text;
}

TEST_F(Helper, WithoutAHelperOnlyTheCacheIsLeft) {
    Settings settings = usual_settings(true);
    settings.helper_folder = "";
    EXPECT_FALSE(ThumbnailMaker(settings).make(image, box));
    settings.helper_folder = folder.path("missing");
    EXPECT_FALSE(ThumbnailMaker(settings).make(image, box));
    // The file was not at fault.
    ThumbnailMaker maker(usual_settings(false));
    EXPECT_TRUE(maker.make(image, box));
    EXPECT_TRUE(test::no_child_is_left());
}

TEST_F(Helper, WhereTheHostHasItsChildrenReapedThePicturesStillCome) {
    const auto before = signal(SIGCHLD, SIG_IGN);
    ThumbnailMaker maker(usual_settings(true));
    EXPECT_TRUE(maker.make(image, box));
    EXPECT_EQ(signal(SIGCHLD, before), SIG_IGN);
    EXPECT_TRUE(test::no_child_is_left());
}

TEST_F(Helper, AnEmptyOneStartsAndAnswers) {
    const ThumbnailMaker maker(usual_settings(true));
    for (const bool for_programs : {false, true}) {
        EXPECT_TRUE(maker.helper_starts(false, for_programs)) << for_programs;
    }
}

// Simulates a container that allows no namespaces.
bool forbid_namespaces() {
    const scmp_filter_ctx filter = seccomp_init(SCMP_ACT_ALLOW);
    bool is_well = seccomp_rule_add(filter, SCMP_ACT_ERRNO(EPERM), SCMP_SYS(unshare), 0) == 0;
    for (const uint64_t flag : {CLONE_NEWUSER, CLONE_NEWNS}) {
        const scmp_arg_cmp condition = {0, SCMP_CMP_MASKED_EQ, flag, flag};
        is_well = is_well && seccomp_rule_add_array(filter, SCMP_ACT_ERRNO(EPERM), SCMP_SYS(clone),
                                                    1, &condition) == 0;
    }
    is_well = is_well && seccomp_load(filter) == 0;
    seccomp_release(filter);
    return is_well;
}

// In a process of its own, which begins anew: a mere fork could inherit a lock that a thread holds.
TEST_F(Helper, WhereBubblewrapIsForbiddenThePicturesStillCome) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    const auto make_picture = [&] {
        if (!forbid_namespaces()) _exit(cannot_mount);
        ThumbnailMaker maker(usual_settings(true));
        if (maker.bubblewrap_works(false) || maker.bubblewrap_works(true)) _exit(had_a_picture);
        _exit(maker.make(image, box) ? all_well : no_answer_elsewhere);
    };
    EXPECT_EXIT(make_picture(), testing::ExitedWithCode(all_well), "");
}

}  // namespace
