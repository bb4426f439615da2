// The tree of nodes that assistive technology sees: the application, its menu's window, a menu for
// each open level, and its rows; list items of a panel stand in a list of their own. A node is
// nothing but its path, so that a level of a hundred thousand rows costs no more than one of ten.
// Main thread.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "accessibility/open_menus.h"

struct Node {
    enum Kind { application, window, menu, list, row };
    Kind kind = application;
    unsigned level_number = 0;  // of the level that is, has or holds the node
    int index = 0;              // of a row; of a list, that of its first row

    bool operator==(const Node&) const = default;
};

// The last part of the node's path.
std::string name_of(const Node& node);
std::string path_of(const Node& node);
// Nothing for a name that no node can have.
std::optional<Node> node_named(const std::string& name);

// A state that a row has by itself, whatever is highlighted or open.
struct RowState {
    unsigned state;
    const char* name;  // in events

    bool operator==(const RowState& other) const { return state == other.state; }
};
std::vector<RowState> states_of(const OpenRow& row);

class NodeTree {
  public:
    explicit NodeTree(OpenMenus& menus) : menus_(menus) {}

    OpenMenus& menus() const { return menus_; }

    // Whether the node is shown now. All other questions are for nodes that exist.
    bool exists(const Node& node) const;
    // Of a window, a menu or a row.
    size_t level(const Node& node) const;

    // Nothing for the application.
    std::optional<Node> parent(const Node& node) const;
    int children(const Node& node) const;
    std::optional<Node> child(const Node& node, int index) const;
    int index_in_parent(const Node& node) const;
    OpenRow row(const Node& node) const;

    unsigned role(const Node& node) const;
    std::string role_name(const Node& node) const;
    std::string text(const Node& node) const;
    // Numbers of states.
    std::vector<unsigned> states(const Node& node) const;
    // On the screen; empty for the application.
    Area area(const Node& node) const;
    // The node where the keys act; nothing when nothing that is open has them.
    std::optional<Node> focused() const;

  private:
    std::optional<size_t> find_level(unsigned number) const;
    bool is_expanded(const Node& node) const;
    OpenLevel::Kind level_kind(const Node& node) const;
    std::optional<Node> list_of(const Node& row) const;
    int list_size(const Node& list) const;
    std::vector<Node> panel_children(const Node& menu) const;
    Area list_area(const Node& list) const;

    OpenMenus& menus_;
};
