// A session bus that accepts connections and never answers. Code that waited for it would wait for
// ever, and this test would fail by its time limit.
#include <host/session_bus.h>

#include <fcntl.h>
#include <gio/gdesktopappinfo.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <string>

#include "desktop/program_launch.h"
#include "support/temp_folder.h"

namespace {

class SessionBus : public testing::Test {
  protected:
    void SetUp() override {
        sockaddr_un address = {AF_UNIX, {}};
        const std::string path = folder.path("bus");
        ASSERT_LT(path.size(), sizeof address.sun_path);
        path.copy(address.sun_path, path.size());
        silent = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        ASSERT_EQ(bind(silent, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
        ASSERT_EQ(listen(silent, 100), 0);
        silent_address = "unix:path=" + path;
    }
    void TearDown() override { close(silent); }

    // GIO keeps what it has found, so each query runs in its own process. 0 when `deed` is true,
    // negative when it never ends.
    static int status_of(const std::string& address, const std::function<bool()>& deed) {
        const pid_t child = fork();
        if (child == 0) {
            alarm(20);
            setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1);
            _exit(deed() ? 0 : 1);
        }
        int status = 0;
        waitpid(child, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }
    std::string entry(const std::string& more) {
        return folder.file("a.desktop",
                           "[Desktop Entry]\nType=Application\nName=A\nExec=sh -c \"echo "
                           "$DBUS_SESSION_BUS_ADDRESS >" +
                               folder.path("bus-of-program") + "\"\n" + more);
    }
    int silent = -1;
    std::string silent_address;
    test::TempFolder folder;
};

// How often it was asked.
int connections(int silent) {
    fcntl(silent, F_SETFL, O_NONBLOCK);
    int count = 0;
    for (int end; (end = accept(silent, nullptr, nullptr)) >= 0; count++) close(end);
    return count;
}

}  // namespace

TEST_F(SessionBus, ASilentBusIsNoBusAndIsNotAskedAgainAtOnce) {
    EXPECT_EQ(
        status_of(silent_address, [] { return !files::session_bus() && !files::session_bus(); }),
        0);
    EXPECT_EQ(connections(silent), 1);
}

TEST_F(SessionBus, WhoHasNotUsedTheBusFlushesNothing) {
    EXPECT_EQ(status_of(silent_address,
                        [] {
                            files::flush_session_bus();
                            return true;
                        }),
              0);
    EXPECT_EQ(connections(silent), 0);
}

TEST_F(SessionBus, ProgramsStartThoughTheBusIsSilentAndHaveItsAddress) {
    for (const char* more : {"", "DBusActivatable=true\n"}) {
        const std::string path = entry(more), told = folder.path("bus-of-program");
        unlink(told.c_str());
        EXPECT_EQ(status_of(silent_address,
                            [&] {
                                GDesktopAppInfo* application =
                                    g_desktop_app_info_new_from_filename(path.c_str());
                                std::string reason;
                                return start_entry(application, {}, &reason) == Start::done &&
                                       getenv("DBUS_SESSION_BUS_ADDRESS") == silent_address;
                            }),
                  0);
        for (int i = 0; i < 1000 && access(told.c_str(), F_OK) != 0; i++) usleep(20000);
        std::string said;
        for (int i = 0; i < 1000 && said.empty(); i++) {
            said = test::read_file(told);
            if (said.empty()) usleep(20000);
        }
        EXPECT_EQ(said, silent_address + "\n") << more;
    }
}

TEST_F(SessionBus, AnswersAreHadFromABusThatAnswers) {
    GTestDBus* bus = g_test_dbus_new(G_TEST_DBUS_NONE);
    g_test_dbus_up(bus);
    EXPECT_EQ(status_of(g_test_dbus_get_bus_address(bus),
                        [] {
                            const files::PatientBus guard;
                            return files::session_bus() && files::session_bus() &&
                                   std::string(getenv("DBUS_SESSION_BUS_ADDRESS")) != "disabled:";
                        }),
              0);
    g_test_dbus_stop(bus);
    g_object_unref(bus);
}
