#include "accessibility/bridge/node_tree.h"

#include <atspi/atspi-constants.h>

#include <charconv>
#include <string_view>

namespace {

const std::string folder = "/org/a11y/atspi/accessible/";
const std::string root_name = "root", window_prefix = "window_", menu_prefix = "menu_",
                  row_infix = "_row_";

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

}  // namespace

std::string name_of(const Node& node) {
    const std::string id = std::to_string(node.level_number);
    switch (node.kind) {
        case Node::application:
            return root_name;
        case Node::window:
            return window_prefix + id;
        case Node::menu:
            return menu_prefix + id;
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
    node.kind = Node::row;
    if (!take(&rest, row_infix) || !take_number(&rest, &node.index) || !rest.empty()) return {};
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
    return node.kind != Node::row || node.index < menus_.level(*level).rows;
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
            return menus_.level(level(node)).rows;
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
            return Node{Node::row, node.level_number, index};
        case Node::row:
            return Node{Node::menu, menus_.level(level(node) + 1).number};
    }
    return {};
}

int NodeTree::index_in_parent(const Node& node) const {
    if (node.kind == Node::application) return -1;
    return node.kind == Node::row ? node.index : 0;
}

unsigned NodeTree::role(const Node& node) const {
    switch (node.kind) {
        case Node::application:
            return ATSPI_ROLE_APPLICATION;
        case Node::window:
            return ATSPI_ROLE_WINDOW;
        case Node::menu:
            return ATSPI_ROLE_MENU;
        case Node::row:
            break;
    }
    switch (row(node).kind) {
        case OpenRow::separator:
            return ATSPI_ROLE_SEPARATOR;
        case OpenRow::check_item:
            return ATSPI_ROLE_CHECK_MENU_ITEM;
        case OpenRow::item:
            break;
    }
    return ATSPI_ROLE_MENU_ITEM;
}

std::string NodeTree::role_name(const Node& node) const {
    switch (role(node)) {
        case ATSPI_ROLE_APPLICATION:
            return "application";
        case ATSPI_ROLE_WINDOW:
            return "window";
        case ATSPI_ROLE_MENU:
            return "menu";
        case ATSPI_ROLE_SEPARATOR:
            return "separator";
        case ATSPI_ROLE_CHECK_MENU_ITEM:
            return "check menu item";
    }
    return "menu item";
}

std::string NodeTree::text(const Node& node) const {
    switch (node.kind) {
        case Node::application:
            return menus_.application();
        case Node::row:
            return row(node).name;
        case Node::window:
        case Node::menu:
            break;
    }
    const size_t index = level(node);
    const OpenLevel open = menus_.level(index);
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
    add(is_plain || shown.is_in_sight, ATSPI_STATE_SHOWING);
    add(is_plain || shown.is_enabled, ATSPI_STATE_ENABLED);
    add(is_plain || shown.is_enabled, ATSPI_STATE_SENSITIVE);
    add(node.kind == Node::menu, ATSPI_STATE_FOCUSABLE);
    add(node.kind == Node::menu, ATSPI_STATE_VERTICAL);
    if (is_plain) return states;
    add(shown.is_enabled, ATSPI_STATE_FOCUSABLE);
    add(shown.is_enabled, ATSPI_STATE_SELECTABLE);
    add(menus_.level(level(node)).highlighted == node.index, ATSPI_STATE_SELECTED);
    add(shown.kind == OpenRow::check_item, ATSPI_STATE_CHECKABLE);
    add(shown.is_checked, ATSPI_STATE_CHECKED);
    add(shown.is_mixed, ATSPI_STATE_INDETERMINATE);
    add(shown.has_submenu, ATSPI_STATE_HAS_POPUP);
    add(shown.has_submenu, ATSPI_STATE_EXPANDABLE);
    add(is_expanded(node), ATSPI_STATE_EXPANDED);
    return states;
}

Area NodeTree::area(const Node& node) const {
    if (node.kind == Node::application) return {};
    const size_t index = level(node);
    return node.kind == Node::row ? menus_.row_area(index, node.index) : menus_.level_area(index);
}

// The deepest highlight: a submenu that the pointer has opened has none until the pointer is there.
std::optional<Node> NodeTree::focused() const {
    for (size_t i = menus_.levels(); i-- > 0;) {
        const OpenLevel open = menus_.level(i);
        if (open.highlighted >= 0) return Node{Node::row, open.number, open.highlighted};
    }
    if (menus_.levels()) return Node{Node::menu, menus_.level(0).number};
    return {};
}
