#include "menus/menu_level.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "look/bitmaps.h"
#include "look/image_questions.h"
#include "menus/menu_items.h"
#include "menus/menu_level_view.h"
#include "x11/menu_windows.h"
#include "x11/screens.h"
#include "x11/server_windows.h"
#include "x11/window_pixels.h"

namespace {

const int screen_margin = 4;

Area grown(const Area& area, int by) {
    return {area.left - by, area.top - by, area.width + 2 * by, area.height + 2 * by};
}

NSRect rectangle(const Area& area) {
    return NSMakeRect(area.left, area.top, area.width, area.height);
}

unsigned new_number() {
    static unsigned last;
    return ++last;
}

}  // namespace

MenuLevel::MenuLevel(NSMenu* menu, const MenuStyle& style)
    : number_(new_number()),
      menu_([menu retain]),
      style_(style),
      layout_(style.look),
      side_(style.look.mirrored ? on_left : on_right) {}

MenuLevel::~MenuLevel() {
    remove_views();
    [view_ forgetLevel];
    [window_ orderOut:nil];
    [window_ close];
    [view_ release];
    [window_ release];
    [highlighted_ release];
    [menu_ release];
}

bool MenuLevel::refresh(NSUInteger modifiers) {
    if (!changed_ && !layout_.is_stale(menu_, modifiers)) return false;
    changed_ = false;
    layout_.update(menu_, modifiers);
    return true;
}

void MenuLevel::show_at_pointer(MenuPoint pointer) {
    if (layout_.rows().empty()) return;
    screen_ = screen_at(pointer);
    panel_ = place_at_pointer({layout_.width(), layout_.height()}, pointer, screen_, screen_margin,
                              side_);
    put_on_screen();
}

void MenuLevel::show_beside(const MenuLevel& parent, NSMenuItem* item) {
    if (layout_.rows().empty()) return;
    screen_ = parent.screen_;
    side_ = parent.side_;
    const int row = parent.layout().row_of(item);
    const Area beside = row < 0 ? parent.panel() : parent.row_area(row);
    panel_ = place_beside({layout_.width(), layout_.height()}, beside, parent.panel(), screen_,
                          screen_margin, 2 * style_.look.hairline, style_.look.inset, &side_);
    put_on_screen();
}

void MenuLevel::put_on_screen() {
    const Area area = grown(panel_, margin());
    scroll_ = 0;
    window_ = new_menu_window(area);
    view_ = [[MenuLevelView alloc] initWithFrame:NSMakeRect(0, 0, area.width, area.height)
                                           level:this];
    [window_ setContentView:view_];
    if (!style_.composed) shape_menu_window(window_, style_.look.radius);
    tell_drawn_shadow(window_, margin());
    place_views();
    shown_ = true;
    show_menu_window(window_);
}

void MenuLevel::resize() {
    if (!shown_) return;
    const Area before = panel_;
    panel_ =
        resize_in_place({layout_.width(), layout_.height()}, panel_, side_, screen_, screen_margin);
    scroll_ = std::clamp(scroll_, 0, most_scroll());
    const bool moved = panel_.left != before.left || panel_.top != before.top ||
                       panel_.width != before.width || panel_.height != before.height;
    if (moved) {
        const Area area = grown(panel_, margin());
        move_menu_window(window_, area);
        [view_ setFrame:NSMakeRect(0, 0, area.width, area.height)];
        if (!style_.composed) shape_menu_window(window_, style_.look.radius);
    }
    place_views();
    redraw();
}

void MenuLevel::hide() {
    if (shown_) hide_shape_of_menu_window(window_);
}

NSWindow* MenuLevel::give_window() {
    shown_ = false;
    return std::exchange(window_, nil);
}

void MenuLevel::set_highlight(NSMenuItem* item, bool is_trail) {
    if (item == highlighted_ && is_trail == is_trail_) return;
    is_trail_ = is_trail;
    redraw_row(highlighted_);
    [item retain];
    [highlighted_ release];
    highlighted_ = item;
    redraw_row(highlighted_);
}

int MenuLevel::row_at(MenuPoint point) const {
    if (!contains(point) || edge_at(point)) return -1;
    return layout_.row_at(point.y - panel_.top + scroll_);
}

NSMenuItem* MenuLevel::item_at(MenuPoint point) const {
    const int row = row_at(point);
    return row < 0 ? nil : layout_.rows()[row].item;
}

Area MenuLevel::row_area(int row) const {
    const MenuRow& found = layout_.rows()[row];
    return {panel_.left, panel_.top + found.top - scroll_, panel_.width, found.height};
}

int MenuLevel::strip(int direction) const {
    const bool scrolls = direction < 0 ? scroll_ > 0 : scroll_ < most_scroll();
    return scrolls ? style_.look.arrow_height : 0;
}

int MenuLevel::edge_at(MenuPoint point) const {
    if (!contains(point)) return 0;
    if (point.y < panel_.top + strip(-1)) return -1;
    return point.y >= panel_.bottom() - strip(1) ? 1 : 0;
}

int MenuLevel::most_scroll() const { return std::max(0, layout_.height() - panel_.height); }

bool MenuLevel::scroll_by(int pixels) {
    const int wanted = std::clamp(scroll_ + pixels, 0, most_scroll());
    if (!shown_ || wanted == scroll_) return false;
    scroll_ = wanted;
    place_views();
    redraw();
    return true;
}

void MenuLevel::reveal(int row) {
    if (row < 0 || !shown_ || !most_scroll()) return;
    const MenuRow& wanted = layout_.rows()[row];
    const int strip_height = style_.look.arrow_height;
    const bool first = row == 0, last = row + 1 == static_cast<int>(layout_.rows().size());
    const int lowest = first ? 0 : wanted.top - strip_height;
    const int highest =
        last ? most_scroll() : wanted.top + wanted.height - panel_.height + strip_height;
    if (scroll_ > lowest) {
        scroll_by(lowest - scroll_);
    } else if (scroll_ < highest) {
        scroll_by(highest - scroll_);
    }
}

int MenuLevel::rows_per_page() const {
    const int shown = panel_.height - 2 * style_.look.arrow_height;
    return std::max(1, shown / style_.look.row_height);
}

MenuScene MenuLevel::scene(bool shadow) const {
    MenuScene scene = {};
    scene.layout = &layout_;
    scene.images = style_.images;
    scene.highlighted = highlighted_;
    scene.is_trail = is_trail_;
    scene.left = scene.top = margin();
    scene.width = panel_.width;
    scene.height = panel_.height;
    scene.scroll = scroll_;
    scene.scrolls_up = strip(-1) > 0;
    scene.scrolls_down = strip(1) > 0;
    scene.shadow = shadow;
    scene.rounded = style_.composed;
    return scene;
}

void MenuLevel::draw(NSRect dirty) {
    cairo_t* cairo = focused_cairo();
    if (!cairo) {
        const MenuScene drawn = scene(style_.composed);
        // Another program can make the window larger than the level.
        const NSRect level =
            NSMakeRect(0, 0, panel_.width + 2 * margin(), panel_.height + 2 * margin());
        return draw_through_bitmap(NSIntersectionRect(dirty, level),
                                   [&](cairo_t* bitmap) { paint_menu(bitmap, drawn); });
    }
    cairo_save(cairo);
    cairo_identity_matrix(cairo);
    cairo_rectangle(cairo, NSMinX(dirty), NSMinY(dirty), NSWidth(dirty), NSHeight(dirty));
    cairo_clip(cairo);
    paint_menu(cairo, scene(style_.composed));
    cairo_restore(cairo);
    look_ahead();
}

void MenuLevel::look_ahead() const {
    const std::vector<MenuRow>& rows = layout_.rows();
    const int end = scroll_ + 2 * panel_.height;
    for (size_t i = layout_.first_row_below(scroll_ - panel_.height);
         i < rows.size() && rows[i].top < end; i++) {
        NSImage* image = [rows[i].item image];
        if ([image mayChangeAfterFirstLook]) [image representations];
    }
}

void MenuLevel::draw_picture(cairo_t* cairo, int left, int top, bool shadow) const {
    if (!shown_) return;
    const int room = shadow ? style_.look.shadow_extent : 0;
    MenuScene picture = scene(shadow);
    picture.rounded = true;
    picture.left = picture.top = room;
    const Area whole = {left - room, top - room, panel_.width + 2 * room, panel_.height + 2 * room};
    cairo_save(cairo);
    cairo_rectangle(cairo, whole.left, whole.top, whole.width, whole.height);
    cairo_clip(cairo);
    cairo_translate(cairo, whole.left, whole.top);
    cairo_push_group(cairo);
    paint_menu(cairo, picture);
    for (const auto& [view, holder] : holders_) {
        const NSRect frame = [holder frame];
        const Area part = {int(NSMinX(frame)), int(NSMinY(frame)), int(NSWidth(frame)),
                           int(NSHeight(frame))};
        copy_window(window_, part, cairo, part.left - margin() + room, part.top - margin() + room);
    }
    cairo_pop_group_to_source(cairo);
    cairo_paint(cairo);
    cairo_restore(cairo);
}

void MenuLevel::redraw() {
    if (shown_) [view_ setNeedsDisplay:YES];
}

void MenuLevel::redraw_row(NSMenuItem* item) {
    const int row = shown_ && item ? layout_.row_of(item) : -1;
    if (row < 0) return;
    Area area = row_area(row);
    area.left = margin();
    area.top += margin() - panel_.top;
    [view_ setNeedsDisplayInRect:rectangle(area)];
}

// Views of rows that cannot be seen are not in the window.
void MenuLevel::place_views() {
    std::vector<std::pair<NSView*, NSRect>> wanted;
    const std::vector<MenuRow>& rows = layout_.rows();
    const int inset = style_.look.inset;
    for (size_t i = layout_.first_row_below(scroll_);
         i < rows.size() && rows[i].top < scroll_ + panel_.height; i++) {
        if (rows[i].kind != view_row) continue;
        const Area area = {margin() + inset, margin() + rows[i].top - scroll_,
                           panel_.width - 2 * inset, rows[i].height};
        wanted.push_back({[rows[i].item view], rectangle(area)});
    }
    std::unordered_map<NSView*, MenuItemHolder*> kept;
    for (const auto& [view, area] : wanted) {
        const auto found = holders_.find(view);
        if (found != holders_.end() && NSEqualSizes([found->second frame].size, area.size)) {
            [found->second setFrameOrigin:area.origin];
            kept.insert(*found);
            holders_.erase(found);
            continue;
        }
        MenuItemHolder* holder = [[MenuItemHolder alloc] initWithArea:area
                                                                scale:style_.look.scale
                                                             itemView:view];
        [view_ addSubview:holder];
        kept[[view retain]] = holder;
    }
    remove_views();
    holders_ = kept;
}

void MenuLevel::remove_views() {
    for (const auto& [view, holder] : holders_) {
        // The program may have put the view elsewhere.
        if ([view superview] == holder) [view removeFromSuperview];
        [holder removeFromSuperview];
        [holder release];
        [view release];
    }
    holders_.clear();
}
