// Hostile files and programs, with both ways to run the helper: inside bubblewrap, where that
// works, and restricted only by itself.
#include <fcntl.h>
#include <glib.h>
#include <gtest/gtest.h>
#include <linux/landlock.h>
#include <netinet/in.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

#include "children.h"
#include "quicklook/background.h"
#include "quicklook/thumbnail_maker.h"
#include "sample_files.h"
#include "support/heap.h"
#include "support/temp_folder.h"
#include "support/waiting.h"

namespace {

using namespace thumbnails;
namespace fs = std::filesystem;

const size_t megabyte = 1024 * 1024;

// The memory of this process, in bytes.
size_t resident_memory() {
    std::ifstream file("/proc/self/statm");
    size_t all = 0, resident = 0;
    file >> all >> resident;
    return resident * static_cast<size_t>(sysconf(_SC_PAGESIZE));
}

bool has_landlock() {
    return syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION) > 0;
}

// A script that makes a picture of 200 by 100. The script contains the picture, because a
// thumbnailer cannot reach the script's own folder.
std::string make_picture_script() {
    const std::string bytes = test::image_bytes(200, 100, "png");
    gchar* text = g_base64_encode(reinterpret_cast<const guchar*>(bytes.data()), bytes.size());
    const std::string script = "base64 -d >\"$3\" <<'END'\n" + std::string(text) + "\nEND\n";
    g_free(text);
    return script;
}

class HostileFiles : public testing::TestWithParam<bool> {
  protected:
    static Settings quick_settings() {
        Settings settings;
        settings.helper_folder = helper_folder();
        settings.use_bubblewrap = GetParam();
        settings.processor_seconds = 1;
        return settings;
    }

    HostileFiles()
        : cache(std::string(getenv("XDG_CACHE_HOME")) + "/thumbnails"),
          programs(std::string(getenv("XDG_DATA_HOME")) + "/thumbnailers"),
          maker(quick_settings()) {
        fs::remove_all(cache);
        fs::create_directories(programs);
        // Loads first what is loaded at first use, so that it does not count.
        EXPECT_TRUE(maker.make(files.file("warm.png", test::image_bytes(300, 300, "png")), box));
        wait_for_background();
    }
    ~HostileFiles() override {
        wait_for_background();
        fs::remove_all(programs);
    }

    // A program that is the thumbnailer of a type that no other program handles.
    void install(const std::string& script) {
        const std::string program = files.file("thumbnailer", "#!/bin/sh\n" + script);
        chmod(program.c_str(), 0755);
        std::ofstream(programs + "/test.thumbnailer")
            << "[Thumbnailer Entry]\nTryExec=" << program << "\nExec=" << program
            << " %s %i %o %u\nMimeType=application/x-blender;\n";
    }
    std::string subject() { return files.file("a.blend", "BLENDER-v280"); }

    // Expects no picture, no more memory, and no process left.
    void expect_nothing_from(const std::string& path) { expect_nothing_from(path, maker); }
    void expect_nothing_from(const std::string& path, ThumbnailMaker& maker) {
        const size_t heap = test::memory_in_use(), memory = resident_memory();
        EXPECT_FALSE(maker.make(path, box));
        EXPECT_LT(test::memory_in_use(), heap + megabyte);
        EXPECT_LT(resident_memory(), memory + 8 * megabyte);
        expect_no_child();
    }
    void expect_no_child() {
        EXPECT_TRUE(test::no_child_is_left());
        expect_no_folder();
    }
    // The folders that thumbnailers write to.
    void expect_no_folder() {
        for (const auto& entry : fs::directory_iterator(getenv("TMPDIR"))) {
            EXPECT_EQ(entry.path().filename().string().find("delvio-thumbnail"), std::string::npos);
        }
    }
    static bool is_running(const std::string& pattern) {
        return system(("pgrep -f '" + pattern + "' >/dev/null").c_str()) == 0;
    }
    static bool program_runs(const std::string& pattern) {
        return test::wait_for([&] { return is_running(pattern); });
    }
    // A killed process soon disappears from the list of processes.
    void expect_no_program(const std::string& pattern) {
        EXPECT_TRUE(test::wait_for([&] { return !is_running(pattern); }));
    }

    const Box box = {256, 256};
    test::TempFolder files;
    const std::string cache, programs;
    const std::string picture_script = make_picture_script();
    ThumbnailMaker maker;
};

TEST_P(HostileFiles, AHugePngIsRefused) {
    // Ten gigabytes of pixels in a third of a megabyte.
    static const std::string bomb = test::white_png_bytes(50000, 50000);
    expect_nothing_from(files.file("bomb.png", bomb));
}

TEST_P(HostileFiles, AJpegThatSaysItIsHugeIsRefused) {
    std::string bytes = test::image_bytes(64, 64, "jpeg");
    const size_t frame = bytes.find("\xff\xc0");
    ASSERT_NE(frame, std::string::npos);
    bytes.replace(frame + 5, 4, "\xff\xdc\xff\xdc");
    const std::string path = files.file("bomb.jpg", bytes);
    const size_t memory = resident_memory();
    maker.make(path, box);  // grey or nothing, depending on the library
    EXPECT_LT(resident_memory(), memory + 8 * megabyte);
    expect_no_child();
}

TEST_P(HostileFiles, TruncatedImagesDoNoHarm) {
    for (const char* kind : {"png", "jpeg", "tiff"}) {
        const std::string whole = test::image_bytes(300, 300, kind);
        for (size_t size : {size_t{1}, size_t{10}, size_t{100}, whole.size() / 2}) {
            maker.make(
                files.file("cut." + std::to_string(size) + "." + kind, whole.substr(0, size)), box);
        }
    }
    expect_nothing_from(files.file("head.png", test::image_bytes(300, 300, "png").substr(0, 20)));
    EXPECT_TRUE(maker.make(files.file("well.png", test::image_bytes(300, 300, "png")), box));
}

TEST_P(HostileFiles, ABrokenFileIsTriedOnce) {
    const std::string path = files.file("broken.png", "\x89PNG\r\n\x1a\nbut no more");
    fs::last_write_time(path, fs::file_time_type::clock::now() - std::chrono::hours(1));
    expect_nothing_from(path);
    wait_for_background();
    EXPECT_FALSE(fs::is_empty(cache + "/fail/delvio-1"));
}

TEST_P(HostileFiles, APdfThatDrawsForEverIsCutOff) {
    std::string loop;
    for (int i = 0; i < 200000; i++) loop += "0 0 m 600 800 900 1 595 842 c 1 2 3 4 5 6 c S\n";
    std::string dashes = "0.001 w [0.001 0.001] 0 d\n";
    expect_nothing_from(files.file("loop.pdf", test::pdf_bytes(595, 842, dashes + loop)));
}

TEST_P(HostileFiles, APdfWhoseTreeGoesInCirclesHasNone) {
    expect_nothing_from(files.file(
        "circle.pdf",
        "%PDF-1.4\n1 0 obj<</Type/Catalog/Pages 2 0 R>>endobj\n2 0 obj<</Type/Pages/Kids[2 0 R 2 0 "
        "R]"
        "/Count 99999999>>endobj\ntrailer<</Root 1 0 R/Prev 9>>\nstartxref\n9\n%%EOF\n"));
}

TEST_P(HostileFiles, AThumbnailerMakesThePicture) {
    install(picture_script);
    const Picture picture = maker.make(subject(), box);
    EXPECT_EQ(picture.width, 200);
    EXPECT_EQ(picture.height, 100);
    expect_no_child();
}

TEST_P(HostileFiles, AThumbnailersSmallPictureDoesNotServeALargeBox) {
    install(picture_script);
    const std::string path = subject();
    EXPECT_EQ(maker.make(path, {100, 100}).width, 100);
    wait_for_background();
    EXPECT_EQ(maker.make(path, box).width, 200);
}

TEST_P(HostileFiles, AThumbnailerIsGivenTheFileAndTheSize) {
    install(
        "[ \"$1\" = 256 ] && [ \"$(cat \"$2\")\" = BLENDER-v280 ] || exit 1\n"
        "case \"$4\" in file:///*/a.blend) ;; *) exit 1 ;; esac\n" +
        picture_script);
    EXPECT_TRUE(maker.make(subject(), box));
}

TEST_P(HostileFiles, NamesAreNeverRead) {
    install(picture_script);
    for (const std::string start : {"-rf", "--help", "a b", "%s%i%o", "$(touch x)", "a\nb", "'\"",
                                    "\xff\xfe", "#?&;|", ".hidden"}) {
        EXPECT_TRUE(maker.make(files.file(start + ".blend", "BLENDER-v280"), box)) << start;
        const std::string image = test::image_bytes(300, 300, "png");
        EXPECT_TRUE(maker.make(files.file(start + ".png", image), box)) << start;
    }
    expect_no_child();
}

TEST_P(HostileFiles, AThumbnailerThatHangsIsCutOffWithAllThatItStarted) {
    install("sleep 300.5 & sleep 300.5\n");
    const std::string path = subject();
    Settings settings = quick_settings();
    const std::chrono::seconds allowed(5);
    settings.program_seconds = 5;
    ThumbnailMaker impatient(settings);
    auto start = std::chrono::steady_clock::now();
    expect_nothing_from(path, impatient);
    EXPECT_GT(std::chrono::steady_clock::now() - start, allowed / 2);
    expect_no_program("sleep 300[.]5");
    // The file is not tried again, which would take as long.
    start = std::chrono::steady_clock::now();
    expect_nothing_from(path, impatient);
    EXPECT_LT(std::chrono::steady_clock::now() - start, allowed);
}

// In a process of its own, which begins anew: a mere fork could inherit a lock that a thread holds.
TEST_P(HostileFiles, AThumbnailerEndsWithItsHost) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    const auto be_killed_meanwhile = [&] {
        install("sleep 300.625 & sleep 300.625\n");
        std::thread([&] {
            if (program_runs("sleep 300[.]625")) kill(getpid(), SIGKILL);
            _exit(1);
        }).detach();
        maker.make(subject(), box);
        _exit(0);
    };
    EXPECT_EXIT(be_killed_meanwhile(), testing::KilledBySignal(SIGKILL), "");
    expect_no_program("sleep 300[.]625");
    expect_no_folder();
}

TEST_P(HostileFiles, AThumbnailerThatCrashesHasNoPicture) {
    install("kill -SEGV $$\n");
    expect_nothing_from(subject());
}

TEST_P(HostileFiles, AThumbnailerThatMakesNothingHasNoPicture) {
    install("exit 0\n");
    expect_nothing_from(subject());
}

TEST_P(HostileFiles, AThumbnailerThatMakesABombHasNoPicture) {
    install("head -c 100000000 /dev/zero >\"$3\"\n");
    expect_nothing_from(subject());
}

TEST_P(HostileFiles, AThumbnailersPipeInPlaceOfAPictureIsNotOpened) {
    install("mkfifo \"$3\"\n");
    expect_nothing_from(subject());
}

TEST_P(HostileFiles, AThumbnailerLeavesNothingRunning) {
    install("sleep 300.25 &\n" + picture_script);
    EXPECT_TRUE(maker.make(subject(), box));
    expect_no_program("sleep 300[.]25");
    install("setsid sleep 300.75 &\n" + picture_script);
    EXPECT_TRUE(maker.make(files.file("b.blend", "BLENDER-v280"), box));
    expect_no_program("sleep 300[.]75");
}

TEST_P(HostileFiles, AThumbnailerWritesNowhereElse) {
    const std::string target = files.path("written");
    install("echo x 2>/dev/null >'" + target + "'\n" + picture_script);
    EXPECT_TRUE(maker.make(subject(), box));
    // Without bubblewrap this needs a kernel with Landlock.
    if (!has_landlock() && !GetParam()) GTEST_SKIP() << "this kernel has no Landlock";
    EXPECT_FALSE(fs::exists(target));
}

TEST_P(HostileFiles, AThumbnailerHasNoNetwork) {
    const int server = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    ASSERT_EQ(bind(server, reinterpret_cast<sockaddr*>(&address), size), 0);
    ASSERT_EQ(listen(server, 1), 0);
    ASSERT_EQ(getsockname(server, reinterpret_cast<sockaddr*>(&address), &size), 0);
    const std::string port = std::to_string(ntohs(address.sin_port));
    const std::string connect = "bash -c 'echo </dev/tcp/127.0.0.1/" + port + "' 2>/dev/null";
    ASSERT_EQ(system(connect.c_str()), 0);
    install(connect + " && exit 1\n" + picture_script);
    EXPECT_TRUE(maker.make(subject(), box));
    close(server);
}

TEST_P(HostileFiles, PipesSocketsAndDevicesAreNotOpened) {
    const std::string pipe = files.path("a.png");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    expect_nothing_from(pipe);

    sockaddr_un address = {AF_UNIX, {}};
    const std::string socket_path = files.path("b.png");
    ASSERT_LT(socket_path.size(), sizeof address.sun_path);
    socket_path.copy(address.sun_path, socket_path.size());
    const int end = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ASSERT_EQ(bind(end, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    expect_nothing_from(socket_path);
    close(end);

    expect_nothing_from(files.link("c.png", "/dev/zero"));
    expect_nothing_from(files.link("d.png", "/dev/tty"));
    expect_nothing_from("/dev/zero");
}

TEST_P(HostileFiles, ALargeFileFullOfNothingDoesNoHarm) {
    Settings settings = quick_settings();
    settings.program_seconds = 1;
    ThumbnailMaker impatient(settings);
    for (const char* name : {"a.png", "a.jpg", "a.svg", "a.pdf", "a.avi", "a"}) {
        const std::string path = files.path(name);
        const int file = open(path.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
        ASSERT_EQ(ftruncate(file, 10'000'000'000), 0);
        close(file);
        expect_nothing_from(path, impatient);
        unlink(path.c_str());
    }
}

TEST_P(HostileFiles, AFileThatIsRemovedMeanwhileHasNone) {
    const std::string bytes = test::image_bytes(2000, 2000, "png");
    for (int i = 0; i < 10; i++) {
        const std::string path = files.file("gone" + std::to_string(i) + ".png", bytes);
        std::thread remover([&path, i] {
            usleep(static_cast<useconds_t>(i) * 2000);
            unlink(path.c_str());
        });
        maker.make(path, box);
        remover.join();
    }
    expect_no_child();
}

TEST_P(HostileFiles, AFileThatAnotherProgramHoldsDoesNotBlock) {
    const std::string path = files.file("leased.png", test::image_bytes(300, 300, "png"));
    const int file = open(path.c_str(), O_RDWR | O_CLOEXEC);
    // A program that opens it now waits for us, for 45 seconds; a signal would end this program.
    signal(SIGIO, SIG_IGN);
    if (fcntl(file, F_SETLEASE, F_WRLCK) == 0) expect_nothing_from(path);
    close(file);
}

TEST_P(HostileFiles, ManyAtOnceAllGetTheirPicture) {
    std::vector<std::string> paths;
    const std::string bytes = test::image_bytes(300, 200, "jpeg");
    for (int i = 0; i < 40; i++) paths.push_back(files.file(std::to_string(i) + ".jpg", bytes));
    std::vector<int> widths(paths.size());
    std::vector<std::thread> threads;
    for (size_t i = 0; i < paths.size(); i++) {
        threads.emplace_back([&, i] { widths[i] = maker.make(paths[i], box).width; });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(widths, std::vector<int>(paths.size(), 256));
    expect_no_child();
}

INSTANTIATE_TEST_SUITE_P(Cages, HostileFiles, testing::Bool(),
                         [](const auto& info) { return info.param ? "bubblewrap" : "plain"; });

}  // namespace
