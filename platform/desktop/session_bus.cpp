#include <host/glib_owners.h>
#include <host/session_bus.h>
#include <gio/gio.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>

namespace files {

namespace {

using Clock = std::chrono::steady_clock;

const char address_name[] = "DBUS_SESSION_BUS_ADDRESS";
const std::chrono::seconds pause_after_failure{10};

// Cancels the calls that it is given to, when time is up.
class Deadline {
  public:
    Deadline() : thread_([this] { wait(); }) {}
    ~Deadline() {
        {
            const std::lock_guard guard(lock_);
            is_over_ = true;
        }
        changed_.notify_one();
        thread_.join();
    }
    Deadline(const Deadline&) = delete;
    Deadline& operator=(const Deadline&) = delete;

    GCancellable* cancellable() const { return cancellable_.get(); }

  private:
    void wait() {
        std::unique_lock guard(lock_);
        const bool in_time = changed_.wait_for(guard, std::chrono::milliseconds(bus_patience),
                                               [this] { return is_over_; });
        if (!in_time) g_cancellable_cancel(cancellable_.get());
    }

    const ObjectOwner<GCancellable> cancellable_{g_cancellable_new()};
    std::mutex lock_;
    std::condition_variable changed_;
    bool is_over_ = false;
    std::thread thread_;
};

struct Bus {
    std::mutex lock;
    std::string address;  // whose use or failure this is
    Clock::time_point failed_at;
    bool has_failed = false, is_used = false;
};

Bus& bus() {
    static Bus& bus = *new Bus;
    return bus;
}

ObjectOwner<GDBusConnection> connect_in_time() {
    const Deadline deadline;
    ObjectOwner<GDBusConnection> connection(
        g_bus_get_sync(G_BUS_TYPE_SESSION, deadline.cancellable(), nullptr));
    // A file manager must not end in the middle of its work because the session ends.
    if (connection) g_dbus_connection_set_exit_on_close(connection.get(), FALSE);
    return connection;
}

ObjectOwner<GDBusConnection> connect() {
    try {
        return connect_in_time();
    } catch (const std::system_error&) {
        return {};  // without a thread for the deadline it might wait for ever
    }
}

bool answers(GDBusConnection* connection) {
    if (g_dbus_connection_is_closed(connection)) return false;
    const VariantOwner answer(g_dbus_connection_call_sync(
        connection, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
        "GetId", nullptr, nullptr, G_DBUS_CALL_FLAGS_NONE, bus_patience, nullptr, nullptr));
    return answer != nullptr;
}

// Another address means another bus.
void follow_address(Bus& bus) {
    const char* address = g_getenv(address_name);
    if (bus.address == (address ? address : "")) return;
    bus.address = address ? address : "";
    bus.has_failed = bus.is_used = false;
}

bool failed_lately(const Bus& bus) {
    return bus.has_failed && Clock::now() - bus.failed_at < pause_after_failure;
}

}  // namespace

bool has_session_bus() {
    const char* address = g_getenv(address_name);
    const TextOwner socket(g_build_filename(g_get_user_runtime_dir(), "bus", nullptr));
    return (address && *address) || g_file_test(socket.get(), G_FILE_TEST_EXISTS);
}

// Asking GIO for a bus that is not there would start one.
//
// No connection is kept here: GIO hands out a closed one as long as anybody holds it.
ObjectOwner<GDBusConnection> session_bus() {
    const std::lock_guard guard(bus().lock);
    follow_address(bus());
    if (failed_lately(bus()) || !has_session_bus()) return nullptr;
    ObjectOwner<GDBusConnection> connection = connect();
    if (connection && !answers(connection.get())) connection.reset();
    bus().has_failed = !connection;
    bus().failed_at = Clock::now();
    bus().is_used = bus().is_used || connection;
    return connection;
}

ObjectOwner<GDBusConnection> new_session_connection() {
    if (!session_bus()) return nullptr;
    const TextOwner address(g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SESSION, nullptr, nullptr));
    if (!address) return nullptr;
    const auto flags =
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    return ObjectOwner<GDBusConnection>(
        g_dbus_connection_new_for_address_sync(address.get(), flags, nullptr, nullptr, nullptr));
}

void flush_session_bus() {
    {
        const std::lock_guard guard(bus().lock);
        if (!bus().is_used) return;
    }
    const ObjectOwner<GDBusConnection> connection = session_bus();
    if (!connection) return;
    try {
        const Deadline deadline;
        g_dbus_connection_flush_sync(connection.get(), deadline.cancellable(), nullptr);
    } catch (const std::system_error&) {
        // As above. GLib's own thread sends what it gets the time for.
    }
}

PatientBus::PatientBus() : connection_(session_bus()) {
    if (connection_) return;
    const char* address = g_getenv(address_name);
    is_hidden_ = true;
    was_set_ = address != nullptr;
    address_ = address ? address : "";
    g_setenv(address_name, "disabled:", TRUE);
}

PatientBus::~PatientBus() {
    if (!is_hidden_) return;
    if (was_set_) {
        g_setenv(address_name, address_.c_str(), TRUE);
    } else {
        g_unsetenv(address_name);
    }
}

void PatientBus::pass_on(GAppLaunchContext* context) const {
    if (!is_hidden_) return;
    if (was_set_) {
        g_app_launch_context_setenv(context, address_name, address_.c_str());
    } else {
        g_app_launch_context_unsetenv(context, address_name);
    }
}

}  // namespace files
