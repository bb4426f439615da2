// The answers to the questions of assistive technology about one node. Main thread.
#pragma once

#include <gio/gio.h>

#include <string>
#include <vector>

#include "accessibility/bridge/field_answers.h"
#include "accessibility/bridge/node_tree.h"

// What this process is called on its bus, and what its desktop is.
struct Surroundings {
    std::string bus_name;
    std::string desktop_name, desktop_path;  // of the application's parent
    int application_id = 0;
};

// A reference to a node, of type (so); to no node for nothing.
GVariant* reference(const Surroundings& surroundings, const std::optional<Node>& node);

// The interfaces that a node has.
std::vector<const char*> interfaces_of(const NodeTree& tree, const Node& node);

class Answers {
  public:
    Answers(const NodeTree& tree, const Surroundings& surroundings)
        : tree_(tree), fields_(tree), surroundings_(surroundings) {}

    // The floating answer of a method, a tuple; null for a method that is not known.
    GVariant* call(const Node& node, const std::string& interface, const std::string& method,
                   GVariant* arguments) const;
    // The floating value of a property; null for one that is not known.
    GVariant* property(const Node& node, const std::string& interface,
                       const std::string& name) const;

  private:
    GVariant* accessible(const Node& node, const std::string& method, GVariant* arguments) const;
    GVariant* component(const Node& node, const std::string& method, GVariant* arguments) const;
    GVariant* action(const Node& node, const std::string& method, GVariant* arguments) const;
    GVariant* selection(const Node& node, const std::string& method, GVariant* arguments) const;

    GVariant* children(const Node& node) const;
    GVariant* states(const Node& node) const;
    GVariant* attributes(const Node& node) const;
    GVariant* parent(const Node& node) const;
    std::optional<Node> node_at(const Node& node, MenuPoint point) const;
    MenuPoint origin(const Node& node, unsigned coordinates) const;
    bool highlight(const Node& node) const;

    const NodeTree& tree_;
    const FieldAnswers fields_;
    const Surroundings& surroundings_;
};
