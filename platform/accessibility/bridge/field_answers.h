// The answers to the questions of assistive technology about the text of a field and the value of a
// bar. Main thread.
#pragma once

#include <gio/gio.h>

#include <string>

#include "accessibility/bridge/field_text.h"
#include "accessibility/bridge/node_tree.h"

class FieldAnswers {
  public:
    explicit FieldAnswers(const NodeTree& tree) : tree_(tree) {}

    // The floating answer of a method, a tuple; null for a method that is not known. Places are
    // counted in characters.
    GVariant* text(const Node& field, const std::string& method, GVariant* arguments) const;
    GVariant* editing(const Node& field, const std::string& method, GVariant* arguments) const;
    // The floating value of a property; null for one that is not known.
    GVariant* text_property(const Node& field, const std::string& name) const;
    GVariant* value_property(const Node& bar, const std::string& name) const;

  private:
    GVariant* selection(const Node& field, const std::string& method, GVariant* arguments) const;
    GVariant* places(const Node& field, const std::string& method, GVariant* arguments) const;
    GVariant* area(const Node& field, int begin, int end, unsigned coordinates) const;
    MenuPoint origin(const Node& field, unsigned coordinates) const;
    bool write(const Node& field, const std::string& text, size_t caret) const;
    bool select(const Node& field, TextRange range) const;
    bool remove(const Node& field, TextRange range) const;
    bool insert(const Node& field, int at, const std::string& added) const;

    const NodeTree& tree_;
};
