#include "accessibility/bridge/announcer.h"

#include <algorithm>
#include <utility>

#include "accessibility/bridge/field_text.h"

namespace {

const char window_activated[] = "Activate", window_deactivated[] = "Deactivate";
const char state_event[] = "StateChanged", children_event[] = "ChildrenChanged";

Node row_node(const OpenLevel& level, int row) { return {Node::row, level.number, row}; }

}  // namespace

void Announcer::tell_state(const Node& node, const char* state, bool is_set) const {
    send(node, state_event, state, is_set, g_variant_new_int32(0));
}

std::optional<Node> Announcer::parent_row(size_t level, const OpenLevel& open) const {
    if (level == 0 || open.parent_row < 0) return {};
    return row_node(told_[level - 1].level, open.parent_row);
}

void Announcer::follow() {
    OpenMenus& menus = tree_.menus();
    const size_t count = menus.levels();
    size_t same = 0;
    while (same < std::min(count, told_.size()) &&
           menus.level(same).number == told_[same].level.number) {
        same++;
    }
    while (told_.size() > same) {
        tell_closed(told_.size() - 1);
        told_.pop_back();
    }
    for (size_t i = 0; i < same; i++) tell_rows(i);
    for (size_t i = same; i < count; i++) {
        told_.push_back({menus.level(i), {}});
        tell_opened(i);
    }
    tell_focus();
}

void Announcer::tell_opened(size_t level) const {
    const OpenLevel& open = told_[level].level;
    tell_presence(level, open, true);
    if (open.kind != OpenLevel::menu) return;
    if (open.highlighted >= 0) tell_state(row_node(open, open.highlighted), "selected", true);
}

void Announcer::tell_closed(size_t level) const { tell_presence(level, told_[level].level, false); }

void Announcer::tell_presence(size_t level, const OpenLevel& open, bool is_there) const {
    const Node menu = {Node::menu, open.number}, window = {Node::window, open.number};
    const Node inner = level == 0 ? window : menu;
    const std::optional<Node> row = parent_row(level, open);
    if (level == 0 || row) {
        const char* const change = is_there ? "add" : "remove";
        send(row.value_or(Node{}), children_event, change, 0, reference_(inner));
    }
    if (row) tell_state(*row, "expanded", is_there);
    if (level == 0) tell_state(window, "showing", is_there);
    if (open.kind == OpenLevel::progress) {
        // Nothing leads a reader to it, as it does not take the keyboard.
        if (is_there) send(window, "Announcement", "", 0, g_variant_new_string(open.name.c_str()));
    } else if (open.kind != OpenLevel::menu) {
        tell_state(window, "active", is_there);
        send(window, is_there ? window_activated : window_deactivated, "", 0,
             g_variant_new_string(open.name.c_str()));
    }
    tell_state(menu, "visible", is_there);
    tell_state(menu, "showing", is_there);
    if (!is_there) tell_state(menu, "defunct", true);
}

void Announcer::tell_rows(size_t level) {
    const OpenLevel now = tree_.menus().level(level);
    const OpenLevel before = std::exchange(told_[level].level, now);
    if (now.revision != before.revision || now.scroll != before.scroll) {
        std::map<int, OpenRow>& known = told_[level].rows;
        for (auto row = known.begin(); row != known.end() && row->first < now.rows; ++row) {
            const OpenRow shown = tree_.menus().row(level, row->first);
            tell_row(row_node(now, row->first), std::exchange(row->second, shown), shown);
        }
        const auto gone = known.lower_bound(now.rows);
        for (auto row = gone; row != known.end(); ++row) {
            tell_state(row_node(now, row->first), "defunct", true);
        }
        known.erase(gone, known.end());
    }
    if (now.rows != before.rows) {
        const int first = std::min(now.rows, before.rows);
        send({Node::menu, now.number}, children_event, now.rows > before.rows ? "add" : "remove",
             first, reference_(row_node(now, first)));
    }
    if (now.highlighted == before.highlighted || now.kind != OpenLevel::menu) return;
    if (before.highlighted >= 0) tell_state(row_node(now, before.highlighted), "selected", false);
    if (now.highlighted >= 0) tell_state(row_node(now, now.highlighted), "selected", true);
    send({Node::menu, now.number}, "SelectionChanged", "", 0, g_variant_new_int32(0));
}

void Announcer::tell_row(const Node& node, const OpenRow& before, const OpenRow& now) const {
    if (now == before) return;
    if (now.name != before.name) {
        send(node, "PropertyChange", "accessible-name", 0,
             g_variant_new_string(tree_.text(node).c_str()));
    }
    if (now.kind != before.kind) {
        send(node, "PropertyChange", "accessible-role", 0, g_variant_new_uint32(tree_.role(node)));
    }
    const std::vector<RowState> were = states_of(before), are = states_of(now);
    const auto tell_missing = [&](const std::vector<RowState>& from,
                                  const std::vector<RowState>& others, bool is_set) {
        for (const RowState& state : from) {
            const bool is_common = std::find(others.begin(), others.end(), state) != others.end();
            if (!is_common) tell_state(node, state.name, is_set);
        }
    };
    tell_missing(were, are, false);
    tell_missing(are, were, true);
    tell_text(node, before, now);
    if (now.kind == OpenRow::bar && now.value != before.value) {
        send(node, "PropertyChange", "accessible-value", 0,
             g_variant_new_double(std::max(0.0, now.value)));
    }
}

void Announcer::tell_text(const Node& node, const OpenRow& before, const OpenRow& now) const {
    const auto tell = [&](const char* change, const std::string& text, TextRange range) {
        if (range.begin == range.end) return;
        send_(node, {"TextChanged", change, range.begin, range.end - range.begin,
                     g_variant_new_string(part_of(text, range).c_str())});
    };
    const TextChange change = change_between(before.written, now.written);
    tell("delete", before.written, change.removed);
    tell("insert", now.written, change.added);
    const bool has_moved = now.caret != before.caret || now.written != before.written;
    if (now.caret >= 0 && has_moved) {
        send(node, "TextCaretMoved", "", character_at_byte(now.written, now.caret),
             g_variant_new_int32(0));
    }
    const bool was_selected = before.caret != before.anchor, is_selected = now.caret != now.anchor;
    if ((was_selected || is_selected) && (has_moved || now.anchor != before.anchor)) {
        send(node, "TextSelectionChanged", "", 0, g_variant_new_int32(0));
    }
}

void Announcer::tell_focus() {
    const std::optional<Node> now = tree_.focused();
    if (now == focused_) return;
    if (focused_ && tree_.exists(*focused_)) tell_state(*focused_, "focused", false);
    focused_ = now;
    if (now) tell_state(*now, "focused", true);
}

void Announcer::note_asked(const Node& node) {
    if (node.kind != Node::row) return;
    for (size_t i = 0; i < told_.size(); i++) {
        ToldLevel& told = told_[i];
        if (told.level.number != node.level_number || told.rows.contains(node.index)) continue;
        told.rows.emplace(node.index, tree_.menus().row(i, node.index));
    }
}
