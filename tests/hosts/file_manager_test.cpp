#include <gtest/gtest.h>

#include <gio/gio.h>

#include <atomic>
#include <thread>

#include "hosts/command_runner.h"
#include "support/temp_folder.h"

namespace {

constexpr const char* interface_text =
    "<node><interface name='org.freedesktop.FileManager1'><method name='ShowItems'>"
    "<arg type='as' direction='in'/><arg type='s' direction='in'/></method></interface></node>";

// A session bus with a file manager that records what it is asked to show.
class FileManager {
  public:
    FileManager() : bus_(g_test_dbus_new(G_TEST_DBUS_NONE)) {
        g_test_dbus_up(bus_);
        thread_ = std::thread([this] { serve(); });
        while (!ready_) std::this_thread::yield();
    }
    ~FileManager() {
        g_main_context_invoke(context_, quit, this);
        thread_.join();
        g_main_loop_unref(loop_);
        g_main_context_unref(context_);
        g_test_dbus_stop(bus_);
        g_object_unref(bus_);
    }

    std::string address() const { return g_test_dbus_get_bus_address(bus_); }
    const std::vector<std::string>& shown() const { return shown_; }

  private:
    static gboolean quit(gpointer self) {
        g_main_loop_quit(static_cast<FileManager*>(self)->loop_);
        return G_SOURCE_REMOVE;
    }

    static void called(GDBusConnection*, const char*, const char*, const char*, const char*,
                       GVariant* arguments, GDBusMethodInvocation* invocation, gpointer self) {
        g_autoptr(GVariantIter) uris = nullptr;
        g_variant_get(arguments, "(ass)", &uris, nullptr);
        const char* uri;
        while (g_variant_iter_next(uris, "&s", &uri)) {
            static_cast<FileManager*>(self)->shown_.push_back(uri);
        }
        g_dbus_method_invocation_return_value(invocation, nullptr);
    }

    void serve() {
        context_ = g_main_context_new();
        loop_ = g_main_loop_new(context_, FALSE);
        g_main_context_push_thread_default(context_);
        GDBusConnection* connection = g_dbus_connection_new_for_address_sync(
            address().c_str(),
            static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                              G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
            nullptr, nullptr, nullptr);
        GDBusNodeInfo* node = g_dbus_node_info_new_for_xml(interface_text, nullptr);
        GDBusInterfaceVTable methods = {};
        methods.method_call = called;
        g_dbus_connection_register_object(connection, "/org/freedesktop/FileManager1",
                                          node->interfaces[0], &methods, this, nullptr, nullptr);
        g_variant_unref(g_dbus_connection_call_sync(
            connection, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
            "RequestName", g_variant_new("(su)", "org.freedesktop.FileManager1", 0u), nullptr,
            G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr));
        ready_ = true;
        g_main_loop_run(loop_);
        g_dbus_node_info_unref(node);
        g_dbus_connection_close_sync(connection, nullptr, nullptr);
        g_object_unref(connection);
        g_main_context_pop_thread_default(context_);
    }

    GTestDBus* bus_;
    GMainContext* context_ = nullptr;
    GMainLoop* loop_ = nullptr;
    std::atomic<bool> ready_{false};
    std::vector<std::string> shown_;
    std::thread thread_;
};

TEST(FileManagerOnTheBus, IsAskedToShowTheFiles) {
    FileManager manager;
    test::TempFolder folder;
    const std::string one = folder.file("a b"), two = folder.file("c");
    const test::Outcome outcome =
        test::run_delvio({"menu", "--pick", "Show in File Manager", one, two},
                         {{"DBUS_SESSION_BUS_ADDRESS", manager.address()}});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out + outcome.err, "");
    EXPECT_EQ(manager.shown(),
              std::vector<std::string>({"file://" + folder.path() + "/a%20b", "file://" + two}));
}

}  // namespace
