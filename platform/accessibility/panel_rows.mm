#include "accessibility/panel_rows.h"

#include <algorithm>
#include <functional>

#include "panels/alert_panel.h"

namespace {

// Numbers of menus' levels are far below.
constexpr unsigned first_number = 1u << 30;

bool is_row(const Widget& widget) {
    switch (widget.kind) {
        case WidgetKind::text:
        case WidgetKind::paragraph:
            return !widget.text.empty();
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
    const bool is_field = widget.kind == WidgetKind::field;
    const std::string& label = is_field && widget.label.empty() ? widget.hint : widget.label;
    if (label.empty() || widget.text.empty()) return label + widget.text;
    return label + ": " + widget.text;
}

// A number that changes when a row shows something else.
unsigned revision_of(const std::vector<const Widget*>& rows) {
    size_t sum = 0;
    const auto add = [&sum](size_t part) { sum = sum * 31 + part; };
    const std::hash<std::string> hash;
    for (const Widget* widget : rows) {
        add(hash(widget->text));
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
    level.kind = [panel isKindOfClass:[AlertPanel class]] ? OpenLevel::alert : OpenLevel::dialog;
    level.revision = revision_of(rows);
    level.rows = static_cast<int>(rows.size());
    level.name = [[panel title] UTF8String] ?: "";
    const int item = [panel focusedItem];
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
