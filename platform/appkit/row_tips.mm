#include "appkit/row_tips.h"

#include <host/menu_tracking.h>
#include <host/text.h>

#include <errno.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>

#include "appkit/workspace_paths.h"
#include "corefoundation/patient_stat.h"
#include "look/menu_text.h"
#include "look/title_line.h"
#include "menus/menu_paint.h"
#include "menus/menu_presenter.h"
#include "menus/menu_run.h"
#include "x11/menu_windows.h"
#include "x11/server_windows.h"
#include "x11/window_pixels.h"

namespace {

const double tip_delay = 0.7;   // in seconds
const double least_line = 160;  // in points, where a level is narrow
const double patience = 0.2;    // in seconds, for a disk

NSString* (*path_question)(NSMenuItem*);

bool is_shortened(const MenuLevel& level, NSMenuItem* item) {
    const int row = level.layout().row_of(item);
    if (row < 0 || level.layout().rows()[row].kind != title_row) return false;
    const int room =
        level.layout().title_right() - level.layout().title_left(level.layout().rows()[row]);
    return TitleLine(level.layout().look(), item, true).width() > room;
}

// Whether the title is the name without its middle, for which it has dots.
bool abbreviates(NSString* title, NSString* name) {
    for (NSString* dots in @[ @"...", @"\u2026" ]) {
        const NSRange found = [title rangeOfString:dots];
        if (found.location == NSNotFound || [title length] >= [name length]) continue;
        NSString* const head = [title substringToIndex:found.location];
        NSString* const tail = [title substringFromIndex:NSMaxRange(found)];
        const bool begins = ![head length] || [name hasPrefix:head];
        if (begins && (![tail length] || [name hasSuffix:tail])) return true;
    }
    return false;
}

int widest_line_of(const TextLayout& lines) {
    int widest = 0;
    for (int i = 0; i < pango_layout_get_line_count(lines.get()); i++) {
        PangoRectangle box;
        pango_layout_line_get_extents(pango_layout_get_line_readonly(lines.get(), i), nullptr,
                                      &box);
        widest = std::max(widest, box.width);
    }
    return widest;
}

// As wide as the widest line: lines from right to left would else end at the right of all the room.
TextLayout lines_of_tip(const MenuLook& look, const std::string& text, int most) {
    TextLayout lines = paragraph(look, text, look.font_size * 0.92, false, most);
    pango_layout_set_width(lines.get(), widest_line_of(lines) + PANGO_SCALE);
    if (look.mirrored) align_right(lines);
    return lines;
}

bool is_closed_folder(const std::string& path) {
    const auto status = files::patient_stat(path, patience);
    return status && S_ISDIR(status->st_mode) &&
           faccessat(AT_FDCWD, path.c_str(), R_OK | X_OK, AT_EACCESS) != 0 && errno == EACCES;
}

}  // namespace

@interface TipView : NSView {
  @public
    MenuLook look;
    int most;  // pixels of a line
    std::string* text;
    bool composed;
}
@end

@implementation TipView

- (void)dealloc {
    delete text;
    [super dealloc];
}

- (BOOL)isFlipped {
    return YES;
}

- (void)drawRect:(NSRect)rect {
    (void)rect;
    cairo_t* cairo = focused_cairo();
    if (!cairo) return;
    cairo_save(cairo);
    cairo_identity_matrix(cairo);
    const MenuLayout no_rows(look);
    MenuScene scene = {};
    scene.layout = &no_rows;
    scene.width = static_cast<int>(NSWidth([self frame]));
    scene.height = static_cast<int>(NSHeight([self frame]));
    scene.rounded = composed;
    paint_menu(cairo, scene);
    const Color& color = look.palette->text;
    cairo_set_source_rgba(cairo, color.red, color.green, color.blue, color.alpha);
    const TextLayout lines = lines_of_tip(look, *text, most);
    const int above = look.padding * 2 / 3;
    cairo_move_to(cairo, look.padding, above);
    pango_cairo_show_layout(cairo, lines.get());
    cairo_restore(cairo);
}

@end

// The row that the user is at, and its tip once the row has been kept long enough.
@interface RowTips : NSObject {
  @public
    NSMenuItem* item;  // retained
    NSTimer* timer;    // retained
    NSWindow* window;  // retained
    std::string* shown;
}
@end

namespace {

RowTips* tips() {
    static RowTips* const made = [RowTips new];
    return made;
}

// The deepest level with a highlight; null for none.
const MenuLevel* highlighted_level(NSMenuItem** item) {
    const MenuRun* run = MenuRun::current();
    *item = nil;
    if (!run) return nullptr;
    for (auto level = run->levels().rbegin(); level != run->levels().rend(); ++level) {
        *item = [[MenuSession current] highlightedItemOfMenu:(*level)->menu()];
        if (*item) return (*level)->is_shown() ? level->get() : nullptr;
    }
    return nullptr;
}

// A tip is as wide as its level at most: a preview may stand beside that.
int room_of_tip(const MenuLevel& level) {
    const MenuLook& look = level.layout().look();
    return std::max(static_cast<int>(least_line * look.scale),
                    level.panel().width - 2 * look.inset - 2 * look.padding);
}

Area area_of_tip(const MenuLevel& level, NSMenuItem* item, const TextLayout& lines) {
    const MenuLook& look = level.layout().look();
    const int width = text_width(lines) + 2 * look.padding;
    const int height = text_height(lines) + look.padding * 4 / 3;
    const Area row = level.row_area(level.layout().row_of(item));
    const int margin = look.inset;
    const Area whole = level.screen();
    const Area screen = {whole.left + margin, whole.top, whole.width - 2 * margin, whole.height};
    const int wanted = look.mirrored ? row.right() - look.inset - width : row.left + look.inset;
    const int left = std::clamp(wanted, screen.left, std::max(screen.left, screen.right() - width));
    const int below = row.bottom() + look.inset;
    const bool fits = below + height <= screen.bottom();
    return {left, fits ? below : row.top - look.inset - height, width, height};
}

}  // namespace

@implementation RowTips

- (void)hide {
    [timer invalidate];
    [timer release];
    timer = nil;
    [window orderOut:nil];
    [window close];
    [window release];
    window = nil;
    delete shown;
    shown = nullptr;
}

- (void)follow {
    NSMenuItem* now = nil;
    highlighted_level(&now);
    if (now == item) return;
    [self hide];
    [item release];
    item = [now retain];
    if (!item) return;
    timer = [[NSTimer timerWithTimeInterval:tip_delay
                                     target:self
                                   selector:@selector(rested:)
                                   userInfo:nil
                                    repeats:NO] retain];
    [[NSRunLoop currentRunLoop] addTimer:timer forMode:NSEventTrackingRunLoopMode];
}

- (void)rested:(NSTimer*)over {
    (void)over;
    NSMenuItem* now = nil;
    const MenuLevel* const level = highlighted_level(&now);
    if (!level || now != item || level->layout().row_of(now) < 0) return;
    const std::string text = tip_of(*level, now);
    if (!text.empty()) [self show:text of:*level];
}

- (void)show:(const std::string&)text of:(const MenuLevel&)level {
    const MenuLook& look = level.layout().look();
    const int most = room_of_tip(level);
    const Area area = area_of_tip(level, item, lines_of_tip(look, text, most));
    const bool composed = MenuRun::current()->style().composed;
    window = new_menu_window(area);
    [window setTitle:@"Tip"];
    set_window_type(window, "_NET_WM_WINDOW_TYPE_TOOLTIP");
    TipView* view =
        [[[TipView alloc] initWithFrame:NSMakeRect(0, 0, area.width, area.height)] autorelease];
    view->look = look;
    view->most = most;
    view->text = new std::string(text);
    view->composed = composed;
    [window setContentView:view];
    if (!composed) shape_menu_window(window, look.radius);
    show_menu_window(window);
    shown = new std::string(text);
}

@end

NSString* whole_title(NSMenuItem* item) {
    NSString* path = path_question ? path_question(item) : nil;
    NSString* name = [path lastPathComponent];
    return name && abbreviates([item title], name) ? name : [item title];
}

std::string tip_of(const MenuLevel& level, NSMenuItem* item) {
    NSString* path = path_question ? path_question(item) : nil;
    NSString* title = whole_title(item);
    std::string text;
    if (![title isEqual:[item title]] || is_shortened(level, item)) {
        text = visible_title(title);
        if (path) text += "\n" + visible_title([path stringByDeletingLastPathComponent]);
    }
    if (path && is_closed_folder(path_bytes(path))) {
        text += (text.empty() ? "" : "\n") +
                std::string(translated("You do not have permission to read this folder."));
    }
    return text;
}

std::string shown_tip() { return tips()->shown ? *tips()->shown : ""; }

@implementation NSMenu (RowTips)

+ (void)setPathQuestion:(NSString* (*)(NSMenuItem*))question {
    path_question = question;
}

@end

@interface RowTipsInstaller : NSObject
@end

@implementation RowTipsInstaller

+ (void)load {
    add_open_levels_listener([] { [tips() follow]; });
}

@end
