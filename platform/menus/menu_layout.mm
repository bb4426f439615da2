#include "menus/menu_layout.h"

#include <algorithm>
#include <cmath>

#include "look/title_line.h"
#include "look/title_widths.h"
#include "menu_classes/menu_item_array.h"
#include "menus/menu_items.h"

namespace {

// Wider images are pictures to look at, not signs in the column of images.
const double widest_sign = 48;
const double largest_picture = 640;
// Measuring text is most of the cost of showing a level, so only those titles are measured that
// seem to be the widest.
const size_t measured_titles = 12;

int pixels(const MenuLook& look, double points) {
    return static_cast<int>(std::lround(points * look.scale));
}

// The font of a title's beginning; nil for the look's own.
NSFont* title_font(NSMenuItem* item) {
    NSAttributedString* const title = [item attributedTitle];
    if (![title length]) return nil;
    return [title attribute:NSFontAttributeName atIndex:0 effectiveRange:nullptr];
}

double estimated_width(const MenuLook& look, NSMenuItem* item) {
    const double width = TitleWidths::of(look).estimate([item title]);
    NSFont* const font = title_font(item);
    return font ? width * [font pointSize] / look.font_size : width;
}

bool is_picture(NSImage* image) { return [image size].width > widest_sign; }

}  // namespace

NSSize shown_image_size(const MenuLook& look, NSImage* image) {
    const NSSize size = [image size];
    const double longest = std::max({size.width, size.height, 1.0});
    const double shrink = std::min(1.0, largest_picture / longest) * look.scale;
    return NSMakeSize(std::max(1.0, std::round(size.width * shrink)),
                      std::max(1.0, std::round(size.height * shrink)));
}

MenuLayout::~MenuLayout() {
    [source_ release];
    [shown_ release];
}

void MenuLayout::update(NSMenu* menu, NSUInteger modifiers) {
    static unsigned last_revision;
    revision_ = ++last_revision;
    take_items(menu, modifiers);
    place_rows();
    measure_width();
}

bool MenuLayout::is_stale(NSMenu* menu, NSUInteger modifiers) const {
    if (has_alternates_ && (modifiers & alternate_modifiers) != modifiers_) return true;
    NSArray* items = [menu itemArray];
    return items != source_ || changes_of_items(items) != source_changes_;
}

void MenuLayout::take_items(NSMenu* menu, NSUInteger modifiers) {
    NSArray* source = [[menu itemArray] retain];
    [source_ release];
    source_ = source;
    source_changes_ = changes_of_items(source);
    modifiers_ = modifiers & alternate_modifiers;
    NSMutableArray* shown = [NSMutableArray new];
    append_visible_items(source, modifiers_, shown);
    [shown_ release];
    shown_ = shown;
    has_alternates_ = [shown count] != [source count];
    rows_.clear();
    rows_.reserve([shown count]);
    for (NSMenuItem* item in shown) rows_.push_back({item, 0, 0, title_row});
}

MenuRow MenuLayout::make_row(NSMenuItem* item, int top) const {
    if ([item isSeparatorItem]) return {item, top, look_.separator_height, separator_row};
    if (NSView* view = [item view]) {
        return {item, top, std::max(1, pixels(look_, NSHeight([view frame]))), view_row};
    }
    int height = look_.row_height;
    RowKind kind = title_row;
    if (NSImage* image = [item image]) {
        const int image_height = static_cast<int>(shown_image_size(look_, image).height);
        height = std::max(height, image_height + pixels(look_, is_picture(image) ? 8 : 4));
        if (is_picture(image)) kind = image_row;
    }
    // The font alone decides: laying out every coloured title would double the time.
    if (NSAttributedString* title = [item attributedTitle];[title length]) {
        NSFont* font = [title attribute:NSFontAttributeName atIndex:0 effectiveRange:nullptr];
        height = std::max(height, pixels(look_, [font pointSize] * 1.35 + 3));
    }
    return {item, top, height, kind};
}

void MenuLayout::place_rows() {
    int top = look_.inset;
    image_width_ = 0;
    has_marks_ = has_submenus_ = false;
    for (MenuRow& row : rows_) {
        row = make_row(row.item, top);
        top += row.height;
        if (row.kind != title_row) continue;
        has_marks_ = has_marks_ || [row.item state] != NSOffState;
        has_submenus_ = has_submenus_ || [row.item hasSubmenu];
        if (NSImage* image = [row.item image]) {
            const int width = static_cast<int>(shown_image_size(look_, image).width);
            image_width_ = std::max(image_width_, width);
        }
    }
    height_ = top + look_.inset;
}

// The rows whose titles are measured.
std::vector<NSMenuItem*> MenuLayout::widest_items() const {
    std::vector<NSMenuItem*> items;
    for (const MenuRow& row : rows_) {
        if (row.kind == title_row) items.push_back(row.item);
    }
    if (items.size() <= measured_titles) return items;
    std::vector<std::pair<double, NSMenuItem*>> titles;
    titles.reserve(items.size());
    for (NSMenuItem* item : items) titles.push_back({estimated_width(look_, item), item});
    std::partial_sort(titles.begin(), titles.begin() + measured_titles, titles.end(),
                      [](const auto& a, const auto& b) { return a.first > b.first; });
    items.clear();
    for (size_t i = 0; i < measured_titles; i++) items.push_back(titles[i].second);
    return items;
}

int MenuLayout::widest_title() const {
    int widest = 0;
    for (NSMenuItem* item : widest_items()) {
        widest = std::max(widest, TitleLine(look_, item, true).width());
    }
    return std::min(widest, look_.title_limit);
}

void MenuLayout::measure_width() {
    const int right = has_submenus_ ? look_.gap + look_.mark_width : 0;
    const int left = image_left() + (has_images() ? image_width_ + look_.gap : 0);
    width_ = left + widest_title() + right + look_.padding + look_.inset;
    for (const MenuRow& row : rows_) {
        if (row.kind == view_row) {
            const int view_width = pixels(look_, NSWidth([[row.item view] frame]));
            width_ = std::max(width_, view_width + 2 * look_.inset);
        } else if (row.kind == image_row) {
            int width = static_cast<int>(shown_image_size(look_, [row.item image]).width);
            const int text = TitleLine(look_, row.item, true).width();
            if (text) width += look_.gap + std::min(text, look_.title_limit);
            width_ = std::max(width_, width + 2 * (look_.inset + look_.padding));
        }
    }
    const bool bare = rows_.size() == 1 && rows_[0].kind != title_row;
    if (!bare) width_ = std::max(width_, look_.least_width);
}

int MenuLayout::mark_left() const { return look_.inset + look_.padding; }

int MenuLayout::image_left() const {
    return mark_left() + (has_marks_ ? look_.mark_width + look_.gap : 0);
}

int MenuLayout::title_left(const MenuRow& row) const {
    if (row.kind == image_row) {
        const NSSize size = shown_image_size(look_, [row.item image]);
        return image_left() + static_cast<int>(size.width) + look_.gap;
    }
    return image_left() + (has_images() ? image_width_ + look_.gap : 0);
}

int MenuLayout::title_right() const {
    const int right = has_submenus_ ? look_.gap + look_.mark_width : 0;
    return width_ - look_.inset - look_.padding - right;
}

int MenuLayout::first_row_below(int y) const {
    const auto found = std::partition_point(
        rows_.begin(), rows_.end(), [y](const MenuRow& row) { return row.top + row.height <= y; });
    return static_cast<int>(found - rows_.begin());
}

int MenuLayout::row_at(int y) const {
    const int index = first_row_below(y);
    const bool found = index < static_cast<int>(rows_.size()) && rows_[index].top <= y;
    return found ? index : -1;
}

int MenuLayout::row_of(NSMenuItem* item) const {
    for (size_t i = 0; item && i < rows_.size(); i++) {
        if (rows_[i].item == item) return static_cast<int>(i);
    }
    return -1;
}
