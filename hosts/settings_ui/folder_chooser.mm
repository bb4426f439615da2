#include "settings_ui/folder_chooser.h"

#include <host/text.h>
#include <stdlib.h>

#include <algorithm>
#include <filesystem>

#include "settings/forced_settings.h"

namespace fs = std::filesystem;

namespace {

constexpr CGFloat icon_side = 16;

// The folders in a folder, by name, without hidden ones.
std::vector<std::string> folders_in(const std::string& path) {
    std::vector<std::string> names;
    std::error_code error;
    const auto options = fs::directory_options::skip_permission_denied;
    for (const auto& entry : fs::directory_iterator(path, options, error)) {
        const std::string name = entry.path().filename().string();
        if (name[0] != '.' && entry.is_directory(error)) names.push_back(name);
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
    NSEvent* event = [NSEvent mouseEventWithType:NSLeftMouseDown
                                        location:point
                                   modifierFlags:0
                                       timestamp:0
                                    windowNumber:0
                                         context:nil
                                     eventNumber:0
                                      clickCount:1
                                        pressure:1];
    [NSMenu popUpContextMenu:menu withEvent:event forView:nil];
}

}  // namespace

@interface MenuChoice : NSObject {
  @private
    NSInteger _index;
    NSString* _path;
}
- (NSInteger)index;
- (NSString*)path;
- (void)take:(NSMenuItem*)item;
- (void)addFolder:(NSString*)path title:(NSString*)title toMenu:(NSMenu*)menu;
@end

@implementation MenuChoice

- (instancetype)init {
    if ((self = [super init])) _index = -1;
    return self;
}

- (void)dealloc {
    [_path release];
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
    [submenu setDelegate:(id)self];
    [item setSubmenu:submenu];
    [menu addItem:item];
}

// A submenu is filled when it opens. Its title is the path of its folder.
- (void)menuNeedsUpdate:(NSMenu*)menu {
    if ([menu numberOfItems] > 0) return;
    for (const std::string& name : folders_in([[menu title] UTF8String])) {
        NSString* title = [NSString stringWithUTF8String:name.c_str()];
        if (!title) continue;
        [self addFolder:[[menu title] stringByAppendingPathComponent:title]
                  title:title
                 toMenu:menu];
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
