// A session bus for a test, and services on it that record their calls.
#pragma once

#include <gio/gio.h>

#include <atomic>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace test {

// The test's own bus daemon, which is this process's session bus while the object lives. It starts
// the services of /usr/share/dbus-1 only with `system_services`.
class SessionBus {
  public:
    explicit SessionBus(bool system_services = false);
    ~SessionBus();
    SessionBus(const SessionBus&) = delete;
    SessionBus& operator=(const SessionBus&) = delete;

    const std::string& address() const { return address_; }
    // Until resume() the daemon accepts connections and messages, and answers none.
    void halt() const;
    void resume() const;

  private:
    std::string address_;
    pid_t daemon_ = 0;
};

// Owns a name and answers the methods of one object, each with an empty answer or with an error. A
// second service with the same name waits until the first has gone.
class BusService {
  public:
    // `interfaces` is D-Bus introspection XML.
    BusService(const SessionBus& bus, const char* name, const char* object, const char* interfaces,
               const char* error = nullptr);
    // The service disappears when it is called, without an answer.
    static constexpr const char* ends = "";
    ~BusService();
    BusService(const BusService&) = delete;
    BusService& operator=(const BusService&) = delete;

    // From now on the method is answered with this tuple, in GVariant's text format: "(uint32 1,)".
    void set_answer(const std::string& method, const std::string& tuple);
    // Sends a signal of the first interface, with such a tuple.
    void emit(const std::string& name, const std::string& tuple);

    // Each call as "interface.Method(arguments)", with the arguments as GVariant text.
    std::vector<std::string> calls();

  private:
    static void called(GDBusConnection*, const char*, const char*, const char* interface,
                       const char* method, GVariant* arguments, GDBusMethodInvocation* invocation,
                       gpointer self);
    void serve();

    const std::string address_, name_, object_;
    const char* error_;
    GDBusNodeInfo* node_;
    GMainContext* context_;
    GMainLoop* loop_;
    std::atomic<bool> ready_{false};
    GDBusConnection* connection_ = nullptr;
    std::mutex mutex_;
    std::map<std::string, std::string> answers_;
    std::vector<std::string> calls_;
    std::thread thread_;
};

// The desktop's notifications, as a stand-in for them has to offer them.
inline constexpr const char* notifications_interface =
    "<node><interface name='org.freedesktop.Notifications'>"
    "<method name='GetCapabilities'><arg type='as' direction='out'/></method>"
    "<method name='Notify'><arg type='s' direction='in'/><arg type='u' direction='in'/>"
    "<arg type='s' direction='in'/><arg type='s' direction='in'/><arg type='s' direction='in'/>"
    "<arg type='as' direction='in'/><arg type='a{sv}' direction='in'/><arg type='i' "
    "direction='in'/><arg type='u' direction='out'/></method>"
    "<signal name='ActionInvoked'><arg type='u'/><arg type='s'/></signal>"
    "<signal name='NotificationClosed'><arg type='u'/><arg type='u'/></signal>"
    "</interface></node>";

}  // namespace test
