#include "panels/panel_content.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "look/menu_text.h"
#include "x11/screens.h"

namespace {

const double button_padding = 18;               // points between a button's edge and its title
const double window_edges = 8, title_bar = 48;  // pixels that a window manager may add

}  // namespace

bool Widget::can_be_hit() const {
    switch (kind) {
        case WidgetKind::button:
        case WidgetKind::check:
        case WidgetKind::choice:
        case WidgetKind::row:
        case WidgetKind::field:
            return !disabled;
        default:
            return false;
    }
}

void Widget::set_title(const std::string& title) {
    text = title;
    const size_t mark = text.find('_');
    if (mark == text.npos) return;
    text.erase(mark, 1);
    NSString* const rest = [[NSString stringWithUTF8String:text.c_str() + mark] lowercaseString];
    if ([rest length]) key = [rest characterAtIndex:0];
}

PanelContent::PanelContent() : look(menu_look(nil, server_resources())) {}

void PanelContent::fit(double width, double height) {
    const Area screen = screen_at(current_pointer().at);
    const double room = std::min((screen.width - window_edges) / width,
                                 (screen.height - window_edges - title_bar) / height);
    if (room > 0 && room < look.scale) set_scale(&look, room);
}

PanelContent PanelContent::fitting(const std::function<PanelContent(PanelContent)>& lay_out) {
    PanelContent empty;
    const double scale = empty.look.scale;
    PanelContent content = lay_out(empty);
    empty.fit(content.size.width / scale, content.size.height / scale);
    return empty.look.scale < scale ? lay_out(empty) : content;
}

int PanelContent::pixels(double points) const {
    return static_cast<int>(std::lround(points * look.scale));
}

Area PanelContent::area(double left, double top, double width, double height) const {
    return {pixels(left), pixels(top), pixels(width), pixels(height)};
}

int PanelContent::button_width(const Widget& button, double least) const {
    const TextLayout title = paragraph(look, button.text, button.size, button.bold, 0);
    return std::max(text_width(title) + 2 * pixels(button_padding), pixels(least));
}

void PanelContent::mirror() {
    for (Widget& widget : widgets) widget.area.left = size.width - widget.area.right();
}

const Widget* PanelContent::widget(int item) const {
    const auto is_it = [item](const Widget& widget) { return widget.item == item; };
    const auto found = std::find_if(widgets.begin(), widgets.end(), is_it);
    return found == widgets.end() ? nullptr : &*found;
}

Widget* PanelContent::widget(int item) {
    return const_cast<Widget*>(std::as_const(*this).widget(item));
}

int PanelContent::item_at(MenuPoint point) const {
    for (const Widget& widget : widgets) {
        if (widget.can_be_hit() && widget.area.contains(point)) return widget.item;
    }
    return 0;
}

int PanelContent::item_beside(int item, int step) const {
    const auto count = static_cast<ptrdiff_t>(widgets.size());
    const Widget* from = item ? widget(item) : nullptr;
    ptrdiff_t index = from ? from - widgets.data() : step > 0 ? -1 : 0;
    for (ptrdiff_t turn = 0; turn < count; turn++) {
        index = (index + step + count) % count;
        const Widget& next = widgets[static_cast<size_t>(index)];
        if (next.can_be_hit() && (!next.group || next.on)) return next.item;
    }
    return item;
}

int PanelContent::row_beside(int item, int step) const {
    const Widget* from = widget(item);
    if (!from || !from->group) return item;
    const auto count = static_cast<ptrdiff_t>(widgets.size());
    for (ptrdiff_t index = from - widgets.data() + step; index >= 0 && index < count;
         index += step) {
        const Widget& next = widgets[static_cast<size_t>(index)];
        if (next.group == from->group && next.can_be_hit()) return next.item;
    }
    return item;
}
