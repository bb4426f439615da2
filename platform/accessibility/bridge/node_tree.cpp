#include "accessibility/bridge/node_tree.h"

#include <atspi/atspi-constants.h>

#include <algorithm>
#include <charconv>
#include <string_view>
#include <utility>

namespace {

const std::string folder = "/org/a11y/atspi/accessible/";
const std::string root_name = "root", window_prefix = "window_", menu_prefix = "menu_",
                  list_infix = "_list_", row_infix = "_row_";

// The number at the beginning of the text, which is shortened by it.
template <typename Number>
bool take_number(std::string_view* text, Number* number) {
    const auto end = text->data() + text->size();
    const auto [stop, error] = std::from_chars(text->data(), end, *number);
    if (error != std::errc{} || *number < 0) return false;
    text->remove_prefix(stop - text->data());
    return true;
}

bool take(std::string_view* text, const std::string& beginning) {
    if (!text->starts_with(beginning)) return false;
    text->remove_prefix(beginning.size());
    return true;
}

unsigned role_of(OpenRow::Kind kind) {
    switch (kind) {
        case OpenRow::item:
            return ATSPI_ROLE_MENU_ITEM;
        case OpenRow::check_item:
            return ATSPI_ROLE_CHECK_MENU_ITEM;
        case OpenRow::separator:
            return ATSPI_ROLE_SEPARATOR;
        case OpenRow::text:
            return ATSPI_ROLE_LABEL;
        case OpenRow::button:
            return ATSPI_ROLE_PUSH_BUTTON;
        case OpenRow::check_box:
            return ATSPI_ROLE_CHECK_BOX;
        case OpenRow::choice:
            return ATSPI_ROLE_COMBO_BOX;
        case OpenRow::list_item:
            return ATSPI_ROLE_LIST_ITEM;
        case OpenRow::field:
            return ATSPI_ROLE_ENTRY;
        case OpenRow::bar:
            return ATSPI_ROLE_PROGRESS_BAR;
    }
    return ATSPI_ROLE_UNKNOWN;
}

// The names are those that other toolkits use.
const char* role_name(unsigned role) {
    static const struct {
        unsigned role;
        const char* name;
    } names[] = {
        {ATSPI_ROLE_APPLICATION, "application"},
        {ATSPI_ROLE_WINDOW, "window"},
        {ATSPI_ROLE_MENU, "menu"},
        {ATSPI_ROLE_MENU_ITEM, "menu item"},
        {ATSPI_ROLE_CHECK_MENU_ITEM, "check menu item"},
        {ATSPI_ROLE_SEPARATOR, "separator"},
        {ATSPI_ROLE_ALERT, "alert"},
        {ATSPI_ROLE_DIALOG, "dialog"},
        {ATSPI_ROLE_PANEL, "panel"},
        {ATSPI_ROLE_LABEL, "label"},
        {ATSPI_ROLE_PUSH_BUTTON, "push button"},
        {ATSPI_ROLE_CHECK_BOX, "check box"},
        {ATSPI_ROLE_COMBO_BOX, "combo box"},
        {ATSPI_ROLE_LIST, "list"},
        {ATSPI_ROLE_LIST_ITEM, "list item"},
        {ATSPI_ROLE_ENTRY, "entry"},
        {ATSPI_ROLE_PROGRESS_BAR, "progress bar"},
    };
    for (const auto& each : names) {
        if (each.role == role) return each.name;
    }
    return "";
}

bool can_have_focus(const OpenRow& row) {
    return row.is_enabled && row.kind != OpenRow::text && row.kind != OpenRow::bar;
}

}  // namespace

std::vector<RowState> states_of(const OpenRow& row) {
    const bool is_widget = row.kind >= OpenRow::text;
    const bool is_checkable = row.kind == OpenRow::check_item || row.kind == OpenRow::check_box;
    const bool is_listed = row.kind == OpenRow::list_item;
    const bool is_field = row.kind == OpenRow::field;
    const std::pair<bool, RowState> all[] = {
        {row.is_in_sight, {ATSPI_STATE_SHOWING, "showing"}},
        {row.is_enabled, {ATSPI_STATE_ENABLED, "enabled"}},
        {row.is_enabled, {ATSPI_STATE_SENSITIVE, "sensitive"}},
        {can_have_focus(row), {ATSPI_STATE_FOCUSABLE, "focusable"}},
        {is_widget ? is_listed : row.is_enabled, {ATSPI_STATE_SELECTABLE, "selectable"}},
        {is_listed && row.is_checked, {ATSPI_STATE_SELECTED, "selected"}},
        {is_checkable, {ATSPI_STATE_CHECKABLE, "checkable"}},
        {is_checkable && row.is_checked, {ATSPI_STATE_CHECKED, "checked"}},
        {row.is_mixed, {ATSPI_STATE_INDETERMINATE, "indeterminate"}},
        {is_field, {ATSPI_STATE_EDITABLE, "editable"}},
        {is_field, {ATSPI_STATE_SINGLE_LINE, "single-line"}},
        {row.is_default, {ATSPI_STATE_IS_DEFAULT, "is-default"}},
        {row.has_submenu, {ATSPI_STATE_EXPANDABLE, "expandable"}},
        {row.has_submenu, {ATSPI_STATE_HAS_POPUP, "has-popup"}},
    };
    std::vector<RowState> states;
    for (const auto& [is_so, state] : all) {
        if (is_so) states.push_back(state);
    }
    return states;
}

std::string name_of(const Node& node) {
    const std::string id = std::to_string(node.level_number);
    switch (node.kind) {
        case Node::application:
            return root_name;
        case Node::window:
            return window_prefix + id;
        case Node::menu:
            return menu_prefix + id;
        case Node::list:
            return menu_prefix + id + list_infix + std::to_string(node.index);
        case Node::row:
            return menu_prefix + id + row_infix + std::to_string(node.index);
    }
    return {};
}

std::string path_of(const Node& node) { return folder + name_of(node); }

std::optional<Node> node_named(const std::string& name) {
    std::string_view rest = name;
    if (rest == root_name) return Node{};
    Node node;
    if (take(&rest, window_prefix)) {
        node.kind = Node::window;
        if (take_number(&rest, &node.level_number) && rest.empty()) return node;
        return {};
    }
    node.kind = Node::menu;
    if (!take(&rest, menu_prefix) || !take_number(&rest, &node.level_number)) return {};
    if (rest.empty()) return node;
    node.kind = take(&rest, list_infix) ? Node::list : Node::row;
    if (node.kind == Node::row && !take(&rest, row_infix)) return {};
    if (!take_number(&rest, &node.index) || !rest.empty()) return {};
    return node;
}

std::optional<size_t> NodeTree::find_level(unsigned number) const {
    for (size_t i = 0; i < menus_.levels(); i++) {
        if (menus_.level(i).number == number) return i;
    }
    return {};
}

bool NodeTree::exists(const Node& node) const {
    if (node.kind == Node::application) return true;
    const std::optional<size_t> level = find_level(node.level_number);
    if (!level || (node.kind == Node::window && *level != 0)) return false;
    if (node.kind < Node::list) return true;
    const Node row = {Node::row, node.level_number, node.index};
    if (node.index >= menus_.level(*level).rows) return false;
    return node.kind == Node::row || list_of(row) == node;
}

// The list that holds a row of a panel: the rows of a group follow each other.
std::optional<Node> NodeTree::list_of(const Node& row) const {
    const size_t index = level(row);
    if (menus_.level(index).kind == OpenLevel::menu) return {};
    if (menus_.row(index, row.index).kind != OpenRow::list_item) return {};
    const RowPlace place = menus_.row_place(index, row.index);
    if (!place.count) return {};
    return Node{Node::list, row.level_number, row.index - place.place + 1};
}

int NodeTree::list_size(const Node& list) const {
    return menus_.row_place(level(list), list.index).count;
}

// What stands directly in a panel: its lists, and the rows that are in none.
std::vector<Node> NodeTree::panel_children(const Node& menu) const {
    std::vector<Node> nodes;
    const int rows = menus_.level(level(menu)).rows;
    for (int i = 0; i < rows; i++) {
        const Node row = {Node::row, menu.level_number, i};
        const std::optional<Node> list = list_of(row);
        if (!list || list->index == i) nodes.push_back(list.value_or(row));
    }
    return nodes;
}

Area NodeTree::list_area(const Node& list) const {
    const size_t index = level(list);
    const Area first = menus_.row_area(index, list.index);
    int left = first.left, top = first.top, right = first.right(), bottom = first.bottom();
    for (int i = 1; i < list_size(list); i++) {
        const Area row = menus_.row_area(index, list.index + i);
        left = std::min(left, row.left), right = std::max(right, row.right());
        top = std::min(top, row.top), bottom = std::max(bottom, row.bottom());
    }
    return {left, top, right - left, bottom - top};
}

size_t NodeTree::level(const Node& node) const { return find_level(node.level_number).value_or(0); }

OpenRow NodeTree::row(const Node& node) const { return menus_.row(level(node), node.index); }

std::optional<Node> NodeTree::parent(const Node& node) const {
    switch (node.kind) {
        case Node::application:
            return {};
        case Node::window:
            return Node{};
        case Node::row:
            return list_of(node).value_or(Node{Node::menu, node.level_number});
        case Node::list:
            return Node{Node::menu, node.level_number};
        case Node::menu:
            break;
    }
    const size_t index = level(node);
    if (index == 0) return Node{Node::window, node.level_number};
    const unsigned above = menus_.level(index - 1).number;
    const int row = menus_.level(index).parent_row;
    // The row may have gone while its submenu is still open.
    return row < 0 ? Node{Node::menu, above} : Node{Node::row, above, row};
}

bool NodeTree::is_expanded(const Node& node) const {
    const size_t below = level(node) + 1;
    return below < menus_.levels() && menus_.level(below).parent_row == node.index;
}

int NodeTree::children(const Node& node) const {
    switch (node.kind) {
        case Node::application:
            return menus_.levels() ? 1 : 0;
        case Node::window:
            return 1;
        case Node::menu:
            if (level_kind(node) == OpenLevel::menu) return menus_.level(level(node)).rows;
            return static_cast<int>(panel_children(node).size());
        case Node::list:
            return list_size(node);
        case Node::row:
            return is_expanded(node) ? 1 : 0;
    }
    return 0;
}

std::optional<Node> NodeTree::child(const Node& node, int index) const {
    if (index < 0 || index >= children(node)) return {};
    switch (node.kind) {
        case Node::application:
            return Node{Node::window, menus_.level(0).number};
        case Node::window:
            return Node{Node::menu, node.level_number};
        case Node::menu:
            if (level_kind(node) == OpenLevel::menu)
                return Node{Node::row, node.level_number, index};
            return panel_children(node)[static_cast<size_t>(index)];
        case Node::list:
            return Node{Node::row, node.level_number, node.index + index};
        case Node::row:
            return Node{Node::menu, menus_.level(level(node) + 1).number};
    }
    return {};
}

int NodeTree::index_in_parent(const Node& node) const {
    if (node.kind == Node::application) return -1;
    if (node.kind < Node::list) return 0;
    if (level_kind(node) == OpenLevel::menu) return node.index;
    const Node above = *parent(node);
    if (above.kind == Node::list) return node.index - above.index;
    const std::vector<Node> nodes = panel_children(above);
    return static_cast<int>(std::ranges::find(nodes, node) - nodes.begin());
}

OpenLevel::Kind NodeTree::level_kind(const Node& node) const {
    return menus_.level(level(node)).kind;
}

unsigned NodeTree::role(const Node& node) const {
    switch (node.kind) {
        case Node::application:
            return ATSPI_ROLE_APPLICATION;
        case Node::window:
            if (level_kind(node) == OpenLevel::menu) return ATSPI_ROLE_WINDOW;
            return level_kind(node) == OpenLevel::alert ? ATSPI_ROLE_ALERT : ATSPI_ROLE_DIALOG;
        case Node::menu:
            return level_kind(node) == OpenLevel::menu ? ATSPI_ROLE_MENU : ATSPI_ROLE_PANEL;
        case Node::list:
            return ATSPI_ROLE_LIST;
        case Node::row:
            break;
    }
    return role_of(row(node).kind);
}

std::string NodeTree::role_name(const Node& node) const { return ::role_name(role(node)); }

std::string NodeTree::text(const Node& node) const {
    switch (node.kind) {
        case Node::application:
            return menus_.application();
        case Node::row:
            return row(node).name;
        case Node::list:
            return {};
        case Node::window:
        case Node::menu:
            break;
    }
    const size_t index = level(node);
    const OpenLevel open = menus_.level(index);
    if (open.kind != OpenLevel::menu) return node.kind == Node::window ? open.name : "";
    // The menu of a folder has the folder's name.
    if (index > 0 && open.parent_row >= 0) return menus_.row(index - 1, open.parent_row).name;
    return open.name.empty() ? menus_.application() : open.name;
}

std::vector<unsigned> NodeTree::states(const Node& node) const {
    if (node.kind == Node::application) return {};
    std::vector<unsigned> states = {ATSPI_STATE_VISIBLE};
    const auto add = [&states](bool is_so, unsigned state) {
        if (is_so) states.push_back(state);
    };
    add(node == focused(), ATSPI_STATE_FOCUSED);
    const OpenRow shown = node.kind == Node::row ? row(node) : OpenRow{};
    const bool is_plain = node.kind != Node::row;
    add(is_plain, ATSPI_STATE_SHOWING);
    add(is_plain, ATSPI_STATE_ENABLED);
    add(is_plain, ATSPI_STATE_SENSITIVE);
    const bool is_panel = node.kind != Node::application && level_kind(node) != OpenLevel::menu;
    add(node.kind == Node::menu, ATSPI_STATE_FOCUSABLE);
    add(node.kind == Node::menu && !is_panel, ATSPI_STATE_VERTICAL);
    const bool is_waiting = is_panel && level_kind(node) != OpenLevel::progress;
    add(node.kind == Node::window && is_waiting, ATSPI_STATE_ACTIVE);
    add(node.kind == Node::window && is_waiting, ATSPI_STATE_MODAL);
    if (is_plain) return states;
    const bool is_highlighted = menus_.level(level(node)).highlighted == node.index;
    add(!is_panel && is_highlighted, ATSPI_STATE_SELECTED);
    for (const RowState& each : states_of(shown)) states.push_back(each.state);
    add(is_expanded(node), ATSPI_STATE_EXPANDED);
    return states;
}

Area NodeTree::area(const Node& node) const {
    if (node.kind == Node::application) return {};
    if (node.kind == Node::list) return list_area(node);
    const size_t index = level(node);
    return node.kind == Node::row ? menus_.row_area(index, node.index) : menus_.level_area(index);
}

// The deepest highlight: a submenu that the pointer has opened has none until the pointer is there.
std::optional<Node> NodeTree::focused() const {
    for (size_t i = menus_.levels(); i-- > 0;) {
        const OpenLevel open = menus_.level(i);
        if (open.highlighted >= 0) return Node{Node::row, open.number, open.highlighted};
    }
    const bool has_keys = menus_.levels() && menus_.level(0).kind != OpenLevel::progress;
    if (has_keys) return Node{Node::menu, menus_.level(0).number};
    return {};
}
