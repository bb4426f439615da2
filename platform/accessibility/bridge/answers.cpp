#include "accessibility/bridge/answers.h"

#include <atspi/atspi-constants.h>
#include <locale.h>

#include "accessibility/bridge/interfaces.h"

namespace {

const char null_path[] = "/org/a11y/atspi/null";

GVariant* answer(GVariant* value) { return g_variant_new_tuple(&value, 1); }
GVariant* answer(const std::string& text) { return g_variant_new("(s)", text.c_str()); }
GVariant* truth(bool is_so) { return g_variant_new("(b)", is_so); }

int number(GVariant* arguments) {
    int value = 0;
    g_variant_get(arguments, "(i)", &value);
    return value;
}

unsigned natural_number(GVariant* arguments) {
    unsigned value = 0;
    g_variant_get(arguments, "(u)", &value);
    return value;
}

std::string locale_name() {
    const char* const name = setlocale(LC_MESSAGES, nullptr);
    return name ? name : "C";
}

enum class Act { pick, toggle_submenu };
struct ActionName {
    Act act;
    const char* name;
};

// The names are those that other toolkits use.
std::vector<ActionName> actions_of(const OpenRow& row) {
    std::vector<ActionName> actions;
    if (!row.is_enabled) return actions;
    if (row.can_be_picked || row.has_submenu) actions.push_back({Act::pick, "click"});
    if (row.has_submenu) actions.push_back({Act::toggle_submenu, "expand or contract"});
    return actions;
}

bool act(OpenMenus& menus, size_t level, int row, Act what) {
    if (what == Act::pick) return menus.pick(level, row);
    return menus.close_submenu(level, row) || menus.open_submenu(level, row);
}

}  // namespace

GVariant* reference(const Surroundings& surroundings, const std::optional<Node>& node) {
    const std::string path = node ? path_of(*node) : null_path;
    return g_variant_new("(so)", surroundings.bus_name.c_str(), path.c_str());
}

namespace {

std::vector<const char*> interfaces_of_row(const OpenRow& row) {
    std::vector<const char*> names = {accessible_interface, component_interface, action_interface};
    if (row.kind == OpenRow::field) {
        names.push_back(text_interface);
        names.push_back(editable_text_interface);
    }
    if (row.kind == OpenRow::bar) names.push_back(value_interface);
    return names;
}

}  // namespace

std::vector<const char*> interfaces_of(const NodeTree& tree, const Node& node) {
    switch (node.kind) {
        case Node::application:
            return {accessible_interface, application_interface};
        case Node::window:
        case Node::list:
            return {accessible_interface, component_interface};
        case Node::menu:
            return {accessible_interface, component_interface, selection_interface};
        case Node::row:
            return interfaces_of_row(tree.exists(node) ? tree.row(node) : OpenRow{});
    }
    return {};
}

GVariant* Answers::call(const Node& node, const std::string& interface, const std::string& method,
                        GVariant* arguments) const {
    if (interface == accessible_interface) return accessible(node, method, arguments);
    if (interface == component_interface) return component(node, method, arguments);
    if (interface == action_interface) return action(node, method, arguments);
    if (interface == selection_interface) return selection(node, method, arguments);
    if (interface == text_interface) return fields_.text(node, method, arguments);
    if (interface == editable_text_interface) return fields_.editing(node, method, arguments);
    if (interface == application_interface && method == "GetLocale") return answer(locale_name());
    return nullptr;
}

GVariant* Answers::property(const Node& node, const std::string& interface,
                            const std::string& name) const {
    if (interface == accessible_interface) {
        if (name == "Name") return g_variant_new_string(tree_.text(node).c_str());
        if (name == "ChildCount") return g_variant_new_int32(tree_.children(node));
        if (name == "Parent") return parent(node);
        if (name == "Locale") return g_variant_new_string(locale_name().c_str());
        if (name == "version") return g_variant_new_uint32(1);
        return g_variant_new_string("");
    }
    if (interface == application_interface) {
        if (name == "Id") return g_variant_new_int32(surroundings_.application_id);
        if (name == "AtspiVersion") return g_variant_new_string("2.1");
        return g_variant_new_string(name == "ToolkitName" ? "Delvio" : "1");
    }
    if (interface == text_interface) return fields_.text_property(node, name);
    if (interface == value_interface) return fields_.value_property(node, name);
    if (name == "NActions") {
        return g_variant_new_int32(static_cast<int>(actions_of(tree_.row(node)).size()));
    }
    if (name == "NSelectedChildren") {
        const bool has_any = tree_.menus().level(tree_.level(node)).highlighted >= 0;
        return g_variant_new_int32(has_any ? 1 : 0);
    }
    return nullptr;
}

GVariant* Answers::parent(const Node& node) const {
    if (node.kind != Node::application) return reference(surroundings_, tree_.parent(node));
    return g_variant_new("(so)", surroundings_.desktop_name.c_str(),
                         surroundings_.desktop_path.c_str());
}

GVariant* Answers::accessible(const Node& node, const std::string& method,
                              GVariant* arguments) const {
    if (method == "GetChildAtIndex") {
        return answer(reference(surroundings_, tree_.child(node, number(arguments))));
    }
    if (method == "GetChildren") return children(node);
    if (method == "GetIndexInParent") return g_variant_new("(i)", tree_.index_in_parent(node));
    if (method == "GetRelationSet") return g_variant_new("(a(ua(so)))", nullptr);
    if (method == "GetRole") return g_variant_new("(u)", tree_.role(node));
    if (method == "GetRoleName" || method == "GetLocalizedRoleName") {
        return answer(tree_.role_name(node));
    }
    if (method == "GetState") return states(node);
    if (method == "GetAttributes") return attributes(node);
    if (method == "GetApplication") return answer(reference(surroundings_, Node{}));
    if (method != "GetInterfaces") return nullptr;
    const std::vector<const char*> names = interfaces_of(tree_, node);
    return answer(g_variant_new_strv(names.data(), static_cast<gssize>(names.size())));
}

GVariant* Answers::children(const Node& node) const {
    GVariantBuilder all;
    g_variant_builder_init(&all, G_VARIANT_TYPE("a(so)"));
    const int count = tree_.children(node);
    for (int i = 0; i < count; i++) {
        g_variant_builder_add_value(&all, reference(surroundings_, tree_.child(node, i)));
    }
    return answer(g_variant_builder_end(&all));
}

GVariant* Answers::states(const Node& node) const {
    guint32 bits[2] = {0, 0};
    for (const unsigned state : tree_.states(node)) bits[state / 32] |= 1u << state % 32;
    return answer(g_variant_new_fixed_array(G_VARIANT_TYPE_UINT32, bits, 2, sizeof bits[0]));
}

GVariant* Answers::attributes(const Node& node) const {
    GVariantBuilder all;
    g_variant_builder_init(&all, G_VARIANT_TYPE("a{ss}"));
    g_variant_builder_add(&all, "{ss}", "toolkit", "Delvio");
    if (node.kind == Node::row && tree_.role(node) != ATSPI_ROLE_SEPARATOR) {
        const RowPlace place = tree_.menus().row_place(tree_.level(node), node.index);
        if (!place.count) return answer(g_variant_builder_end(&all));
        g_variant_builder_add(&all, "{ss}", "posinset", std::to_string(place.place).c_str());
        g_variant_builder_add(&all, "{ss}", "setsize", std::to_string(place.count).c_str());
    }
    return answer(g_variant_builder_end(&all));
}

// The point of the screen from which these coordinates count.
MenuPoint Answers::origin(const Node& node, unsigned coordinates) const {
    if (coordinates == ATSPI_COORD_TYPE_SCREEN) return {0, 0};
    const std::optional<Node> parent = tree_.parent(node);
    const bool is_of_parent = coordinates == ATSPI_COORD_TYPE_PARENT && parent;
    const Area area =
        is_of_parent ? tree_.area(*parent) : tree_.area(Node{Node::menu, node.level_number});
    return {area.left, area.top};
}

std::optional<Node> Answers::node_at(const Node& node, MenuPoint point) const {
    if (!tree_.area(node).contains(point)) return {};
    if (node.kind == Node::row) return node;
    const int row = tree_.menus().row_at(tree_.level(node), point);
    const Node found = {Node::row, node.level_number, row};
    if (node.kind == Node::list) return row >= 0 && tree_.parent(found) == node ? found : node;
    return row < 0 ? Node{Node::menu, node.level_number} : found;
}

bool Answers::highlight(const Node& node) const {
    return node.kind == Node::row && tree_.menus().highlight(tree_.level(node), node.index);
}

GVariant* Answers::component(const Node& node, const std::string& method,
                             GVariant* arguments) const {
    const Area area = tree_.area(node);
    if (method == "Contains" || method == "GetAccessibleAtPoint") {
        int x, y;
        unsigned coordinates;
        g_variant_get(arguments, "(iiu)", &x, &y, &coordinates);
        const MenuPoint from = origin(node, coordinates);
        const MenuPoint point = {x + from.x, y + from.y};
        if (method == "Contains") return truth(area.contains(point));
        return answer(reference(surroundings_, node_at(node, point)));
    }
    if (method == "GetExtents") {
        const MenuPoint from = origin(node, natural_number(arguments));
        return g_variant_new("((iiii))", area.left - from.x, area.top - from.y, area.width,
                             area.height);
    }
    if (method == "GetPosition") {
        const MenuPoint from = origin(node, natural_number(arguments));
        return g_variant_new("(ii)", area.left - from.x, area.top - from.y);
    }
    if (method == "GetSize") return g_variant_new("(ii)", area.width, area.height);
    if (method == "GetLayer") {
        const bool is_menu = tree_.menus().level(tree_.level(node)).kind == OpenLevel::menu;
        return g_variant_new("(u)", is_menu ? ATSPI_LAYER_POPUP : ATSPI_LAYER_WIDGET);
    }
    if (method == "GetMDIZOrder") return g_variant_new("(n)", 0);
    if (method == "GetAlpha") return g_variant_new("(d)", 1.0);
    if (method == "GrabFocus" || method == "ScrollTo") return truth(highlight(node));
    return nullptr;
}

GVariant* Answers::action(const Node& node, const std::string& method, GVariant* arguments) const {
    const size_t level = tree_.level(node);
    const std::vector<ActionName> actions = actions_of(tree_.menus().row(level, node.index));
    if (method == "GetActions") {
        GVariantBuilder all;
        g_variant_builder_init(&all, G_VARIANT_TYPE("a(sss)"));
        for (const ActionName& each : actions) {
            g_variant_builder_add(&all, "(sss)", each.name, "", "");
        }
        return answer(g_variant_builder_end(&all));
    }
    const int index = number(arguments);
    const bool is_known = index >= 0 && index < static_cast<int>(actions.size());
    if (method == "DoAction") {
        return truth(is_known && act(tree_.menus(), level, node.index, actions[index].act));
    }
    const bool is_name = method == "GetName" || method == "GetLocalizedName";
    return answer(std::string(is_known && is_name ? actions[index].name : ""));
}

GVariant* Answers::selection(const Node& node, const std::string& method,
                             GVariant* arguments) const {
    const int highlighted = tree_.menus().level(tree_.level(node)).highlighted;
    const int index = number(arguments);
    std::optional<Node> selected;
    if (highlighted >= 0) selected = Node{Node::row, node.level_number, highlighted};
    if (method == "GetSelectedChild") {
        return answer(reference(surroundings_, index == 0 ? selected : std::nullopt));
    }
    const std::optional<Node> wanted = tree_.child(node, index);
    if (method == "IsChildSelected") return truth(selected && wanted == selected);
    return truth(method == "SelectChild" && wanted && highlight(*wanted));
}
