#include "accessibility/panel_rows.h"

#include <algorithm>
#include <cmath>
#include <functional>

#include "panels/alert_panel.h"
#include "panels/shown_panel.h"

namespace {

// Numbers of menus' levels are far below.
constexpr unsigned first_number = 1u << 30;

bool is_row(const Widget& widget) {
    switch (widget.kind) {
        case WidgetKind::text:
        case WidgetKind::paragraph:
            return widget.item || !widget.text.empty();
        case WidgetKind::bar:
        case WidgetKind::button:
        case WidgetKind::check:
        case WidgetKind::choice:
        case WidgetKind::row:
        case WidgetKind::field:
            return true;
        case WidgetKind::sign:
        case WidgetKind::icon:
        case WidgetKind::frame:
        case WidgetKind::picture:
            return false;
    }
    return false;
}

std::vector<const Widget*> rows_of(WidgetPanel* panel) {
    std::vector<const Widget*> rows;
    for (const Widget& widget : [panel content].widgets) {
        if (is_row(widget)) rows.push_back(&widget);
    }
    return rows;
}

const Widget& widget_of(WidgetPanel* panel, int row) {
    return *rows_of(panel)[static_cast<size_t>(row)];
}

OpenRow::Kind kind_of(const Widget& widget) {
    switch (widget.kind) {
        case WidgetKind::button:
            return OpenRow::button;
        case WidgetKind::check:
            return OpenRow::check_box;
        case WidgetKind::choice:
            return OpenRow::choice;
        case WidgetKind::row:
            return OpenRow::list_item;
        case WidgetKind::field:
            return OpenRow::field;
        case WidgetKind::bar:
            return OpenRow::bar;
        default:
            return OpenRow::text;
    }
}

std::string name_of(const Widget& widget) {
    const std::string& label = widget.label;
    if (widget.kind == WidgetKind::field) return label.empty() ? widget.hint : label;
    if (label.empty() || widget.text.empty()) return label + widget.text;
    return label + ": " + widget.text;
}

OpenLevel::Kind kind_of(WidgetPanel* panel) {
    if ([panel isKindOfClass:[AlertPanel class]]) return OpenLevel::alert;
    return panel == shown_panel() ? OpenLevel::dialog : OpenLevel::progress;
}

// How many of these steps of a bar are told.
constexpr double told_steps = 10;

// A number that changes when a row shows something else that is worth telling. A text that follows
// the work file by file is told with the bar's steps only.
unsigned revision_of(const std::vector<const Widget*>& rows, OpenLevel::Kind kind,
                     WidgetPanel* panel) {
    size_t sum = 0;
    const auto add = [&sum](size_t part) { sum = sum * 31 + part; };
    const std::hash<std::string> hash;
    add([panel caret]);
    add([panel anchor]);
    for (const Widget* widget : rows) {
        const bool is_text = widget->kind == WidgetKind::text;
        if (!is_text || kind != OpenLevel::progress) add(hash(widget->text));
        add(static_cast<size_t>(std::floor(widget->value * told_steps) + 1));
        add(hash(widget->label));
        add(static_cast<size_t>(widget->kind) * 4 + widget->on * 2u + widget->disabled);
    }
    return static_cast<unsigned>(sum);
}

}  // namespace

OpenLevel level_of(WidgetPanel* panel) {
    const std::vector<const Widget*> rows = rows_of(panel);
    OpenLevel level;
    level.number = first_number + [panel number];
    level.kind = kind_of(panel);
    level.revision = revision_of(rows, level.kind, panel);
    level.rows = static_cast<int>(rows.size());
    level.name = [[panel title] UTF8String] ?: "";
    const bool has_keys = level.kind != OpenLevel::progress || [panel isKeyWindow];
    const int item = has_keys ? [panel focusedItem] : 0;
    const auto found =
        std::ranges::find_if(rows, [item](const Widget* row) { return row->item == item; });
    if (item && found != rows.end()) level.highlighted = static_cast<int>(found - rows.begin());
    return level;
}

OpenRow row_of(WidgetPanel* panel, int row) {
    const Widget& widget = widget_of(panel, row);
    OpenRow answer;
    answer.kind = kind_of(widget);
    answer.name = name_of(widget);
    answer.is_enabled = !widget.disabled;
    answer.is_checked = widget.on;
    answer.has_submenu = widget.kind == WidgetKind::choice;
    answer.can_be_picked = widget.can_be_hit();
    answer.is_in_sight = true;
    answer.is_default = widget.item && widget.item == [panel content].default_item;
    if (widget.kind == WidgetKind::field) {
        const bool has_caret = widget.item == [panel focusedItem];
        answer.written = widget.text;
        answer.caret = has_caret ? static_cast<int>([panel caret]) : -1;
        answer.anchor = has_caret ? static_cast<int>([panel anchor]) : -1;
    }
    if (widget.kind == WidgetKind::bar) {
        answer.value = widget.value;
        answer.is_mixed = widget.value < 0;
    }
    return answer;
}

Area area_of(WidgetPanel* panel) {
    Widget whole;
    whole.area = {0, 0, [panel content].size.width, [panel content].size.height};
    return [panel placeOfWidget:whole];
}

Area row_area_of(WidgetPanel* panel, int row) {
    return [panel placeOfWidget:widget_of(panel, row)];
}

// Among the rows of its group; a widget without a group is alone.
RowPlace row_place_of(WidgetPanel* panel, int row) {
    const std::vector<const Widget*> rows = rows_of(panel);
    const int group = rows[static_cast<size_t>(row)]->group;
    if (!group) return {};
    const auto is_in_group = [group](const Widget* each) { return each->group == group; };
    const auto count = std::ranges::count_if(rows, is_in_group);
    const auto place = std::count_if(rows.begin(), rows.begin() + row + 1, is_in_group);
    return {static_cast<int>(place), static_cast<int>(count)};
}

int row_at(WidgetPanel* panel, MenuPoint point) {
    const auto count = static_cast<int>(rows_of(panel).size());
    for (int row = 0; row < count; row++) {
        if (row_area_of(panel, row).contains(point)) return row;
    }
    return -1;
}

bool focus_row(WidgetPanel* panel, int row) {
    const Widget& widget = widget_of(panel, row);
    if (!widget.can_be_hit()) return false;
    [panel focusItem:widget.item];
    return true;
}

bool hit_row(WidgetPanel* panel, int row) {
    const Widget& widget = widget_of(panel, row);
    if (!widget.can_be_hit()) return false;
    [panel hitItemSoon:widget.item];
    return true;
}

Area text_area_of(WidgetPanel* panel, int row, size_t begin, size_t end) {
    return [panel placeOfText:widget_of(panel, row) from:begin to:end];
}

size_t text_at(WidgetPanel* panel, int row, MenuPoint point) {
    return [panel textOf:widget_of(panel, row) at:point];
}

bool write_row(WidgetPanel* panel, int row, const TextEdit& written) {
    const Widget& widget = widget_of(panel, row);
    if (widget.kind != WidgetKind::field || widget.disabled) return false;
    [panel write:written intoItem:widget.item];
    return true;
}
