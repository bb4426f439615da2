// The connection to the bus of assistive technology, and what this process offers there.
#include <gio/gio.h>
#include <host/glib_owners.h>

#include <memory>
#include <string_view>

#include "accessibility/bridge/announcer.h"
#include "accessibility/bridge/answers.h"
#include "accessibility/bridge/interfaces.h"
#include "accessibility/bridge_module.h"

namespace {

using files::ObjectOwner;
using files::VariantOwner;

const char registry[] = "org.a11y.atspi.Registry";
const char nodes_folder[] = "/org/a11y/atspi/accessible", cache_path[] = "/org/a11y/atspi/cache",
           root_path[] = "/org/a11y/atspi/accessible/root";

// GIO's calls answer in this context while it lives.
class Scope {
  public:
    explicit Scope(GMainContext* context) : context_(context) {
        g_main_context_push_thread_default(context_);
    }
    ~Scope() { g_main_context_pop_thread_default(context_); }
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

  private:
    GMainContext* context_;
};

class AtspiBridge : public ReaderBridge {
  public:
    AtspiBridge(OpenMenus& menus, const std::string& address, GMainContext* context);
    ~AtspiBridge() override;

    void menus_changed() override;
    bool is_closed() const override;

  private:
    // Null once the bridge has gone: an answer may come later.
    using Self = std::shared_ptr<AtspiBridge*>;

    gpointer self_for_answer() const { return new Self(self_); }
    static AtspiBridge* taken_self(gpointer data) {
        const std::unique_ptr<Self> self(static_cast<Self*>(data));
        return **self;
    }

    static void connected(GObject*, GAsyncResult* result, gpointer data);
    static void embedded(GObject*, GAsyncResult* result, gpointer data);
    void offer_nodes();
    void embed();
    void send(const Node& node, const Event& event) const;

    static GDBusInterfaceInfo** describe(GDBusConnection*, const char*, const char*,
                                         const char* name, gpointer);
    static const GDBusInterfaceVTable* dispatch(GDBusConnection*, const char*, const char*,
                                                const char*, const char* name, gpointer* out,
                                                gpointer self);
    static void call(GDBusConnection*, const char*, const char* path, const char* interface,
                     const char* method, GVariant* arguments, GDBusMethodInvocation* invocation,
                     gpointer self);
    static GVariant* get(GDBusConnection*, const char*, const char* path, const char* interface,
                         const char* name, GError** error, gpointer self);
    static gboolean set(GDBusConnection*, const char*, const char*, const char*, const char*,
                        GVariant* value, GError**, gpointer self);
    static void call_cache(GDBusConnection*, const char*, const char*, const char*, const char*,
                           GVariant*, GDBusMethodInvocation* invocation, gpointer);
    std::optional<Node> node_at_path(const char* path);

    GMainContext* const context_;
    const Self self_;
    const NodeTree tree_;
    Surroundings surroundings_;
    const Answers answers_;
    Announcer announcer_;
    ObjectOwner<GDBusConnection> connection_;
    guint nodes_ = 0, cache_ = 0;
    bool has_failed_ = false, is_embedded_ = false;
};

AtspiBridge::AtspiBridge(OpenMenus& menus, const std::string& address, GMainContext* context)
    : context_(context),
      self_(std::make_shared<AtspiBridge*>(this)),
      tree_(menus),
      answers_(tree_, surroundings_),
      announcer_(
          tree_, [this](const Node& node, const Event& event) { send(node, event); },
          [this](const Node& node) { return reference(surroundings_, node); }) {
    const Scope scope(context_);
    const auto flags =
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    g_dbus_connection_new_for_address(address.c_str(), flags, nullptr, nullptr, connected,
                                      self_for_answer());
}

AtspiBridge::~AtspiBridge() {
    *self_ = nullptr;
    if (!connection_) return;
    if (nodes_) g_dbus_connection_unregister_subtree(connection_.get(), nodes_);
    if (cache_) g_dbus_connection_unregister_object(connection_.get(), cache_);
    const Scope scope(context_);
    g_dbus_connection_close(connection_.get(), nullptr, nullptr, nullptr);
}

void AtspiBridge::connected(GObject*, GAsyncResult* result, gpointer data) {
    ObjectOwner<GDBusConnection> connection(
        g_dbus_connection_new_for_address_finish(result, nullptr));
    AtspiBridge* const self = taken_self(data);
    if (!self) return;
    self->has_failed_ = !connection;
    if (!connection) return;
    self->connection_ = std::move(connection);
    self->surroundings_.bus_name = g_dbus_connection_get_unique_name(self->connection_.get());
    self->offer_nodes();
    self->embed();
}

void AtspiBridge::offer_nodes() {
    static const GDBusSubtreeVTable nodes = {nullptr, describe, dispatch, {}};
    static const GDBusInterfaceVTable cache = {call_cache, nullptr, nullptr, {}};
    nodes_ = g_dbus_connection_register_subtree(connection_.get(), nodes_folder, &nodes,
                                                G_DBUS_SUBTREE_FLAGS_DISPATCH_TO_UNENUMERATED_NODES,
                                                this, nullptr, nullptr);
    cache_ = g_dbus_connection_register_object(connection_.get(), cache_path,
                                               interface_named(cache_interface), &cache, this,
                                               nullptr, nullptr);
}

// Makes this process an application of the desktop that readers see.
void AtspiBridge::embed() {
    g_dbus_connection_call(connection_.get(), registry, root_path, "org.a11y.atspi.Socket", "Embed",
                           g_variant_new("((so))", surroundings_.bus_name.c_str(), root_path),
                           G_VARIANT_TYPE("((so))"), G_DBUS_CALL_FLAGS_NONE, G_MAXINT, nullptr,
                           embedded, self_for_answer());
}

void AtspiBridge::embedded(GObject* connection, GAsyncResult* result, gpointer data) {
    const VariantOwner reply(
        g_dbus_connection_call_finish(G_DBUS_CONNECTION(connection), result, nullptr));
    AtspiBridge* const self = taken_self(data);
    if (!self) return;
    self->has_failed_ = !reply;
    if (!reply) return;
    const char *name, *path;
    g_variant_get(reply.get(), "((&s&o))", &name, &path);
    self->surroundings_.desktop_name = name;
    self->surroundings_.desktop_path = path;
    self->is_embedded_ = true;
    self->menus_changed();
}

void AtspiBridge::menus_changed() {
    if (is_embedded_ && !is_closed()) announcer_.follow();
}

bool AtspiBridge::is_closed() const {
    return has_failed_ || (connection_ && g_dbus_connection_is_closed(connection_.get()));
}

void AtspiBridge::send(const Node& node, const Event& event) const {
    const bool is_of_window = std::string_view(event.name).ends_with("ctivate");
    g_dbus_connection_emit_signal(
        connection_.get(), nullptr, path_of(node).c_str(),
        is_of_window ? "org.a11y.atspi.Event.Window" : "org.a11y.atspi.Event.Object", event.name,
        g_variant_new("(siiva{sv})", event.detail, event.first, event.second, event.value, nullptr),
        nullptr);
}

GDBusInterfaceInfo** AtspiBridge::describe(GDBusConnection*, const char*, const char*,
                                           const char* name, gpointer data) {
    const auto& self = *static_cast<AtspiBridge*>(data);
    const std::optional<Node> node = name ? node_named(name) : std::nullopt;
    if (!node) return nullptr;
    const std::vector<const char*> names = interfaces_of(self.tree_, *node);
    GDBusInterfaceInfo** const all = g_new0(GDBusInterfaceInfo*, names.size() + 1);
    for (size_t i = 0; i < names.size(); i++) {
        all[i] = g_dbus_interface_info_ref(interface_named(names[i]));
    }
    return all;
}

const GDBusInterfaceVTable* AtspiBridge::dispatch(GDBusConnection*, const char*, const char*,
                                                  const char*, const char*, gpointer* out,
                                                  gpointer self) {
    static const GDBusInterfaceVTable methods = {call, get, set, {}};
    *out = self;
    return &methods;
}

std::optional<Node> AtspiBridge::node_at_path(const char* path) {
    const std::string text = path;
    const std::optional<Node> node = node_named(text.substr(text.rfind('/') + 1));
    if (!node || !tree_.exists(*node)) return {};
    announcer_.note_asked(*node);
    return node;
}

void AtspiBridge::call(GDBusConnection*, const char*, const char* path, const char* interface,
                       const char* method, GVariant* arguments, GDBusMethodInvocation* invocation,
                       gpointer data) {
    auto& self = *static_cast<AtspiBridge*>(data);
    const std::optional<Node> node = self.node_at_path(path);
    GVariant* const answer =
        node ? self.answers_.call(*node, interface, method, arguments) : nullptr;
    if (answer) return g_dbus_method_invocation_return_value(invocation, answer);
    g_dbus_method_invocation_return_dbus_error(invocation,
                                               "org.freedesktop.DBus.Error.UnknownObject",
                                               "This part of the menu or window is not open.");
}

GVariant* AtspiBridge::get(GDBusConnection*, const char*, const char* path, const char* interface,
                           const char* name, GError** error, gpointer data) {
    auto& self = *static_cast<AtspiBridge*>(data);
    const std::optional<Node> node = self.node_at_path(path);
    GVariant* const value = node ? self.answers_.property(*node, interface, name) : nullptr;
    if (!value) {
        g_set_error(error, G_DBUS_ERROR, G_DBUS_ERROR_UNKNOWN_OBJECT,
                    "This part of the menu or window is not open.");
    }
    return value;
}

// The registry numbers the applications. Nothing else can be set.
gboolean AtspiBridge::set(GDBusConnection*, const char*, const char*, const char*, const char*,
                          GVariant* value, GError**, gpointer data) {
    auto& self = *static_cast<AtspiBridge*>(data);
    self.surroundings_.application_id = g_variant_get_int32(value);
    return TRUE;
}

// A reader asks for each node that it comes across, and no menu is handed over as a whole.
void AtspiBridge::call_cache(GDBusConnection*, const char*, const char*, const char*, const char*,
                             GVariant*, GDBusMethodInvocation* invocation, gpointer) {
    g_dbus_method_invocation_return_value(invocation,
                                          g_variant_new("(a((so)(so)(so)iiassusau))", nullptr));
}

}  // namespace

extern "C" __attribute__((visibility("default"))) ReaderBridge* delvio_open_reader_bridge(
    OpenMenus& menus, const std::string& address, GMainContext* context) {
    return new AtspiBridge(menus, address, context);
}
