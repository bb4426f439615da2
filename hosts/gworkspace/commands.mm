#include "gworkspace/commands.h"

namespace {

enum : unsigned {
    on_items = 1,
    on_ground = 2,
    on_file_pointer = 4,
    on_folder_pointer = 8,
    on_dock_trash = 16,
    on_dock_workspace = 32,
    on_files = on_items | on_file_pointer,
};

// The actions of the main menu's items; an entry without an action is a separator.
const struct Command {
    const char* action;
    unsigned places;
} commands[] = {
    {"openSelection:", on_files},
    {"openWith:", on_files},
    {"openSelectionAsFolder:", on_items | on_folder_pointer},
    {"newFolder:", on_ground},
    {"newFile:", on_ground},
    {"emptyRecycler:", on_dock_trash},
    {"showViewer:", on_dock_workspace},
    {nullptr, ~0u},
    {"cut:", on_files},
    {"copy:", on_files},
    {"paste:", on_ground},
    {"selectAllInViewer:", on_ground},
    {nullptr, ~0u},
    {"duplicateFiles:", on_files},
    {"recycleFiles:", on_files},
    {"showTerminal:", on_ground},
    {nullptr, ~0u},
    {"showAttributesInspector:", on_files | on_ground | on_folder_pointer},
};

// The commands of each kind of place, in the order of FilePlaceKind.
constexpr unsigned places[] = {
    on_items, on_ground, on_file_pointer, on_folder_pointer, 0, on_dock_trash, on_dock_workspace,
};

NSMenuItem* main_menu_item(NSMenu* menu, SEL action) {
    for (NSMenuItem* item in [menu itemArray]) {
        if ([item action] && sel_isEqual([item action], action)) return item;
        NSMenuItem* deeper = [item hasSubmenu] ? main_menu_item([item submenu], action) : nil;
        if (deeper) return deeper;
    }
    return nil;
}

// The object that would handle the command, or nil.
id target_of(NSMenuItem* item) {
    id target = [NSApp targetForAction:[item action] to:[item target] from:item];
    if ([target respondsToSelector:@selector(validateMenuItem:)] &&
        ![target validateMenuItem:item]) {
        return nil;
    }
    return target;
}

}  // namespace

// Runs a command when it is picked. Whether the command can run is only known once the selection is
// made.
@interface GWorkspaceCommand : NSObject {
  @private
    NSMenuItem* _original;
    FilePlace* _place;
}
- (instancetype)initWithOriginal:(NSMenuItem*)original place:(FilePlace*)place;
- (void)perform:(id)sender;
@end

@implementation GWorkspaceCommand

- (instancetype)initWithOriginal:(NSMenuItem*)original place:(FilePlace*)place {
    if (!(self = [super init])) return nil;
    _original = [original retain];
    _place = [place retain];
    return self;
}

- (void)dealloc {
    [_original release];
    [_place release];
    [super dealloc];
}

- (void)perform:(id)sender {
    (void)sender;
    [_place selectForCommand];
    if (id target = target_of(_original)) {
        [NSApp sendAction:[_original action] to:target from:_original];
    }
}

@end

namespace {

void add_command(NSMenu* menu, NSMenuItem* original, FilePlace* place, bool is_enabled) {
    NSMenuItem* item = [[NSMenuItem alloc] initWithTitle:[original title]
                                                  action:@selector(perform:)
                                           keyEquivalent:@""];
    GWorkspaceCommand* command = [[GWorkspaceCommand alloc] initWithOriginal:original place:place];
    [item setTarget:command];
    [item setEnabled:is_enabled];
    [item setRepresentedObject:command];  // the target is not retained
    [menu addItem:item];
    [command release];
    [item release];
}

void close_group(NSMenu* menu) {
    NSMenuItem* last = [[menu itemArray] lastObject];
    if (last && ![last isSeparatorItem]) {
        [menu addItem:(NSMenuItem*)[NSMenuItem separatorItem]];
    }
}

}  // namespace

void add_commands(NSMenu* menu, FilePlace* place) {
    const unsigned here = places[[place kind]];
    // Every command is offered for a pointer: its item is not selected yet, so the target cannot be
    // asked.
    const bool is_pointer = here & (on_file_pointer | on_folder_pointer);
    for (const Command& command : commands) {
        if (!(command.places & here)) continue;
        if (!command.action) {
            close_group(menu);
            continue;
        }
        NSMenuItem* original = main_menu_item([NSApp mainMenu], sel_registerName(command.action));
        if (!original) continue;
        const bool is_taken = is_pointer || target_of(original);
        // A dock icon has a single command, so it is shown even if it is disabled.
        if (is_taken || here >= on_dock_trash) add_command(menu, original, place, is_taken);
    }
    NSMenuItem* last = [[menu itemArray] lastObject];
    if ([last isSeparatorItem]) [menu removeItem:last];
}
