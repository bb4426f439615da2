// A disk that stops answering after an open menu has listed it.
#include <AppKit/AppKit.h>
#include <host/opening_files.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "corefoundation/folder_question.h"
#include "corefoundation/patient_stat.h"
#include "desktop/desk.h"
#include "support/silent_file_system.h"

// The plug-in's class, which is known only by name.
@interface NSObject (HoverWindow)
+ (id)sharedDelvio;
- (BOOL)isVisible;
@end

namespace {

using test::Steps;

// Lets the disk answer again after a long time. A menu that waits for the disk until then has
// failed.
class Rescue {
  public:
    explicit Rescue(pid_t server) : thread_([this, server] { run(server); }) {}
    ~Rescue() { end(); }
    // Whether it was needed.
    bool end() {
        {
            const std::lock_guard guard(lock_);
            over_ = true;
        }
        changed_.notify_one();
        if (thread_.joinable()) thread_.join();
        return needed_;
    }

  private:
    void run(pid_t server) {
        std::unique_lock guard(lock_);
        if (changed_.wait_for(guard, std::chrono::seconds(25), [this] { return over_; })) return;
        needed_ = true;
        kill(server, SIGCONT);
    }

    std::mutex lock_;
    std::condition_variable changed_;
    bool over_ = false, needed_ = false;
    std::thread thread_;
};

class SilentDisk : public test::Desk {
  protected:
    // The first time, this runs before the first thread starts. All suites have one disk: this
    // process enters its own mounts only once.
    static void SetUpTestSuite() {
        static const Mounted mounted;
        Desk::SetUpTestSuite();
    }

    void SetUp() override {
        if (!server) GTEST_SKIP() << "nobody may mount a file system here";
        select({disk});
        set_preference("hoverPreviewsInterval", "300");
    }
    void TearDown() override {
        if (!server) return;
        go_on();
        while (files::open_questions()) usleep(1000);
        set_preference("hoverPreviewsInterval", "1000");
    }

    static void stop() {
        kill(server, SIGSTOP);
        waitpid(server, nullptr, WUNTRACED);
    }
    static void go_on() { kill(server, SIGCONT); }

    // Runs a popup in which the disk is listed, stops answering, and then `then` follows.
    void in_silence(const std::function<void(Steps&)>& then) {
        Rescue rescue(server);
        pop_up([&](Steps& steps) {
            hover_along(steps, {"disk"});
            steps.when(
                "the level", [this] { return is_open(1); }, [] { stop(); });
            then(steps);
        });
        EXPECT_FALSE(rescue.end()) << "the menu has waited for the disk";
        input().let_go();
    }
    // Rests the pointer on a row until it has been decided whether the hover window appears.
    void rest_on(Steps& steps, const std::string& name) {
        steps
            .when(
                "the rows", [] { return true; }, [this, name] { hover(name); })
            .when("the wait on " + name,
                  [this, name] { return highlighted(1) == name && pending_timer(); })
            .when("its end", [] { return !pending_timer(); });
    }

    struct Mounted {
        Mounted() {
            place = new test::TempFolder;
            disk = place->folder("disk");
            server = test::mount_silent_file_system(disk, test::Silence::when_stopped);
        }
        ~Mounted() {
            if (server) {
                kill(server, SIGKILL);
                waitpid(server, nullptr, 0);
                umount2(disk.c_str(), MNT_DETACH);
            }
            delete place;
        }
    };

    static id controller() { return [NSClassFromString(@"DVDelvio") sharedDelvio]; }
    static id window_controller() { return [controller() valueForKey:@"previewWindowController"]; }
    static bool is_hovering() { return [window_controller() isVisible]; }
    static NSTimer* pending_timer() { return [controller() valueForKey:@"hoverPreviewTimer"]; }

    static test::TempFolder* place;
    static std::string disk;
    static pid_t server;
};

test::TempFolder* SilentDisk::place;
std::string SilentDisk::disk;
pid_t SilentDisk::server;

}  // namespace

TEST_F(SilentDisk, WhileItAnswersItsFilesHaveAHoverWindow) {
    bool shown = false;
    Titles rows;
    pop_up([&](Steps& steps) {
        hover_along(steps, {"disk"});
        steps.when(
            "the level", [this] { return is_open(1); }, [&] { rows = titles(1); });
        rest_on(steps, "a.txt");
        steps.when(
            "the window", [] { return is_hovering(); },
            [&] {
                shown = true;
                escape();
            });
    });
    EXPECT_EQ(rows, Titles({"a.txt", "b.txt", "c.txt"}));
    EXPECT_TRUE(shown);
}

TEST_F(SilentDisk, RestingOnItsFilesLeavesTheMenuUsable) {
    bool shown = true;
    size_t questions = 0;
    std::string last;
    in_silence([&](Steps& steps) {
        for (const std::string& name : {"a.txt", "b.txt", "c.txt"}) rest_on(steps, name);
        steps
            .when(
                "the last row", [] { return true; },
                [&] {
                    shown = is_hovering();
                    questions = files::open_questions();
                    hover("Open");
                })
            .when(
                "a row of another menu", [this] { return highlighted(0) == "Open"; },
                [&] {
                    last = highlighted(0);
                    escape();
                });
    });
    EXPECT_FALSE(shown);
    EXPECT_EQ(questions, 1u) << "the disk was asked, and once";
    EXPECT_EQ(last, "Open");
}

TEST_F(SilentDisk, ItsPreviewSubmenusLeaveTheMenuUsable) {
    bool opened = false;
    in_silence([&](Steps& steps) {
        steps
            .when(
                "the rows", [] { return true; },
                [this] {
                    input().key_down("Alt_R");
                    hover("a.txt");
                })
            .when(
                "the preview", [this] { return highlighted(1) == "a.txt" && is_open(2); },
                [this] { hover("b.txt"); })
            .when(
                "the next preview", [this] { return highlighted(1) == "b.txt" && is_open(2); },
                [&] {
                    opened = true;
                    escape();
                });
    });
    EXPECT_TRUE(opened);
}

TEST_F(SilentDisk, WhenItAnswersAgainItsFilesHaveTheirHoverWindowAgain) {
    bool shown_in_silence = true, shown = false;
    in_silence([&](Steps& steps) {
        rest_on(steps, "a.txt");
        steps.when(
            "no window", [] { return true; },
            [&] {
                shown_in_silence = is_hovering();
                go_on();
            });
        steps.when("the late answer", [] { return files::open_questions() == 0; });
        rest_on(steps, "b.txt");
        steps.when(
            "the window", [] { return is_hovering(); },
            [&] {
                shown = true;
                escape();
            });
    });
    EXPECT_FALSE(shown_in_silence);
    EXPECT_TRUE(shown);
}

// Its first opening comes while it is silent.
class SilentLevel : public SilentDisk {
  protected:
    // Runs a popup in which the pointer rests on the disk's row only when the disk is silent.
    void in_silence_from_the_start(const std::function<void(Steps&)>& then) {
        Rescue rescue(server);
        pop_up([&](Steps& steps) {
            steps
                .when(
                    "the menu", [this] { return is_open(0); },
                    [this] {
                        stop();
                        hover("disk");
                    })
                .when("the row that stands for the others",
                      [this] { return titles(1) == Titles({"Loading..."}); });
            then(steps);
        });
        EXPECT_FALSE(rescue.end()) << "the menu has waited for the disk";
        input().let_go();
    }
};

TEST_F(SilentLevel, ItsRowsComeWhenTheyComeAndUntilThenARowSaysHowItIs) {
    const Titles rows = {"a.txt", "b.txt", "c.txt"};
    bool is_enabled = true;
    std::string other;
    in_silence_from_the_start([&](Steps& steps) {
        steps
            .when(
                "the other rows", [] { return true; },
                [&] {
                    is_enabled = [item("Loading...") isEnabled];
                    hover("Open");
                })
            .when(
                "another row", [this] { return highlighted(0) == "Open" && !is_open(1); },
                [&] {
                    other = highlighted(0);
                    hover("disk");
                })
            .when("the row again", [this] { return titles(1) == Titles({"Loading..."}); })
            .when(
                "the end of patience", [this] { return titles(1) == Titles({"Not responding"}); },
                [] { go_on(); })
            .when(
                "the rows", [&] { return titles(1) == rows; }, [this] { escape(); });
    });
    EXPECT_FALSE(is_enabled);
    EXPECT_EQ(other, "Open");
}

TEST_F(SilentLevel, EscapeClosesTheMenuWhileItIsSilent) {
    bool is_loading = false;
    in_silence_from_the_start([&](Steps& steps) {
        steps.when(
            "the time to escape", [] { return true; },
            [&] {
                is_loading = titles(1) == Titles({"Loading..."});
                escape();
            });
    });
    EXPECT_TRUE(is_loading);
}

// It is silent before the menu opens.
class SilentBeforeTheMenu : public SilentDisk {
  protected:
    static constexpr auto loading = "Loading...";

    // Runs a popup while the disk is silent, in which the last row of `path` is the disk's and has
    // no rows yet; its rows come when the disk answers again.
    void pop_up_in_silence(const Titles& path) {
        const size_t level = path.size();
        // What it has answered to the test before is not believed any more.
        while (files::FolderQuestion::has_answered_lately(disk)) usleep(1000);
        usleep(300000);  // longer than any other answer counts
        stop();
        Rescue rescue(server);
        Titles rows;
        pop_up([&](Steps& steps) {
            hover_along(steps, path);
            steps.when(
                "the row that stands for the others",
                [&] { return titles(level) == Titles({loading}); }, [] { go_on(); });
            steps.when(
                "the rows", [&] { return is_open(level) && titles(level) != Titles({loading}); },
                [&] {
                    rows = titles(level);
                    escape();
                });
        });
        EXPECT_FALSE(rescue.end()) << "the menu has waited for the disk";
        input().let_go();
        std::erase(rows, "-");
        std::erase(rows, "Move selection here");
        EXPECT_EQ(rows, Titles({"a.txt", "b.txt", "c.txt"}));
    }
};

TEST_F(SilentBeforeTheMenu, ASelectedFolderHasItsRow) { pop_up_in_silence({"disk"}); }

TEST_F(SilentBeforeTheMenu, OneOfTheUsersFoldersHasItsRow) {
    select({folder_.file("note.txt", "text")});
    set_preference("folders", "(\"" + disk + "\")");
    pop_up_in_silence({"disk"});
    set_preference("folders", "()");
}

TEST_F(SilentBeforeTheMenu, ALinkToItHasItsRow) {
    const std::string links = folder_.folder("links");
    ASSERT_EQ(symlink(disk.c_str(), (links + "/to it").c_str()), 0);
    ASSERT_EQ(symlink((disk + "/a.txt").c_str(), (links + "/to a file").c_str()), 0);
    select({links});
    pop_up_in_silence({"links", "to it"});
}

TEST_F(SilentBeforeTheMenu, TheFolderInWhichItBeginsIsListed) {
    select({place->path()});
    const std::string name = place->path().substr(place->path().rfind('/') + 1);
    pop_up_in_silence({name, "disk"});
}

TEST_F(SilentBeforeTheMenu, AFileThatIsPickedInSilenceFailsAndSaysWhy) {
    static std::string told;
    told.clear();
    set_open_failure_listener([](const char* file, const char*, const char* reason) {
        told = std::string(file) + ": " + reason;
    });
    in_silence([&](Steps& steps) {
        steps.when(
            "the rows", [] { return true; }, [this] { click("b.txt"); });
    });
    set_open_failure_listener(nullptr);
    EXPECT_EQ(told, disk + "/b.txt: its disk does not respond");
}

// The stock answer, however long it takes. The disk is silent for three times as long as a menu
// would wait for it.
TEST_F(SilentDisk, WithoutAMenuTheAnswerIsWaitedFor) {
    stop();
    std::thread later([] {
        usleep(600000);
        go_on();
    });
    BOOL is_folder = YES;
    NSString* path = [NSString stringWithUTF8String:(disk + "/a.txt").c_str()];
    EXPECT_TRUE([[NSFileManager defaultManager] fileExistsAtPath:path isDirectory:&is_folder]);
    EXPECT_FALSE(is_folder);
    later.join();
}
