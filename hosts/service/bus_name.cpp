#include "service/bus_name.h"

#include <host/text.h>

#include <gio/gio.h>
#include <host/session_bus.h>
#include <signal.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>

namespace {

using files::ObjectOwner;
using files::VariantOwner;

const char name[] = "org.delvio.Delvio", object_path[] = "/org/delvio/Delvio";
const char interfaces[] =
    "<node><interface name='org.freedesktop.Application'>"
    "<method name='Activate'><arg type='a{sv}' direction='in'/></method>"
    "<method name='Open'><arg type='as' direction='in'/><arg type='a{sv}' direction='in'/></method>"
    "<method name='ActivateAction'><arg type='s' direction='in'/><arg type='av' direction='in'/>"
    "<arg type='a{sv}' direction='in'/></method></interface></node>";
constexpr std::chrono::seconds patience{10};
constexpr guint32 do_not_queue = 4, is_owner = 1, was_owner = 4;

guint32 ask_bus(GDBusConnection* connection, const char* method, GVariant* arguments) {
    const VariantOwner answer(g_dbus_connection_call_sync(
        connection, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method,
        arguments, G_VARIANT_TYPE("(u)"), G_DBUS_CALL_FLAGS_NONE, files::bus_patience, nullptr,
        nullptr));
    guint32 result = 0;
    if (answer) g_variant_get(answer.get(), "(u)", &result);
    return result;
}

}  // namespace

// Lives on a thread of its own, whose main loop is GLib's.
class BusName::Service {
  public:
    Service(const std::string& command, const std::vector<std::string>& environment)
        : command_(command), environment_(environment), context_(g_main_context_new()) {}

    ~Service() {
        if (thread_.joinable()) {
            GSource* const source = g_idle_source_new();  // after the calls that wait
            g_source_set_callback(source, &Service::quit, this, nullptr);
            g_source_attach(source, context_);
            g_source_unref(source);
            thread_.join();
        }
        g_main_context_unref(context_);
    }

    void start() {
        if (thread_.joinable()) return;
        // Signals belong to the main thread.
        sigset_t all, before;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before);
        try {
            thread_ = std::thread([this] { serve(); });
        } catch (const std::system_error&) {
            tell(State::refused);  // the host works without its name
        }
        pthread_sigmask(SIG_SETMASK, &before, nullptr);
    }

    bool is_owned() {
        std::unique_lock guard(lock_);
        changed_.wait_for(guard, patience, [this] { return state_ != State::asking; });
        return state_ == State::owned;
    }

  private:
    enum class State { asking, owned, refused };

    void serve() {
        g_main_context_push_thread_default(context_);
        loop_ = g_main_loop_new(context_, FALSE);
        const ObjectOwner<GDBusConnection> connection = files::new_session_connection();
        const bool is_owned = connection && offer(connection.get());
        tell(is_owned ? State::owned : State::refused);
        if (is_owned) g_main_loop_run(loop_);
        if (connection) g_dbus_connection_close_sync(connection.get(), nullptr, nullptr);
        g_main_loop_unref(loop_);
        g_main_context_pop_thread_default(context_);
    }

    // The object is there before the name is, so no call finds the name without it.
    bool offer(GDBusConnection* connection) {
        static const GDBusInterfaceVTable methods = {&Service::called, nullptr, nullptr, {}};
        GDBusNodeInfo* const node = g_dbus_node_info_new_for_xml(interfaces, nullptr);
        const guint object = g_dbus_connection_register_object(
            connection, object_path, node->interfaces[0], &methods, this, nullptr, nullptr);
        g_dbus_node_info_unref(node);
        if (!object) return false;
        connection_ = connection;
        g_signal_connect(connection, "closed", G_CALLBACK(&Service::lose), this);
        const guint32 result =
            ask_bus(connection, "RequestName", g_variant_new("(su)", name, do_not_queue));
        return result == is_owner || result == was_owner;
    }

    static void lose(GDBusConnection*, gboolean, GError*, gpointer self) {
        g_main_loop_quit(static_cast<Service*>(self)->loop_);
    }

    static gboolean quit(gpointer data) {
        auto& self = *static_cast<Service*>(data);
        ask_bus(self.connection_, "ReleaseName", g_variant_new("(s)", name));
        while (g_main_context_pending(self.context_)) {
            g_main_context_iteration(self.context_, FALSE);
        }
        g_dbus_connection_flush_sync(self.connection_, nullptr, nullptr);
        g_main_loop_quit(self.loop_);
        return G_SOURCE_REMOVE;
    }

    static void called(GDBusConnection*, const char*, const char*, const char*, const char* method,
                       GVariant* arguments, GDBusMethodInvocation* invocation, gpointer data) {
        auto& self = *static_cast<Service*>(data);
        std::vector<std::string> words = {"menu", "--"};
        std::string problem;
        if (g_str_equal(method, "Open")) {
            problem = self.add_files(arguments, &words);
        } else if (g_str_equal(method, "Activate")) {
            words.push_back(g_get_home_dir());
        } else if (const std::string action = action_in(arguments); !action.empty()) {
            words = {action};
        } else {
            problem = translated("there is no such action");
        }
        if (problem.empty()) problem = self.start_command(words);
        if (problem.empty()) return g_dbus_method_invocation_return_value(invocation, nullptr);
        g_dbus_method_invocation_return_error_literal(invocation, G_DBUS_ERROR,
                                                      G_DBUS_ERROR_INVALID_ARGS, problem.c_str());
    }

    static std::string add_files(GVariant* arguments, std::vector<std::string>* words) {
        const VariantOwner addresses(g_variant_get_child_value(arguments, 0));
        const gsize count = g_variant_n_children(addresses.get());
        for (gsize i = 0; i < count; ++i) {
            const char* address;
            g_variant_get_child(addresses.get(), i, "&s", &address);
            const ObjectOwner<GFile> file(g_file_new_for_uri(address));
            const files::TextOwner path(g_file_get_path(file.get()));
            if (!path) return translated("this is no local file: %s", {address});
            words->push_back(path.get());
        }
        return count > 0 ? "" : translated("no file is named");
    }

    // The actions of the desktop entry have the names of the commands that they run.
    static std::string action_in(GVariant* arguments) {
        const char* name;
        g_variant_get_child(arguments, 0, "&s", &name);
        for (const char* known : {"undo", "settings"}) {
            if (g_str_equal(name, known)) return known;
        }
        return {};
    }

    // What it shows is nobody's to wait for: it ends by itself, and GLib waits for it.
    std::string start_command(const std::vector<std::string>& words) const {
        std::vector<const char*> argv = {command_.c_str()}, variables;
        for (const std::string& word : words) argv.push_back(word.c_str());
        for (const std::string& variable : environment_) variables.push_back(variable.c_str());
        argv.push_back(nullptr);
        variables.push_back(nullptr);
        const auto flags =
            static_cast<GSpawnFlags>(G_SPAWN_STDOUT_TO_DEV_NULL | G_SPAWN_STDERR_TO_DEV_NULL);
        files::ErrorPlace error;
        const bool is_started = g_spawn_async("/", const_cast<char**>(argv.data()),
                                              const_cast<char**>(variables.data()), flags, nullptr,
                                              nullptr, nullptr, error.place());
        return is_started ? "" : error.get()->message;
    }

    void tell(State state) {
        const std::lock_guard guard(lock_);
        state_ = state;
        changed_.notify_all();
    }

    const std::string command_;
    const std::vector<std::string> environment_;
    GMainContext* const context_;
    GMainLoop* loop_ = nullptr;              // of the thread
    GDBusConnection* connection_ = nullptr;  // of the thread
    std::mutex lock_;
    std::condition_variable changed_;
    State state_ = State::asking;
    std::thread thread_;
};

BusName::BusName(const std::string& command, const std::vector<std::string>& environment)
    : service_(std::make_unique<Service>(command, environment)) {}

BusName::~BusName() = default;

void BusName::own() { service_->start(); }

bool BusName::is_owned() {
    own();
    return service_->is_owned();
}
