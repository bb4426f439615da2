#include "accessibility/reader_question.h"

#include <gio/gio.h>
#include <host/glib_owners.h>
#include <host/session_bus.h>

namespace {

using files::ObjectOwner;
using files::VariantOwner;

const char service[] = "org.a11y.Bus", object[] = "/org/a11y/bus";

// Asking GIO for a bus that is not there would start one.
std::string session_address() {
    if (!files::has_session_bus()) return {};
    return files::taken_text(g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SESSION, nullptr, nullptr));
}

bool is_true(GVariant* values, const char* name) {
    gboolean value = FALSE;
    return g_variant_lookup(values, name, "b", &value) && value;
}

// Owns itself until it is answered.
class Question {
  public:
    explicit Question(const std::function<void(const std::string&)>& answer) : answer_(answer) {}

    void ask(const std::string& session) {
        const auto flags =
            static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                              G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
        g_dbus_connection_new_for_address(session.c_str(), flags, nullptr, nullptr, connected,
                                          this);
    }

  private:
    static void connected(GObject*, GAsyncResult* result, gpointer data) {
        auto& self = *static_cast<Question*>(data);
        self.connection_.reset(g_dbus_connection_new_for_address_finish(result, nullptr));
        if (!self.connection_) return self.finish({});
        self.call("org.freedesktop.DBus.Properties", "GetAll",
                  g_variant_new("(s)", "org.a11y.Status"), "(a{sv})", told_status);
    }

    static void told_status(GObject*, GAsyncResult* result, gpointer data) {
        auto& self = *static_cast<Question*>(data);
        const VariantOwner reply(self.reply(result));
        if (!reply) return self.finish({});
        const VariantOwner values(g_variant_get_child_value(reply.get(), 0));
        const bool is_active =
            is_true(values.get(), "IsEnabled") || is_true(values.get(), "ScreenReaderEnabled");
        if (!is_active) return self.finish({});
        self.call(service, "GetAddress", nullptr, "(s)", told_address);
    }

    static void told_address(GObject*, GAsyncResult* result, gpointer data) {
        auto& self = *static_cast<Question*>(data);
        const VariantOwner reply(self.reply(result));
        const char* address = "";
        if (reply) g_variant_get(reply.get(), "(&s)", &address);
        self.finish(address);
    }

    void call(const char* interface, const char* method, GVariant* arguments, const char* type,
              GAsyncReadyCallback answered) {
        g_dbus_connection_call(connection_.get(), service, object, interface, method, arguments,
                               G_VARIANT_TYPE(type), G_DBUS_CALL_FLAGS_NO_AUTO_START, G_MAXINT,
                               nullptr, answered, this);
    }

    GVariant* reply(GAsyncResult* result) const {
        return g_dbus_connection_call_finish(connection_.get(), result, nullptr);
    }

    void finish(const std::string& address) {
        const std::unique_ptr<Question> owner(this);
        if (connection_) g_dbus_connection_close(connection_.get(), nullptr, nullptr, nullptr);
        answer_(address);
    }

    const std::function<void(const std::string&)> answer_;
    ObjectOwner<GDBusConnection> connection_;
};

}  // namespace

void ask_for_readers(const std::function<void(const std::string&)>& answer) {
    const std::string session = session_address();
    if (session.empty()) return answer({});
    (new Question(answer))->ask(session);
}
