#include "appkit/card_window.h"

#include <Quartz/Quartz.h>
#include <host/text.h>
#include <host/window_placement.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "appkit/file_details.h"
#include "appkit/image_source.h"
#include "appkit/view_fade.h"
#include "appkit/view_pixels.h"
#include "look/menu_text.h"
#include "menus/menu_paint.h"
#include "menus/menu_presenter.h"
#include "menus/menu_run.h"
#include "x11/menu_windows.h"
#include "x11/screens.h"
#include "x11/server_windows.h"
#include "x11/window_pixels.h"

namespace {

constexpr int screen_margin = 4;
constexpr double padding = 8, gap = 4;  // points
constexpr double least_width = 64, least_height = 48;
constexpr double small_side = 128;  // a picture that is smaller each way has a frame
constexpr double caption_size = 11, caption_height = 22, caption_width = 360;

BesideMenusQuestion is_wanted, are_details_wanted;

// Everything that decides a card's place and size. Without the levels it stays where its program
// puts it.
struct CardCause {
    NSRect shown, picture;  // in the content's points; the picture is empty when there is none
    bool is_blank;
    std::string file;  // that the line below the picture names; may be empty
    Area levels, deepest;

    bool operator==(const CardCause& other) const {
        return NSEqualRects(shown, other.shown) && NSEqualRects(picture, other.picture) &&
               is_blank == other.is_blank && file == other.file && levels == other.levels &&
               deepest == other.deepest;
    }
};

struct Card {
    MenuLook look;
    bool composed, is_beside, is_described;
    NSSize base;      // the content's, before it was a card
    Area area = {};   // on the screen, of a card beside the menu
    Area panel = {};  // in the window
    Area frame = {};  // in the window, around a small picture; empty without one
    CardCause cause = {};
    FileDetails details = {};
    NSImage* described = nil;  // the picture that the line is about; not retained

    int margin() const { return composed ? look.shadow_extent : 0; }
    int rim() const { return margin() + pixels(padding); }
    int caption() const { return cause.file.empty() ? 0 : pixels(caption_height); }
    int pixels(double points) const { return static_cast<int>(std::lround(points * look.scale)); }
};

std::vector<NSWindow*>& cards() {
    static auto* windows = new std::vector<NSWindow*>;
    return *windows;
}

void set_colour(cairo_t* cairo, const Color& color) {
    cairo_set_source_rgba(cairo, color.red, color.green, color.blue, color.alpha);
}

void paint_frame(cairo_t* cairo, const Card& card) {
    if (card.frame.width <= 0) return;
    const double half = card.look.hairline / 2.0;
    set_colour(cairo, card.look.palette->border);
    cairo_set_line_width(cairo, card.look.hairline);
    cairo_rectangle(cairo, card.frame.left - half, card.frame.top - half,
                    card.frame.width + 2 * half, card.frame.height + 2 * half);
    cairo_stroke(cairo);
}

// The text from `left` on, in the middle of the card's line. Returns its width.
int paint_text(cairo_t* cairo, const Card& card, const Color& color, const TextLayout& text,
               int left) {
    const int middle = card.panel.bottom() - card.pixels(padding) / 2 - card.caption() / 2;
    const int top = middle - text_height(text) / 2;  // whole pixels keep it sharp
    cairo_move_to(cairo, left, top);
    set_colour(cairo, color);
    pango_cairo_show_layout(cairo, text.get());
    return text_width(text);
}

// The name where lines begin, shortened where there is too little room, and at the other edge as
// much of the rest as fits.
void paint_caption(cairo_t* cairo, const Card& card) {
    if (card.caption() == 0) return;
    const int pad = card.pixels(padding), room = card.panel.width - 2 * pad;
    const TextLayout name = paragraph(card.look, card.details.name, caption_size, false, 0);
    const int for_rest = room - std::min(text_width(name), room / 2) - 2 * pad;
    const auto facts = [&card](const std::vector<std::string>& words) {
        return facts_text(card.look, words, caption_size);
    };
    const TextLayout rest = facts(rest_that_fits(card.details.rest, [&](const auto& words) {
        return text_width(facts(words)) <= for_rest;
    }));
    const int rest_width = text_width(rest);
    fit_text(name, std::max(1, room - rest_width - 2 * pad));
    const int left = card.panel.left + pad, right = card.panel.right() - pad;
    const bool mirrored = card.look.mirrored;
    const MenuPalette& palette = *card.look.palette;
    paint_text(cairo, card, palette.text, name,
               (mirrored ? right - text_width(name) : left) - text_left(name));
    paint_text(cairo, card, palette.hidden_text, rest, mirrored ? left : right - rest_width);
}

}  // namespace

// The card's ground, below everything that the window shows.
@interface CardView : NSView {
  @public
    Card* card;
    NSWindow* owner;  // not retained
}
@end

@implementation CardView

- (void)dealloc {
    std::erase(cards(), owner);
    delete card;
    [super dealloc];
}

- (BOOL)isOpaque {
    return NO;
}

- (void)drawRect:(NSRect)rect {
    cairo_t* cairo = focused_cairo();
    if (!cairo || card->cause.is_blank) return;
    const MenuLayout no_rows(card->look);
    MenuScene scene = {};
    scene.layout = &no_rows;
    scene.left = card->panel.left;
    scene.top = card->panel.top;
    scene.width = card->panel.width;
    scene.height = card->panel.height;
    scene.shadow = scene.rounded = card->composed;
    const NSRect dirty = focus_device_area(rect);
    cairo_save(cairo);
    cairo_identity_matrix(cairo);
    cairo_rectangle(cairo, NSMinX(dirty), NSMinY(dirty), NSWidth(dirty), NSHeight(dirty));
    cairo_clip(cairo);
    paint_menu(cairo, scene);
    paint_frame(cairo, *card);
    paint_caption(cairo, *card);
    cairo_restore(cairo);
}

@end

namespace {

CardView* card_view(NSWindow* window) {
    for (NSView* view in [[window contentView] subviews]) {
        if ([view isKindOfClass:[CardView class]]) return static_cast<CardView*>(view);
    }
    return nil;
}

// Where an image view draws its image.
NSRect image_area(NSImageView* view) {
    const NSRect frame = [view frame];
    const NSSize size = [[view image] size];
    if (size.width <= 0 || size.height <= 0) return NSZeroRect;
    const double share =
        std::min({1.0, NSWidth(frame) / size.width, NSHeight(frame) / size.height});
    const NSSize drawn = NSMakeSize(size.width * share, size.height * share);
    return NSMakeRect(NSMidX(frame) - drawn.width / 2, NSMidY(frame) - drawn.height / 2,
                      drawn.width, drawn.height);
}

NSImageView* image_view_of(NSWindow* window) {
    for (NSView* view in [[window contentView] subviews]) {
        if ([view isKindOfClass:[NSImageView class]]) return static_cast<NSImageView*>(view);
    }
    return nil;
}

// The file of the row that is highlighted, for pictures that do not say which file they show: the
// delegate of a level answers as the item of a preview panel does.
std::string highlighted_file(const MenuLevel& deepest) {
    id delegate = [deepest.menu() delegate];
    if (![delegate respondsToSelector:@selector(previewItemURL)]) return {};
    NSString* path = [[delegate previewItemURL] path];
    return path ? [path UTF8String] ?: "" : "";
}

// The file that the line below the picture names. It stays until there is another picture, also
// while a disc turns.
std::string described_file(NSImage* image, Card& card, const MenuLevel& deepest) {
    if (!image || image == card.described) return card.cause.file;
    card.described = image;
    const std::string source = source_of_image(image);
    return source.empty() ? highlighted_file(deepest) : source;
}

NSRect shown_area(NSWindow* window) {
    NSRect shown = NSZeroRect;
    for (NSView* view in [[window contentView] subviews]) {
        if ([view isKindOfClass:[CardView class]] || [view isKindOfClass:[ViewFade class]]) {
            continue;
        }
        const bool is_image = [view isKindOfClass:[NSImageView class]];
        const NSRect area = is_image ? image_area(static_cast<NSImageView*>(view)) : [view frame];
        shown = NSUnionRect(shown, area);
    }
    return shown;
}

// The shown area, or the middle of an empty content, widened to the least size of a card.
NSRect widened(NSRect shown, NSSize base) {
    if (NSIsEmptyRect(shown)) shown = NSMakeRect(base.width / 2, base.height / 2, 0, 0);
    return NSInsetRect(shown, -std::max(0.0, least_width - NSWidth(shown)) / 2,
                       -std::max(0.0, least_height - NSHeight(shown)) / 2);
}

Area joined(const Area& one, const Area& other) {
    const int left = std::min(one.left, other.left), top = std::min(one.top, other.top);
    return {left, top, std::max(one.right(), other.right()) - left,
            std::max(one.bottom(), other.bottom()) - top};
}

// Null when no level is shown.
const MenuLevel* find_levels(Area* all) {
    const MenuLevel* deepest = nullptr;
    const MenuRun* run = MenuRun::current();
    if (!run) return nullptr;
    for (const auto& level : run->levels()) {
        if (!level->is_shown()) continue;
        *all = deepest ? joined(*all, level->panel()) : level->panel();
        deepest = level.get();
    }
    return deepest;
}

constexpr double large_enough = 0.75, far_larger = 1.5;

// How large the picture is in a card of this size, of its size in points.
double scale_in(const Card& card, Extent size) {
    const int pad = card.pixels(padding);
    const NSSize shown = card.cause.shown.size;
    return std::min((size.width - 2 * pad) / shown.width,
                    (size.height - 2 * pad - card.caption()) / shown.height);
}

// A card that shrinks in proportion has too little height for its line, which does not shrink.
Area place_clear_of(const Card& card, Extent wanted, const Area& levels, const MenuLevel& deepest) {
    NSMenuItem* item = [[MenuSession current] highlightedItemOfMenu:deepest.menu()];
    const int row = deepest.layout().row_of(item);
    const auto place = [&](Extent size) {
        return place_clear(size, levels, row < 0 ? deepest.panel() : deepest.row_area(row),
                           deepest.screen(), screen_margin, card.pixels(gap), deepest.side());
    };
    const Area first = place(wanted);
    const int pad = card.pixels(padding);
    const double by_width = (first.width - 2 * pad) / card.cause.shown.size.width;
    const int height = static_cast<int>(by_width * card.cause.shown.size.height);
    const Area second =
        place({first.width, std::min(wanted.height, height + 2 * pad + card.caption())});
    const auto scale = [&card](const Area& area) {
        return scale_in(card, {area.width, area.height});
    };
    return scale(second) > scale(first) ? second : first;
}

// Clear of all levels; a picture that would be tiny there is only clear of the deepest one.
Area place_card(const Card& card, const MenuLevel& deepest) {
    const NSSize size = card.cause.shown.size;
    const double least = card.caption() ? caption_width : 0;
    const Extent wanted = {card.pixels(std::max(size.width, least) + 2 * padding),
                           card.pixels(size.height + 2 * padding) + card.caption()};
    const Area clear = place_clear_of(card, wanted, card.cause.levels, deepest);
    const double scale = scale_in(card, {clear.width, clear.height});
    if (scale >= large_enough * card.look.scale) return clear;
    const Area over = place_clear_of(card, wanted, deepest.panel(), deepest);
    return scale_in(card, {over.width, over.height}) > far_larger * scale ? over : clear;
}

// Where a small picture is in the window; empty for any other.
Area frame_in_pixels(NSRect picture, NSRect bounds, double scale) {
    if (NSIsEmptyRect(picture)) return {};
    if (NSWidth(picture) >= small_side || NSHeight(picture) >= small_side) return {};
    const auto pixel = [scale](double points) {
        return static_cast<int>(std::lround(points * scale));
    };
    return {pixel(NSMinX(picture) - NSMinX(bounds)), pixel(NSMaxY(bounds) - NSMaxY(picture)),
            pixel(NSWidth(picture)), pixel(NSHeight(picture))};
}

// Places the window and scales its content so that the shown part fits into the card.
void fit_window(NSWindow* window, CardView* view) {
    Card& card = *view->card;
    const int room = card.margin();
    const Area whole = {card.area.left - room, card.area.top - room, card.area.width + 2 * room,
                        card.area.height + 2 * room};
    const NSRect shown = card.cause.shown;
    const double scale = std::max(0.01, scale_in(card, {card.area.width, card.area.height}));
    const NSSize size = NSMakeSize(whole.width / scale, whole.height / scale);
    card.panel = {room, room, card.area.width, card.area.height};
    move_menu_window(window, whole);
    tell_drawn_shadow(window, room);
    NSView* content = [window contentView];
    // The picture is above the line, and so above the window's middle.
    const int pixels_above = card.caption() / 2;
    const double lift = pixels_above / scale;
    const NSRect bounds =
        NSMakeRect(NSMidX(shown) - size.width / 2, NSMidY(shown) - size.height / 2 - lift,
                   size.width, size.height);
    [content setBounds:bounds];
    [view setFrame:bounds];
    card.frame = frame_in_pixels(card.cause.picture, bounds, scale);
    [content setNeedsDisplay:YES];
}

// What the window shows next is in another place than the picture that would fade.
void end_fades(NSWindow* window) {
    for (NSView* view in [[[[window contentView] subviews] copy] autorelease]) {
        if ([view isKindOfClass:[ViewFade class]]) [static_cast<ViewFade*>(view) end];
    }
}

// Puts the panel around the shown part of a window that its program places.
void fit_panel(NSWindow* window, CardView* view) {
    Card& card = *view->card;
    const NSRect shown = card.cause.shown;
    const int pad = card.pixels(padding);
    card.panel = {card.margin() + card.pixels(NSMinX(shown)),
                  card.margin() + card.pixels(card.base.height - NSMaxY(shown)),
                  card.pixels(NSWidth(shown)) + 2 * pad, card.pixels(NSHeight(shown)) + 2 * pad};
    [[window contentView] setNeedsDisplay:YES];
}

// Gives the window the size that its program gave it, in points, and room for a panel around it.
void make_room(NSWindow* window, CardView* view, NSPoint origin) {
    const Card& card = *view->card;
    const NSSize base = card.base;
    const int room = card.rim();
    [window setFrame:NSMakeRect(origin.x, origin.y, card.pixels(base.width) + 2 * room,
                                card.pixels(base.height) + 2 * room)
             display:NO];
    tell_drawn_shadow(window, card.margin());
    const double points = room / card.look.scale;
    NSView* content = [window contentView];
    [content setBounds:NSInsetRect(NSMakeRect(0, 0, base.width, base.height), -points, -points)];
    [view setFrame:[content bounds]];
}

void update_shown_cards() {
    for (NSWindow* window : std::vector<NSWindow*>(cards())) {
        if ([window isVisible] && [window alphaValue] > 0) update_card(window);
    }
}

CardView* make_view(NSWindow* window) {
    NSView* content = [window contentView];
    CardView* view = [[[CardView alloc] initWithFrame:[content bounds]] autorelease];
    view->owner = window;
    view->card =
        new Card{menu_look(nil, server_resources()), false, false, false, [content bounds].size};
    [content addSubview:view positioned:NSWindowBelow relativeTo:nil];
    cards().push_back(window);
    return view;
}

void make_card(NSWindow* window, bool is_beside) {
    add_open_levels_listener(update_shown_cards);
    CardView* view = card_view(window) ?: make_view(window);
    Card& card = *view->card;
    const bool was_beside = card.is_beside;
    card.is_beside = is_beside;
    card.is_described = is_beside && are_details_wanted && are_details_wanted();
    card.look = menu_look(nil, server_resources());
    card.composed = windows_are_composed();
    card.cause = {};
    card.described = nil;
    if (!is_beside) make_room(window, view, was_beside ? NSZeroPoint : [window frame].origin);
}

}  // namespace

void place_windows_beside_menus(BesideMenusQuestion wanted) { is_wanted = wanted; }

void describe_windows_beside_menus(BesideMenusQuestion wanted) { are_details_wanted = wanted; }

void prepare_raised_window(NSWindow* window) {
    if (!MenuRun::current()) return;
    // GNUstep calls a window without a title "Window".
    if ([[window title] isEqualToString:@"Window"])
        [window setTitle:[NSString stringWithUTF8String:translated("Preview")]];
    make_card(window, is_wanted && is_wanted());
    update_card(window);
}

bool is_card(NSWindow* window) {
    const std::vector<NSWindow*>& all = cards();
    return std::find(all.begin(), all.end(), window) != all.end();
}

bool is_card_beside_menu(NSWindow* window) {
    return is_card(window) && card_view(window)->card->is_beside;
}

void update_card(NSWindow* window) {
    CardView* view = card_view(window);
    if (!view) return;
    Card& card = *view->card;
    const NSRect shown = shown_area(window);
    NSImageView* image_view = image_view_of(window);
    const NSRect picture = image_view ? image_area(image_view) : NSZeroRect;
    CardCause cause = {widened(shown, card.base), picture, NSIsEmptyRect(shown) != NO, {}, {}, {}};
    const MenuLevel* deepest = card.is_beside ? find_levels(&cause.levels) : nullptr;
    if (deepest) cause.deepest = deepest->panel();
    if (deepest && card.is_described)
        cause.file = described_file([image_view image], card, *deepest);
    // A card beside the menu stays where it is while the menu closes.
    if (cause == card.cause || (card.is_beside && !deepest)) return;
    if (cause.file != card.cause.file) card.details = details_of_file(cause.file);
    card.cause = cause;
    if (deepest) {
        const Area area = place_card(card, *deepest);
        if (!(area == card.area)) end_fades(window);
        card.area = area;
        fit_window(window, view);
    } else {
        fit_panel(window, view);
    }
    if ([window isVisible] && [window alphaValue] > 0) {
        shape_card(window);
        [window displayIfNeeded];
    }
}

void shape_card(NSWindow* window) {
    const Card& card = *card_view(window)->card;
    if (card.composed) return shape_menu_window(window, 0);
    if (card.cause.is_blank) return hide_shape_of_menu_window(window);
    shape_window_as_panel(window, card.panel, card.look.radius);
}
