// Tells assistive technology what changes: levels that open and close, the highlight, rows. Main
// thread.
#pragma once

#include <gio/gio.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "accessibility/bridge/node_tree.h"

// An event of a node: its name, such as "StateChanged", its detail, such as "focused", two numbers,
// and a floating value.
struct Event {
    const char* name;
    const char* detail;
    int first, second;
    GVariant* value;
};

class Announcer {
  public:
    using Send = std::function<void(const Node&, const Event&)>;
    using Reference = std::function<GVariant*(const Node&)>;

    Announcer(const NodeTree& tree, Send send, Reference reference)
        : tree_(tree), send_(std::move(send)), reference_(std::move(reference)) {}

    // Sends what has changed since the last call.
    void follow();
    // Somebody was told about a node, and may remember it. Of rows that nobody has asked about,
    // changes need not be told.
    void note_asked(const Node& node);

  private:
    struct ToldLevel {
        OpenLevel level;
        std::map<int, OpenRow> rows;
    };

    void send(const Node& node, const char* name, const char* detail, int first,
              GVariant* value) const {
        send_(node, {name, detail, first, 0, value});
    }
    void tell_state(const Node& node, const char* state, bool is_set) const;
    void tell_opened(size_t level) const;
    void tell_closed(size_t level) const;
    void tell_presence(size_t level, const OpenLevel& open, bool is_there) const;
    void tell_rows(size_t level);
    void tell_row(const Node& node, const OpenRow& before, const OpenRow& now) const;
    void tell_text(const Node& node, const OpenRow& before, const OpenRow& now) const;
    void tell_focus();
    std::optional<Node> parent_row(size_t level, const OpenLevel& open) const;

    const NodeTree& tree_;
    const Send send_;
    const Reference reference_;
    std::vector<ToldLevel> told_;
    std::optional<Node> focused_;
};
