#include "panels/panel_content.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "x11/screens.h"

bool widget_t::can_be_hit() const {
    return (kind == widget_kind_t::button || kind == widget_kind_t::check) && !disabled;
}

panel_content_t::panel_content_t() : look(menu_look(nil, server_resources())) {}

int panel_content_t::pixels(double points) const {
    return static_cast<int>(std::lround(points * look.scale));
}

area_t panel_content_t::area(double left, double top, double width, double height) const {
    return {pixels(left), pixels(top), pixels(width), pixels(height)};
}

const widget_t* panel_content_t::widget(int item) const {
    const auto is_it = [item](const widget_t& widget) { return widget.item == item; };
    const auto found = std::find_if(widgets.begin(), widgets.end(), is_it);
    return found == widgets.end() ? nullptr : &*found;
}

widget_t* panel_content_t::widget(int item) {
    return const_cast<widget_t*>(std::as_const(*this).widget(item));
}

int panel_content_t::item_at(point_t point) const {
    for (const widget_t& widget : widgets) {
        if (widget.can_be_hit() && widget.area.contains(point)) return widget.item;
    }
    return 0;
}

int panel_content_t::item_beside(int item, int step) const {
    const auto count = static_cast<ptrdiff_t>(widgets.size());
    const widget_t* from = item ? widget(item) : nullptr;
    ptrdiff_t index = from ? from - widgets.data() : step > 0 ? -1 : 0;
    for (ptrdiff_t turn = 0; turn < count; turn++) {
        index = (index + step + count) % count;
        const widget_t& next = widgets[static_cast<size_t>(index)];
        if (next.can_be_hit()) return next.item;
    }
    return item;
}
