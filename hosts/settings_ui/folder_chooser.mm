#include "settings_ui/folder_chooser.h"

#include <host/menu_tracking.h>
#include <host/text.h>
#include <stdlib.h>

#include <algorithm>
#include <filesystem>

#include "corefoundation/silent_disks.h"
#include "settings/forced_settings.h"

namespace fs = std::filesystem;

namespace {

constexpr CGFloat icon_side = 16;

// A link to a disk that does not answer is none, as nobody can tell.
bool is_folder(const fs::directory_entry& entry) {
    std::error_code error;
    if (entry.is_symlink(error) && files::is_silent_target(entry.path())) return false;
    return entry.is_directory(error);
}

// The folders in a folder, by name, without hidden ones. None of a disk that does not answer.
std::vector<std::string> folders_in(const std::string& path) {
    std::vector<std::string> names;
    if (files::is_silent_folder(path)) return names;
    std::error_code error;
    const auto options = fs::directory_options::skip_permission_denied;
    // A disk that is pulled out meanwhile ends the list. A loop over the range itself would throw.
    fs::directory_iterator entry(path, options, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        if (name[0] != '.' && is_folder(*entry)) names.push_back(name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

// The plug-in leaves the menus of this window alone.
struct WithoutPlugIn {
    WithoutPlugIn() {
        std::string ignored;
        force_settings(off, &ignored);
    }
    ~WithoutPlugIn() { free_settings(off); }
    const std::vector<std::pair<std::string, std::string>> off = {{"delvio_is_on", "0"}};
};

void pop_up(NSMenu* menu, NSPoint point) {
    const WithoutPlugIn without;
    [NSMenu popUpContextMenu:menu withEvent:right_click_event(point, 0) forView:nil];
}

}  // namespace

@interface MenuChoice : NSObject {
  @private
    NSInteger _index;
    NSString* _path;
    NSMutableArray* _levels;
}
- (NSInteger)index;
- (NSString*)path;
- (void)take:(NSMenuItem*)item;
- (void)addFolder:(NSString*)path title:(NSString*)title toMenu:(NSMenu*)menu;
@end

// Fills the submenu of one folder when it opens. The presenter asks where the folder is, and opens
// the submenu when the folder has answered.
@interface FolderLevel : NSObject {
  @private
    NSString* _path;
    MenuChoice* _choice;  // not retained
}
- (instancetype)initWithPath:(NSString*)path choice:(MenuChoice*)choice;
- (NSURL*)previewItemURL;
@end

@implementation MenuChoice

- (instancetype)init {
    if (!(self = [super init])) return nil;
    _index = -1;
    _levels = [NSMutableArray new];
    return self;
}

- (void)dealloc {
    [_path release];
    [_levels release];
    [super dealloc];
}

- (NSInteger)index {
    return _index;
}

- (NSString*)path {
    return _path;
}

- (void)take:(NSMenuItem*)item {
    _index = [item tag];
    [_path release];
    _path = [[item representedObject] copy];
}

- (void)addFolder:(NSString*)path title:(NSString*)title toMenu:(NSMenu*)menu {
    NSMenuItem* item = [[[NSMenuItem alloc] initWithTitle:title
                                                   action:@selector(take:)
                                            keyEquivalent:@""] autorelease];
    [item setTarget:self];
    [item setRepresentedObject:path];
    NSImage* icon = [[[[NSWorkspace sharedWorkspace] iconForFile:path] copy] autorelease];
    [icon setSize:NSMakeSize(icon_side, icon_side)];
    [item setImage:icon];
    NSMenu* submenu = [[[NSMenu alloc] initWithTitle:path] autorelease];
    [submenu setAutoenablesItems:NO];
    FolderLevel* level = [[[FolderLevel alloc] initWithPath:path choice:self] autorelease];
    [_levels addObject:level];
    [submenu setDelegate:(id)level];
    [item setSubmenu:submenu];
    [menu addItem:item];
}

@end

@implementation FolderLevel

- (instancetype)initWithPath:(NSString*)path choice:(MenuChoice*)choice {
    if (!(self = [super init])) return nil;
    _path = [path copy];
    _choice = choice;
    return self;
}

- (void)dealloc {
    [_path release];
    [super dealloc];
}

- (NSURL*)previewItemURL {
    return [NSURL fileURLWithPath:_path];
}

- (void)menuNeedsUpdate:(NSMenu*)menu {
    if ([menu numberOfItems] > 0) return;
    for (const std::string& name : folders_in([_path UTF8String])) {
        NSString* title = [NSString stringWithUTF8String:name.c_str()];
        if (!title) continue;
        [_choice addFolder:[_path stringByAppendingPathComponent:title] title:title toMenu:menu];
    }
    if ([menu numberOfItems] > 0) return;
    [menu addItemWithTitle:@(translated("No folders")) action:nullptr keyEquivalent:@""];
    [[menu itemAtIndex:0] setEnabled:NO];
}

@end

int choose_from(const std::vector<std::string>& choices, int current, NSPoint point) {
    MenuChoice* choice = [[MenuChoice new] autorelease];
    NSMenu* menu = [[[NSMenu alloc] initWithTitle:@""] autorelease];
    [menu setAutoenablesItems:NO];
    for (size_t i = 0; i < choices.size(); i++) {
        NSMenuItem* item = [[[NSMenuItem alloc] initWithTitle:@(choices[i].c_str())
                                                       action:@selector(take:)
                                                keyEquivalent:@""] autorelease];
        [item setTarget:choice];
        [item setTag:static_cast<NSInteger>(i)];
        [item setState:static_cast<int>(i) == current ? NSOnState : NSOffState];
        [menu addItem:item];
    }
    pop_up(menu, point);
    return static_cast<int>([choice index]);
}

std::string choose_folder(NSPoint point) {
    MenuChoice* choice = [[MenuChoice new] autorelease];
    NSMenu* menu = [[[NSMenu alloc] initWithTitle:@""] autorelease];
    [menu setAutoenablesItems:NO];
    const char* const variable = getenv("HOME");
    NSString* home = [NSString stringWithUTF8String:variable ?: "/"] ?: @"/";
    [choice addFolder:home title:@(translated("Home")) toMenu:menu];
    for (const std::string& name : folders_in([home UTF8String])) {
        NSString* title = [NSString stringWithUTF8String:name.c_str()];
        if (!title) continue;
        [choice addFolder:[home stringByAppendingPathComponent:title] title:title toMenu:menu];
    }
    [menu addItem:(NSMenuItem*)[NSMenuItem separatorItem]];
    [choice addFolder:@"/" title:@(translated("The whole disk")) toMenu:menu];
    pop_up(menu, point);
    return [[choice path] UTF8String] ?: "";
}
