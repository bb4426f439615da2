#include "settings_ui/example_menu.h"

#include <host/menu_tracking.h>

#include <algorithm>
#include <optional>

#include "finderkit/plug_in_items.h"
#include "menus/menu_layout.h"
#include "menus/menu_paint.h"
#include "popup/host_menu.h"

namespace {

struct DrawnLevel {
    const MenuLayout& layout;
    NSMenuItem* highlighted;
    Area area;
};

void draw_level(cairo_t* cairo, const DrawnLevel& level, ImageCache* images) {
    const int shadow = level.layout.look().shadow_extent;
    MenuScene scene = {};
    scene.layout = &level.layout;
    scene.images = images;
    scene.highlighted = level.highlighted;
    scene.left = scene.top = shadow;
    scene.width = level.area.width;
    scene.height = level.area.height;
    scene.scrolls_down = level.area.height < level.layout.height();
    scene.shadow = scene.rounded = true;
    cairo_save(cairo);
    cairo_rectangle(cairo, level.area.left - shadow, level.area.top - shadow,
                    level.area.width + 2 * shadow, level.area.height + 2 * shadow);
    cairo_clip(cairo);
    cairo_translate(cairo, level.area.left - shadow, level.area.top - shadow);
    cairo_push_group(cairo);
    paint_menu(cairo, scene);
    cairo_pop_group_to_source(cairo);
    cairo_paint(cairo);
    cairo_restore(cairo);
}

}  // namespace

@interface ExampleTracker : NSObject <MenuTracker> {
  @private
    NSString* _folder;
    const MenuLook* _look;
    Extent _most;
    Picture* _picture;
}
- (instancetype)initWithFolder:(NSString*)folder look:(const MenuLook*)look most:(Extent)most;
- (const Picture&)picture;
@end

@implementation ExampleTracker

- (instancetype)initWithFolder:(NSString*)folder look:(const MenuLook*)look most:(Extent)most {
    if (!(self = [super init])) return nil;
    _folder = [folder copy];
    _look = look;
    _most = most;
    _picture = new Picture;
    return self;
}

- (void)dealloc {
    [_folder release];
    delete _picture;
    [super dealloc];
}

- (const Picture&)picture {
    return *_picture;
}

- (NSMenuItem*)openFolderInSession:(MenuSession*)session {
    NSMenu* root = [session rootMenu];
    for (NSMenuItem* item in [MenuSession visibleItemsOfMenu:root withModifiers:0]) {
        if (![[path_of_item(item) stringByStandardizingPath] isEqualToString:_folder]) continue;
        [session highlightItem:item inMenu:root];
        return [session openSubmenuOfItem:item] ? item : nil;
    }
    return nil;
}

- (void)drawRoot:(const MenuLayout&)root item:(NSMenuItem*)item level:(const MenuLayout*)level {
    const int row = item ? root.row_of(item) : -1;
    const int row_top = row >= 0 ? root.rows()[static_cast<size_t>(row)].top : 0;
    const Extent beside = level ? Extent{level->width(), level->height()} : Extent{};
    const ExamplePlaces places =
        example_places(*_look, {root.width(), root.height()}, row_top, beside, _most);
    _picture->reset(
        cairo_image_surface_create(CAIRO_FORMAT_ARGB32, places.whole.width, places.whole.height),
        cairo_surface_destroy);
    cairo_t* cairo = cairo_create(_picture->get());
    ImageCache images;
    draw_level(cairo, {root, item, places.root}, &images);
    if (level) draw_level(cairo, {*level, nil, places.level}, &images);
    cairo_destroy(cairo);
}

- (void)trackSession:(MenuSession*)session
               event:(NSEvent*)event
                view:(NSView*)view
                font:(NSFont*)font {
    (void)event, (void)view, (void)font;
    [session open];
    NSMenuItem* item = [self openFolderInSession:session];
    MenuLayout root(*_look), level(*_look);
    root.update([session rootMenu], 0);
    if (item) level.update([item submenu], 0);
    [self drawRoot:root item:item level:item ? &level : nullptr];
    [session close];
}

@end

ExamplePlaces example_places(const MenuLook& look, Extent root, int row_top, Extent level,
                             Extent most) {
    const int shadow = look.shadow_extent, room = most.height - 2 * shadow;
    ExamplePlaces places = {{shadow, shadow, root.width, std::min(root.height, room)}, {}, {}};
    Area& first = places.root;
    Area& second = places.level;
    if (level.width > 0) {
        const int height = std::min(level.height, room), top = row_top + shadow - look.inset;
        second = {first.right() - look.inset, std::clamp(top, shadow, shadow + room - height),
                  level.width, height};
    }
    places.whole = {std::max(first.right(), second.right()) + shadow,
                    std::max(first.bottom(), second.bottom()) + shadow};
    if (look.mirrored) {
        first.left = places.whole.width - first.right();
        second.left = places.whole.width - second.right();
    }
    return places;
}

Picture example_menu(const std::string& folder, const MenuLook& look, Extent most) {
    ExampleTracker* tracker = [[[ExampleTracker alloc] initWithFolder:@(folder.c_str())
                                                                 look:&look
                                                                 most:most] autorelease];
    HostMenu* host = [[[HostMenu alloc] initWithFiles:{folder} forPeople:YES] autorelease];
    NSEvent* event = right_click_event(NSZeroPoint, 0);
    [NSMenu setContextMenuTracker:tracker];
    [NSMenu popUpContextMenu:[host menu] withEvent:event forView:nil];
    [NSMenu setContextMenuTracker:nil];
    return [tracker picture];
}
