// The resident host's name on the session bus.
#include <gio/gio.h>
#include <signal.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>

#include "hosts/bus_service.h"
#include "hosts/resident/scene.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* name = "org.delvio.Delvio";

// A session whose bus starts the host.
struct ResidentBus : test::ResidentScene {
    ResidentBus() {
        // The bus starts programs with its own variables.
        for (const auto& [variable, value] : with()) setenv(variable.c_str(), value.c_str(), 1);
        const std::string services = std::string(getenv("XDG_DATA_HOME")) + "/dbus-1/services";
        fs::create_directories(services);
        std::ofstream(services + "/org.delvio.Delvio.service")
            << "[D-BUS Service]\nName=" << name << "\nExec=" DELVIO_CLIENT " --own-bus-name\n";
        start_bus();
    }
    ~ResidentBus() override {
        if (connection) g_dbus_connection_close_sync(connection, nullptr, nullptr);
        g_clear_object(&connection);
        for (const auto& [variable, value] : with()) unsetenv(variable.c_str());
    }

    void start_bus() {
        bus = std::make_unique<test::SessionBus>(true);
        connection = g_dbus_connection_new_for_address_sync(
            bus->address().c_str(),
            static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                              G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
            nullptr, nullptr, nullptr);
        ASSERT_NE(connection, nullptr);
    }

    // The answer as text, or "error: " with the error's message.
    std::string ask(const char* service, const char* object, const char* interface,
                    const char* method, const std::string& arguments) const {
        constexpr int patience = 120000;
        GError* error = nullptr;
        GVariant* answer = g_dbus_connection_call_sync(
            connection, service, object, interface, method, g_variant_new_parsed(arguments.c_str()),
            nullptr, G_DBUS_CALL_FLAGS_NONE, patience, nullptr, &error);
        if (!answer) {
            const std::string problem = std::string("error: ") + error->message;
            g_clear_error(&error);
            return problem;
        }
        g_autofree char* text = g_variant_print(answer, FALSE);
        g_variant_unref(answer);
        return text;
    }
    std::string ask_application(const char* method, const std::string& arguments) const {
        return ask(name, "/org/delvio/Delvio", "org.freedesktop.Application", method, arguments);
    }
    std::string ask_bus(const char* method) const {
        return ask("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method,
                   std::string("('") + name + "',)");
    }
    bool wait_for_owner(pid_t process) const {
        const std::string expected = "(" + std::to_string(process) + ",)";
        return test::wait_for([&] { return ask_bus("GetConnectionUnixProcessID") == expected; });
    }
    std::string open_words(const std::string& path) const {
        return "(['file://" + path + "'], @a{sv} {})";
    }

    std::unique_ptr<test::SessionBus> bus;
    GDBusConnection* connection = nullptr;
};

TEST_F(ResidentBus, StartsTheHostWhichShowsTheMenuAndServesAllOtherCalls) {
    EXPECT_EQ(ask_application("Open", open_words(top)), "()");
    ASSERT_TRUE(screen.wait_until_open());
    const pid_t process = host();
    EXPECT_TRUE(wait_for_owner(process));
    input.key("Escape");
    EXPECT_TRUE(screen.wait_until_closed());
    EXPECT_EQ(show_and_close().status, 0);
    EXPECT_EQ(host(), process);
}

TEST_F(ResidentBus, AHostThatRunsAlreadyTakesTheName) {
    show_and_close();
    const pid_t process = host();
    EXPECT_TRUE(wait_for_owner(process));
    EXPECT_EQ(ask_application("Open", open_words(top)), "()");
    ASSERT_TRUE(screen.wait_until_open());
    input.key("Escape");
    EXPECT_TRUE(screen.wait_until_closed());
    EXPECT_EQ(host(), process);
    kill(process, SIGTERM);
    EXPECT_TRUE(test::wait_for([this] { return hosts().empty(); }));
    EXPECT_TRUE(test::wait_for([this] { return ask_bus("NameHasOwner") == "(false,)"; }));
}

TEST_F(ResidentBus, UndoesTheLastOperationAndOpensTheSettings) {
    const std::string file = folder.file("thrown.txt");
    const test::Outcome picked =
        test::run_delvio({"menu", "--pick", "Move to Trash", file}, with());
    ASSERT_EQ(picked.status, 0) << picked.err;
    ASSERT_FALSE(fs::exists(file));
    EXPECT_EQ(ask_application("ActivateAction", "('undo', @av [], @a{sv} {})"), "()");
    EXPECT_TRUE(test::wait_for([&] { return fs::exists(file); }));
    EXPECT_EQ(ask_application("ActivateAction", "('settings', @av [], @a{sv} {})"), "()");
    const auto has_keyboard = [] {
        const std::string window =
            test::output_of("xdotool search --onlyvisible --name '^Delvio Settings$'");
        return !window.empty() && window == test::output_of("xdotool getwindowfocus");
    };
    ASSERT_TRUE(test::wait_for(has_keyboard));
    input.key("Escape");
    EXPECT_TRUE(test::wait_for([] {
        return test::output_of("xdotool search --onlyvisible --name '^Delvio Settings$'").empty();
    }));
}

// Neither the host that has a connection nor a new one, whose connection is not answered, waits.
TEST_F(ResidentBus, MenusAndPicksDoNotWaitForABusThatHasStoppedAnswering) {
    const std::string file = folder.file("thrown.txt", "all of it");
    show_and_close();
    const pid_t process = host();
    EXPECT_TRUE(wait_for_owner(process));
    bus->halt();
    EXPECT_EQ(show_and_close().status, 0);
    EXPECT_EQ(host(), process);
    EXPECT_EQ(test::run_delvio({"menu", "--pick", "Move to Trash", file}, with()).status, 0);
    EXPECT_FALSE(fs::exists(file));
    EXPECT_EQ(test::run_delvio({"undo"}, with()).status, 0);
    EXPECT_EQ(test::read_file(file), "all of it");
    kill(process, SIGTERM);
    EXPECT_TRUE(test::wait_for([this] { return hosts().empty(); }));
    EXPECT_EQ(show_and_close().status, 0);
    EXPECT_NE(host(), process);
    bus->resume();
}

TEST_F(ResidentBus, SaysWhatItCannotShow) {
    EXPECT_EQ(ask_application("Open", "(['http://delvio.org/'], @a{sv} {})").rfind("error: ", 0),
              0u);
    EXPECT_NE(ask_application("Open", "(@as [], @a{sv} {})").find("no file is named"),
              std::string::npos);
    EXPECT_NE(
        ask_application("ActivateAction", "('dance', @av [], @a{sv} {})").find("no such action"),
        std::string::npos);
    EXPECT_EQ(screen.open_menu().width, 0);
}

}  // namespace
