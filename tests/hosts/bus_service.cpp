#include "hosts/bus_service.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

namespace test {

namespace {

const char configuration[] =
    "<busconfig><type>session</type><listen>unix:tmpdir=/tmp</listen>"
    "<policy context='default'><allow send_destination='*'/>"
    "<allow eavesdrop='true'/><allow own='*'/></policy></busconfig>";

std::string write_configuration() {
    g_autofree char* path = nullptr;
    const int file = g_file_open_tmp("bus-XXXXXX.conf", &path, nullptr);
    EXPECT_EQ(write(file, configuration, sizeof configuration - 1),
              static_cast<ssize_t>(sizeof configuration - 1));
    close(file);
    return path;
}

}  // namespace

SessionBus::SessionBus(bool system_services) {
    const std::string configured =
        system_services ? "--session" : "--config-file=" + write_configuration();
    int out[2];
    if (pipe2(out, O_CLOEXEC) != 0) abort();
    daemon_ = fork();
    if (daemon_ == 0) {
        dup2(out[1], STDOUT_FILENO);
        execlp("dbus-daemon", "dbus-daemon", configured.c_str(), "--nofork", "--print-address=1",
               static_cast<char*>(nullptr));
        _exit(127);
    }
    close(out[1]);
    char byte;
    while (read(out[0], &byte, 1) == 1 && byte != '\n') address_ += byte;
    close(out[0]);
    EXPECT_NE(address_, "") << "dbus-daemon does not start";
    setenv("DBUS_SESSION_BUS_ADDRESS", address_.c_str(), 1);
}

void SessionBus::halt() const { kill(daemon_, SIGSTOP); }

void SessionBus::resume() const { kill(daemon_, SIGCONT); }

SessionBus::~SessionBus() {
    unsetenv("DBUS_SESSION_BUS_ADDRESS");
    resume();
    kill(daemon_, SIGTERM);
    waitpid(daemon_, nullptr, 0);
}

BusService::BusService(const SessionBus& bus, const char* name, const char* object,
                       const char* interfaces, const char* error)
    : address_(bus.address()),
      name_(name),
      object_(object),
      error_(error),
      node_(g_dbus_node_info_new_for_xml(interfaces, nullptr)),
      context_(g_main_context_new()),
      loop_(g_main_loop_new(context_, FALSE)) {
    thread_ = std::thread([this] { serve(); });
    while (!ready_) std::this_thread::yield();
}

BusService::~BusService() {
    g_main_context_invoke(
        context_,
        [](gpointer loop) -> gboolean {
            g_main_loop_quit(static_cast<GMainLoop*>(loop));
            return G_SOURCE_REMOVE;
        },
        loop_);
    thread_.join();
    g_main_loop_unref(loop_);
    g_main_context_unref(context_);
    g_dbus_node_info_unref(node_);
}

void BusService::set_answer(const std::string& method, const std::string& tuple) {
    const std::lock_guard guard(mutex_);
    answers_[method] = tuple;
}

void BusService::emit(const std::string& name, const std::string& tuple) {
    GVariant* const arguments = g_variant_parse(nullptr, tuple.c_str(), nullptr, nullptr, nullptr);
    ASSERT_NE(arguments, nullptr) << tuple;
    g_dbus_connection_emit_signal(connection_, nullptr, object_.c_str(), node_->interfaces[0]->name,
                                  name.c_str(), arguments, nullptr);
    g_dbus_connection_flush_sync(connection_, nullptr, nullptr);
}

std::vector<std::string> BusService::calls() {
    const std::lock_guard guard(mutex_);
    return calls_;
}

void BusService::called(GDBusConnection*, const char*, const char*, const char* interface,
                        const char* method, GVariant* arguments, GDBusMethodInvocation* invocation,
                        gpointer self) {
    auto* service = static_cast<BusService*>(self);
    g_autofree char* text = g_variant_print(arguments, FALSE);
    GVariant* answer = nullptr;
    {
        const std::lock_guard guard(service->mutex_);
        const auto known = service->answers_.find(method);
        if (known != service->answers_.end()) {
            answer = g_variant_parse(nullptr, known->second.c_str(), nullptr, nullptr, nullptr);
        }
        service->calls_.push_back(std::string(interface) + "." + method + text);
    }
    if (service->error_ && !*service->error_) {
        g_main_loop_quit(service->loop_);
        g_object_unref(invocation);
    } else if (service->error_) {
        g_dbus_method_invocation_return_dbus_error(invocation, "org.example.Error",
                                                   service->error_);
    } else {
        g_dbus_method_invocation_return_value(invocation, answer);
    }
}

void BusService::serve() {
    g_main_context_push_thread_default(context_);
    GDBusConnection* const connection = connection_ = g_dbus_connection_new_for_address_sync(
        address_.c_str(),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, nullptr);
    GDBusInterfaceVTable methods = {};
    methods.method_call = called;
    for (GDBusInterfaceInfo** interface = node_->interfaces; *interface; interface++) {
        g_dbus_connection_register_object(connection, object_.c_str(), *interface, &methods, this,
                                          nullptr, nullptr);
    }
    GVariant* owned = g_dbus_connection_call_sync(
        connection, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
        "RequestName", g_variant_new("(su)", name_.c_str(), 0u), nullptr, G_DBUS_CALL_FLAGS_NONE,
        -1, nullptr, nullptr);
    if (owned) g_variant_unref(owned);
    ready_ = true;
    g_main_loop_run(loop_);
    g_dbus_connection_close_sync(connection, nullptr, nullptr);
    g_object_unref(connection);
    g_main_context_pop_thread_default(context_);
}

}  // namespace test
