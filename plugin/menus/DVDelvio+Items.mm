#include "menus/DVDelvio+Items.h"

#include <stdlib.h>
#include <string.h>

#include "items/DVMenu.h"
#include "items/DVMenuItem.h"
#include "menus/DVDelvio+MoveCopy.h"
#include "menus/DVDelvio+OpenWith.h"
#include "menus/DVDelvio+Population.h"
#include "menus/DVDelvio+PreviewMenu.h"
#include "menus/DVDelvio+Proxy.h"
#include "support/dv_log.h"
#include "tree/dv_state.h"
#include "tree/dv_tree.h"

namespace {

// A level while its items are being made.
struct level_t {
    NSMenu* menu;
    int32_t number;
    bool is_root;
    int32_t previous_kind;
    uint32_t previous_origin;
};

uint32_t origin_without_separator(const dv_tree_t* elem) {
    return elem->origin & ~DV_ORIGIN_SEPARATOR_AFTER;
}

bool is_app_listed(const dv_tree_t* elem) { return elem->origin & DV_ORIGIN_APP_LIST; }

bool is_bundle(const dv_tree_t* elem) {
    return elem->kind == DV_KIND_APPLICATION || elem->kind == DV_KIND_PACKAGE;
}

bool is_document(const dv_tree_t* elem) {
    return !elem->is_container && elem->kind != DV_KIND_FOLDER;
}

bool is_skipped(const dv_tree_t* elem, const level_t& level, const delvio_t* dv) {
    const bool listed_here = elem->kind == DV_KIND_PACKAGE || elem->kind == DV_KIND_FILE;
    if (is_app_listed(elem) && listed_here) return true;
    return level.is_root && dv->only_folders_in_main_menu && elem->kind != DV_KIND_FOLDER;
}

bool is_network(dv_tree_t* elem) {
    if (strcmp([DVMenuItem nameForTree:elem], "Network") != 0) return false;
    char* path = dv_path_for_elem(elem, 0, 1);
    const bool found = path && strcmp(path, "/Network") == 0;
    free(path);
    return found;
}

// The item shows no contents; with the Option key it does.
bool is_closed(dv_tree_t* elem, const delvio_t* dv) {
    if (is_network(elem)) return true;
    return is_bundle(elem) && !dv->show_package_contents;
}

// A new kind begins with a separator. Files after packages get none, because both are documents.
bool begins_kind_group(const dv_tree_t* elem, const level_t& level) {
    if (elem->kind != DV_KIND_FILE) return true;
    return level.previous_kind != DV_KIND_PACKAGE;
}

}  // namespace

@implementation DVDelvio (MenuItems)

- (void)insertItems:(dv_tree_t*)elems forMenu:(NSMenu*)menu {
    [self insertItems:elems forMenu:menu withMoveCopyElem:nullptr];
}

- (void)insertItems:(dv_tree_t*)elems forMenu:(NSMenu*)menu withMoveCopyElem:(dv_tree_t*)target {
    level_t level = {};
    level.menu = menu;
    level.is_root = menu == _proxyMenu;
    level.number = 1;
    if ([menu isKindOfClass:[DVMenu class]]) {
        level.number = [static_cast<DVMenu*>(menu) dvFolderLevel] + 1;
    }
    if (elems) {
        level.previous_kind = elems->kind;
        level.previous_origin = origin_without_separator(elems);
    }
    if (dvEnableDebugOutput) {
        dvdprintf("Delvio: Inserting items %p into menu %p..\n", elems, menu);
    }
    [self insertMoveCopyElem:target forMenu:menu];
    for (dv_tree_t* elem = elems; elem; elem = elem->next) {
        @autoreleasepool {  // a level may have hundreds of thousands
            [self dvInsertElem:elem inLevel:level];
        }
    }
    if (dvEnableDebugOutput) dvdprintf("Delvio: Done updating menu\n");
}

- (void)dvAddSeparatorToMenu:(NSMenu*)menu {
    NSMenuItem* item = static_cast<NSMenuItem*>([NSMenuItem separatorItem]);
    [self addItem:item toMenu:menu];
}

- (NSMenuItem*)dvPlainItemWithTitle:(NSString*)title enabled:(BOOL)enabled {
    NSMenuItem* item = [[NSMenuItem alloc] initWithTitle:title action:nullptr keyEquivalent:@""];
    [item setEnabled:enabled];
    return [item autorelease];
}

- (void)dvInsertElem:(dv_tree_t*)elem inLevel:(level_t&)level {
    if (is_skipped(elem, level, dv)) {
        if (dvEnableDebugOutput) dvdprintf("Delvio: Skiping '%s'\n", elem->display_name);
        level.previous_kind = elem->kind;
        return;
    }
    [self dvSeparateElem:elem inLevel:level];
    DVMenuItem* item = [[DVMenuItem alloc] initWithTree:elem target:self];
    [self addItem:[self dvFurnishItem:item ofElem:elem inLevel:level] toMenu:level.menu];
    [item release];
    level.previous_kind = elem->kind;
    // The separator bit is kept, so that the next element's origin differs.
    level.previous_origin = elem->origin;
}

- (void)dvSeparateElem:(dv_tree_t*)elem inLevel:(const level_t&)level {
    const bool new_kind = elem->kind != level.previous_kind && dv->sort_order == 0;
    const bool heading = new_kind && elem->kind == DV_KIND_APPLICATION;
    const bool new_origin = origin_without_separator(elem) != level.previous_origin;
    if (new_origin || (new_kind && begins_kind_group(elem, level))) {
        [self dvAddSeparatorToMenu:level.menu];
    }
    if (!heading) return;
    [self addItem:[self dvPlainItemWithTitle:@"Applications" enabled:NO] toMenu:level.menu];
}

// Adds submenus and alternates to the element's item. When alternates follow the item, it is added
// to the menu here. Returns the last item, which is not in the menu yet.
- (DVMenuItem*)dvFurnishItem:(DVMenuItem*)item
                      ofElem:(dv_tree_t*)elem
                     inLevel:(const level_t&)level {
    if (is_document(elem)) return [self dvFurnishDocumentItem:item ofElem:elem inLevel:level];
    if (is_app_listed(elem)) return [self dvFurnishListedItem:item ofElem:elem inLevel:level];
    if (is_closed(elem, dv)) return [self dvFurnishClosedItem:item ofElem:elem inLevel:level];
    [self createSubmenuForTree:elem andItem:item atLevel:level.number];
    return item;
}

// Shift shows a document's open-with submenu and Option its preview. In the root menu the open-with
// submenu can be the item's own submenu, without Shift.
- (DVMenuItem*)dvFurnishDocumentItem:(DVMenuItem*)item
                              ofElem:(dv_tree_t*)elem
                             inLevel:(const level_t&)level {
    if (is_app_listed(elem)) return item;
    if (level.is_root && dv->autoOpenWithMenu) {
        [self createOpenWithSubmenuForItem:item isRootMenu:YES];
        [self addItem:item toMenu:level.menu];
    } else {
        // An application that is not a container counts as a document.
        [self dvOfferRecentItemsOfElem:elem onItem:item inLevel:level];
        [self addItem:item toMenu:level.menu];
        DVMenuItem* openWith = [self dvAlternateOf:item withModifiers:NSShiftKeyMask];
        [self createOpenWithSubmenuForItem:openWith isRootMenu:level.is_root];
        [self addItem:openWith toMenu:level.menu];
    }
    DVMenuItem* preview = [self dvAlternateOf:item withModifiers:NSAlternateKeyMask];
    [self createPreviewSubmenuForItem:preview];
    return preview;
}

// Shares the item's title, which saves making the same text again for each alternate.
- (DVMenuItem*)dvAlternateOf:(DVMenuItem*)item withModifiers:(NSUInteger)modifiers {
    return [DVMenuItem createAutoreleasedItemForTree:[item tree]
                                              target:self
                                           withTitle:[item title]
                                        andModifiers:modifiers];
}

- (void)dvOfferRecentItemsOfElem:(dv_tree_t*)elem
                          onItem:(DVMenuItem*)item
                         inLevel:(const level_t&)level {
    if (elem->kind != DV_KIND_APPLICATION || !dv->showRecentItems) return;
    [self createRecentSubmenuForTree:elem andItem:item atLevel:level.number];
}

// A listed application has no submenu. A listed folder is read at once, so that an empty one gets
// no submenu.
- (DVMenuItem*)dvFurnishListedItem:(DVMenuItem*)item
                            ofElem:(dv_tree_t*)elem
                           inLevel:(const level_t&)level {
    if (elem->kind != DV_KIND_FOLDER) return item;
    [self populateSubFolderForElem:elem];
    if (elem->children) {
        [self createSubmenuForTree:elem andItem:item atLevel:level.number parentMenu:level.menu];
    } else {
        [item setEnabled:NO];
        [item setImage:nil];
    }
    return item;
}

- (DVMenuItem*)dvFurnishClosedItem:(DVMenuItem*)item
                            ofElem:(dv_tree_t*)elem
                           inLevel:(const level_t&)level {
    [self dvOfferRecentItemsOfElem:elem onItem:item inLevel:level];
    [self addItem:item toMenu:level.menu];
    DVMenuItem* contents = [self dvAlternateOf:item withModifiers:NSAlternateKeyMask];
    [self createSubmenuForTree:elem andItem:contents atLevel:level.number];
    return contents;
}

@end
