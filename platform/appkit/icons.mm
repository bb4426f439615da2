// Files' icons from the desktop's icon theme: GNUstep has one picture for all plain files. Pictures
// that anybody but the system has put there are not decoded here.
#include <AppKit/AppKit.h>
#include <host/file_icons.h>
#include <host/glib_owners.h>

#include <gdk-pixbuf/gdk-pixbuf.h>
#include <gio/gio.h>

#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <unordered_map>

#include "appkit/file_icon.h"
#include "appkit/icon_pictures.h"
#include "appkit/untrusted_icons.h"
#include "appkit/workspace_paths.h"
#include "corefoundation/silent_disks.h"
#include "desktop/bundle_names.h"
#include "desktop/icon_names.h"
#include "desktop/icon_theme.h"
#include "desktop/small_files.h"
#include "look/bitmaps.h"
#include "objc/method_patch.h"

namespace {

IMP stock_icon;
BOOL uses_stock_icons = NO;

// In points. Icons are crisp at these sizes, and at the first two also in double resolution.
const int sizes[] = {16, 32, 48};
const size_t most_icons = 512, largest_picture = 4 << 20;
// The key of a program that has no icon of its own, or none yet.
const char program_key[] = "application/x-executable";

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

// Reads only a plain file of at most `largest_picture` bytes.
files::ObjectOwner<GdkPixbuf> read_picture(const std::string& file, int pixels) {
    std::string content;
    if (!files::read_small_file(file.c_str(), largest_picture, &content)) return nullptr;
    const files::ObjectOwner<GInputStream> stream(g_memory_input_stream_new_from_data(
        content.data(), static_cast<gssize>(content.size()), nullptr));
    return files::ObjectOwner<GdkPixbuf>(
        gdk_pixbuf_new_from_stream_at_scale(stream.get(), pixels, pixels, TRUE, nullptr, nullptr));
}

NSBitmapImageRep* load_bitmap(const std::string& file, int pixels) {
    const files::ObjectOwner<GdkPixbuf> read = read_picture(file, pixels);
    if (!read) return nil;
    const files::ObjectOwner<GdkPixbuf> with_alpha(
        gdk_pixbuf_add_alpha(read.get(), FALSE, 0, 0, 0));
    return bitmap_of(with_alpha.get());
}

std::string icon_file(std::vector<std::string> names, int pixels) {
    if (!names.empty() && names[0][0] == '/') {
        if (is_systems_own(names[0])) return names[0];
        names.erase(names.begin());
    }
    return find_icon(user_icon_theme(), names, pixels);
}

// The pictures of these names in all sizes, retained; none if the theme has none.
NSArray* load_named(const std::vector<std::string>& names) {
    NSMutableArray* bitmaps = [NSMutableArray new];
    for (const int pixels : sizes) {
        const std::string file = icon_file(names, pixels);
        NSBitmapImageRep* bitmap = file.empty() ? nil : load_bitmap(file, pixels);
        if (bitmap) [bitmaps addObject:bitmap];
    }
    return bitmaps;
}

// What the theme has for a key.
struct KeyIcon {
    NSArray* bitmaps;  // retained, in all sizes; none if the theme has none
    std::string path;  // of the picture that the key names by path; empty for most keys
};

KeyIcon load_icon(const std::string& key) {
    const std::vector<std::string> names = icon_names(key);
    const bool is_path = !names.empty() && names[0][0] == '/';
    return {load_named(names), is_path ? names[0] : std::string()};
}

// Valid until the next call.
const KeyIcon& icon_for_key(const std::string& key) {
    static auto* cache = new std::unordered_map<std::string, KeyIcon>;
    static unsigned theme;  // whose pictures these are
    const auto found = cache->find(key);
    if (found != cache->end() && theme == icon_theme_changes()) return found->second;
    if (cache->size() >= most_icons || theme != icon_theme_changes()) {
        for (const auto& entry : *cache) [entry.second.bitmaps release];
        cache->clear();
        theme = icon_theme_changes();
    }
    return (*cache)[key] = load_icon(key);
}

// The file of the picture that a key names by path and that nobody vouches for.
std::string untrusted_file(const std::string& key) {
    const std::string& path = icon_for_key(key).path;
    return path.empty() || is_systems_own(path) ? std::string() : path;
}

NSImage* make_emblem(const char* name) {
    NSArray* bitmaps = [load_named({name}) autorelease];
    if (![bitmaps count]) return nil;
    NSImage* image = [[NSImage alloc] initWithSize:NSMakeSize(16, 16)];
    [image addRepresentations:bitmaps];
    return image;
}

NSImage* stock_image(NSWorkspace* workspace, NSString* path) {
    auto stock = reinterpret_cast<NSImage* (*)(id, SEL, NSString*)>(stock_icon);
    return stock(workspace, @selector(iconForFile:), path);
}

// GNUstep's own pictures, for a key without an icon in the theme. GNUstep is not asked about the
// folder itself: it would decode the picture that it finds in there.
NSArray* plain_pictures(const std::string& key, NSString* path) {
    NSWorkspace* workspace = [NSWorkspace sharedWorkspace];
    NSImage* shared = key[0] == '@' ? stock_image(workspace, @"/usr")
                                    : [workspace iconForFileType:[path pathExtension]];
    return [shared representations];
}

NSArray* pictures_for_key(const std::string& key, NSString* path) {
    NSArray* bitmaps = icon_for_key(key).bitmaps;
    return [bitmaps count] ? bitmaps : plain_pictures(key, path);
}

bool is_named_as_bundle(const std::string& path) { return path.ends_with(".app"); }

// GNUstep's bundles carry their own icons.
bool has_icon_of_its_own(const std::string& path) {
    return is_named_as_bundle(path) && !files::is_silent_target(path) &&
           access((path + "/Resources").c_str(), F_OK) == 0;
}

void give_pictures_of_bundle(NSImage* image, const std::string& bytes, NSString* path) {
    char* resolved = realpath(bytes.c_str(), nullptr);
    const std::string place = resolved ? resolved : bytes;
    free(resolved);
    if (is_systems_own(place)) {
        NSArray* shared = [stock_image([NSWorkspace sharedWorkspace], path) representations];
        if (shared) return [image addRepresentations:shared];
    }
    [image addRepresentations:pictures_for_key(program_key, path)];
    const std::string file = files::bundle_icon(place.c_str());
    if (!file.empty()) show_untrusted_icon(image, file);
}

NSImage* icon_for_file(NSWorkspace* self, SEL, NSString* path) {
    if (uses_stock_icons) return stock_image(self, path);
    return [FileIcon iconOfPath:path];
}

}  // namespace

void give_pictures(NSImage* image, NSString* path) {
    const std::string bytes = path_bytes(path);
    if (has_icon_of_its_own(bytes)) return give_pictures_of_bundle(image, bytes, path);
    const std::string key = icon_key(bytes);
    [image addRepresentations:pictures_for_key(key, path)];
    const std::string file = untrusted_file(key);
    if (!file.empty()) show_untrusted_icon(image, file);
}

NSImage* link_emblem() {
    static NSImage* const emblem = make_emblem("emblem-symbolic-link");
    return emblem;
}

NSImage* broken_link_emblem() {
    static NSImage* const emblem = make_emblem("emblem-unreadable");
    return emblem;
}

bool may_have_untrusted_picture(NSString* name) {
    return [name hasSuffix:@".desktop"] || [name hasSuffix:@".app"];
}

@interface IconsInstaller : NSObject
@end

@implementation IconsInstaller

+ (void)load {
    const MethodPatch patches[] = {
        {"NSWorkspace", "iconForFile:", reinterpret_cast<IMP>(icon_for_file), &stock_icon},
    };
    patch_methods(patches);
}

@end

void use_stock_file_icons(BOOL use) { uses_stock_icons = use; }
