// Files' icons from the desktop's icon theme: GNUstep has one picture for all plain files.
#include <AppKit/AppKit.h>
#include <AppKit/FileIcons.h>

#include <gdk-pixbuf/gdk-pixbuf.h>

#include <string.h>
#include <unistd.h>

#include <unordered_map>

#include "appkit/bitmaps.h"
#include "appkit/icon_names.h"
#include "appkit/icon_theme.h"
#include "appkit/method_patch.h"
#include "appkit/workspace_paths.h"

namespace {

IMP stock_icon;
BOOL uses_stock_icons = NO;

// In points; drawn crisp at these sizes, and at the first two in double resolution.
const int sizes[] = {16, 32, 48};
const CGFloat default_size = 48;
const size_t most_icons = 512;

NSBitmapImageRep* bitmap_of(GdkPixbuf* pixbuf) {
    const int width = gdk_pixbuf_get_width(pixbuf), height = gdk_pixbuf_get_height(pixbuf);
    NSBitmapImageRep* bitmap = make_bitmap(width, height, NSAlphaNonpremultipliedBitmapFormat);
    const int stride = gdk_pixbuf_get_rowstride(pixbuf);
    const guchar* from = gdk_pixbuf_read_pixels(pixbuf);
    for (int y = 0; y < height; y++) {
        memcpy([bitmap bitmapData] + y * width * 4, from + y * stride, width * 4);
    }
    return bitmap;
}

NSBitmapImageRep* load_bitmap(const std::string& file, int pixels) {
    GdkPixbuf* read = gdk_pixbuf_new_from_file_at_size(file.c_str(), pixels, pixels, nullptr);
    if (!read) return nil;
    GdkPixbuf* opaque_or_not = gdk_pixbuf_add_alpha(read, FALSE, 0, 0, 0);
    NSBitmapImageRep* bitmap = bitmap_of(opaque_or_not);
    g_object_unref(opaque_or_not);
    g_object_unref(read);
    return bitmap;
}

std::string icon_file(const std::vector<std::string>& names, int pixels) {
    if (!names.empty() && names[0][0] == '/') return names[0];
    return find_icon(user_icon_theme(), names, pixels);
}

// The pictures of a key in all sizes; none if the theme has none. Retained for the cache.
NSArray* load_bitmaps(const std::string& key) {
    const std::vector<std::string> names = icon_names(key);
    NSMutableArray* bitmaps = [NSMutableArray new];
    for (const int pixels : sizes) {
        const std::string file = icon_file(names, pixels);
        NSBitmapImageRep* bitmap = file.empty() ? nil : load_bitmap(file, pixels);
        if (bitmap) [bitmaps addObject:bitmap];
    }
    return bitmaps;
}

NSArray* bitmaps_for_key(const std::string& key) {
    static auto* cache = new std::unordered_map<std::string, NSArray*>;
    const auto found = cache->find(key);
    if (found != cache->end()) return found->second;
    if (cache->size() >= most_icons) {
        for (const auto& entry : *cache) [entry.second release];
        cache->clear();
    }
    return (*cache)[key] = load_bitmaps(key);
}

// The caller may resize it: the image is his, the pictures are everybody's.
NSImage* image_of(NSArray* pictures, NSSize size) {
    NSImage* image = [[NSImage alloc] initWithSize:size];
    [image setScalesWhenResized:YES];
    [image addRepresentations:pictures];
    return [image autorelease];
}

// GNUstep's bundles carry their own icons.
bool has_icon_of_its_own(const std::string& path) {
    return path.ends_with(".app") && access((path + "/Resources").c_str(), F_OK) == 0;
}

NSImage* icon_for_file(NSWorkspace* self, SEL selector, NSString* path) {
    auto stock = reinterpret_cast<NSImage* (*)(id, SEL, NSString*)>(stock_icon);
    if (uses_stock_icons) return stock(self, selector, path);
    const std::string bytes = path_bytes(path);
    NSArray* bitmaps = has_icon_of_its_own(bytes) ? nil : bitmaps_for_key(icon_key(bytes));
    if ([bitmaps count] > 0) {
        return image_of(bitmaps, NSMakeSize(default_size, default_size));
    }
    NSImage* shared = stock(self, selector, path);
    return shared ? image_of([shared representations], [shared size]) : nil;
}

}  // namespace

@interface IconsInstaller : NSObject
@end

@implementation IconsInstaller

+ (void)load {
    const method_patch_t patches[] = {
        {"NSWorkspace", "iconForFile:", reinterpret_cast<IMP>(icon_for_file), &stock_icon},
    };
    patch_methods(patches);
}

@end

void UseStockFileIcons(BOOL use) { uses_stock_icons = use; }
