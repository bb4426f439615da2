#include "finderkit/item_marks.h"

#include <CoreFoundation/CoreFoundation.h>

#include <string.h>
#include <sys/stat.h>

#include <string>

#include "finderkit/asked_settings.h"
#include "finderkit/plug_in_items.h"
#include "finderkit/settings_file.h"

namespace {

// The level that folder_of() was asked about; not retained.
NSMenu* last_menu;
NSMenuItem* last_parent;

// The paths of the setting "folders".
NSArray* user_folders() {
    NSArray* folders = stored_setting("folders");
    return [folders isKindOfClass:[NSArray class]] ? folders : nil;
}

// The user's folders are above the selection, or below it if it is set so.
bool are_below_selection() {
    id order = stored_setting("custom_folder_order");
    return [order respondsToSelector:@selector(intValue)] && [order intValue] == 0;
}

// The item's path without a slash at its end, which the paths of folders have.
NSString* plain_path(NSMenuItem* item) {
    NSString* path = path_of_item(item);
    const bool is_longer = [path length] > 1 && [path hasSuffix:@"/"];
    return is_longer ? [path substringToIndex:[path length] - 1] : path;
}

// Whether another item of the menu with this path is farther from the selection, so that the item
// itself is the selection's.
bool is_shadowed(NSMenuItem* item, NSString* path) {
    bool is_after = false;
    for (NSMenuItem* other in [[item menu] itemArray]) {
        if (other == item) {
            is_after = true;
            continue;
        }
        const bool is_farther = is_after == are_below_selection();
        if (is_farther && [plain_path(other) isEqual:path]) return true;
    }
    return false;
}

bool is_user_folder(NSMenuItem* item) {
    NSArray* folders = user_folders();
    NSString* path = [folders count] ? plain_path(item) : nil;
    if (!path) return false;
    const bool is_listed = [folders containsObject:path] ||
                           [folders containsObject:[path stringByAppendingString:@"/"]];
    return is_listed && !is_shadowed(item, path);
}

// The item whose submenu is open as the level `menu`; nil for the first level.
NSMenuItem* parent_of(NSMenu* menu) {
    MenuSession* session = [MenuSession current];
    NSArray* levels = [session levels];
    const NSUInteger depth = [levels indexOfObjectIdenticalTo:menu];
    if (depth == NSNotFound || depth == 0) return nil;
    NSMenuItem* item = [session highlightedItemOfMenu:[levels objectAtIndex:depth - 1]];
    return [item submenu] == menu ? item : nil;
}

// The folder that the level `menu` shows, with a slash at its end; empty if it shows none. Every
// row of a level asks. The first level is drawn before any other, and forgets the answer.
const std::string& folder_of(NSMenu* menu) {
    static std::string folder;
    NSMenuItem* parent = parent_of(menu);
    if (menu == last_menu && parent == last_parent) return folder;
    last_menu = menu;
    last_parent = parent;
    NSString* path = parent && stands_for_file(parent) ? path_of_item(parent) : nil;
    folder = [path hasSuffix:@"/"] ? [path UTF8String] : "";
    return folder;
}

// Whether the file at `path` has this name in the folder.
bool is_in(const std::string& folder, const char* name, const char* path) {
    if (strncmp(path, folder.c_str(), folder.size()) != 0) return false;
    const size_t length = strlen(name);
    const char* const rest = path + folder.size();
    return strncmp(rest, name, length) == 0 && (!rest[length] || strcmp(rest + length, "/") == 0);
}

bool is_link(NSMenuItem* item) {
    const std::string& folder = folder_of([item menu]);
    const char* const path = folder.empty() ? nullptr : [path_of_item(item) UTF8String];
    const char* const name = path ? name_of_item(item) : nullptr;
    if (!name || is_in(folder, name, path)) return false;
    struct stat entry;
    return lstat((folder + name).c_str(), &entry) == 0 && S_ISLNK(entry.st_mode);
}

}  // namespace

MenuMark mark_of_item(NSMenuItem* item) {
    if (!stands_for_file(item)) return menu_mark_none;
    if ([item menu] == [[MenuSession current] rootMenu]) {
        last_menu = nil;
        return is_user_folder(item) ? menu_mark_bookmark : menu_mark_none;
    }
    return is_link(item) ? menu_mark_link : menu_mark_none;
}
