#include "menus/DVDelvio+OpenWith.h"

#include "finder/dv_open.h"
#include "items/DVMenu.h"
#include "items/DVMenuItem.h"
#include "menus/DVDelvio+Items.h"
#include "menus/DVDelvio+Proxy.h"
#include "support/dv_log.h"
#include "tree/dv_state.h"
#include "tree/dv_tree.h"

namespace {

NSString* const one_title = @"Open with...";
NSString* const selection_title = @"Open selection with...";
NSString* const running_title = @"Running apps";

bool is_listed_application(DVMenuItem* item) {
    return [item tree] && [item tree]->origin & DV_ORIGIN_APP_LIST;
}

BOOL is_attached_to_root(NSMenu* menu) {
    if (![menu isKindOfClass:[DVMenu class]]) return NO;
    return [static_cast<DVMenu*>(menu) dvOpenWithIsAttachedToRoot] != 0;
}

// The item whose open-with submenu contains the application, at any depth; nil when no DVMenuItem
// is found.
DVMenuItem* owner_of_application(DVMenuItem* application) {
    NSMenuItem* item = [application parentItem];
    for (; [item isKindOfClass:[DVMenuItem class]]; item = [item parentItem]) {
        if (!is_listed_application(static_cast<DVMenuItem*>(item))) {
            return static_cast<DVMenuItem*>(item);
        }
        if (dvEnableDebugOutput) {
            dvdprintf("Delvio: Still didn't find the correct elem, scanning parent tree..\n");
        }
    }
    return nil;
}

}  // namespace

@implementation DVDelvio (OpenWith)

// A level may have thousands of documents, each with this submenu, and the user opens one of them.
// So the submenu's lines are made when it opens.
- (DVMenu*)createOpenWithSubmenuForItem:(NSMenuItem*)item isRootMenu:(BOOL)isRoot {
    DVMenu* menu = [[DVMenu alloc] initWithTitle:one_title andTree:dv->open_with];
    [menu setDelegate:self];
    [menu setDvOpenWithIsAttachedToRoot:isRoot];
    [menu setDvNeedsOpenWithHead:YES];
    [item setSubmenu:menu];
    return [menu autorelease];
}

- (DVMenu*)createOpenWithSubmenuForItem:(NSMenuItem*)item {
    return [self createOpenWithSubmenuForItem:item isRootMenu:NO];
}

- (void)dvAddOpenWithHeadToMenu:(DVMenu*)menu {
    const BOOL isRoot = is_attached_to_root(menu);
    [menu setDvNeedsOpenWithHead:NO];
    [self addItem:[self dvPlainItemWithTitle:isRoot ? selection_title : one_title enabled:NO]
           toMenu:menu];
    NSMenuItem* other = [self dvPlainItemWithTitle:isRoot ? one_title : selection_title enabled:NO];
    [other setAlternate:YES];
    [other setKeyEquivalentModifierMask:NSAlternateKeyMask];
    [self addItem:other toMenu:menu];
    [self dvAddSeparatorToMenu:menu];
    if (!dv->runningAppsInOpenWithMenu || !dv->running_apps) return;
    [self addItem:[self dvRunningAppsItemForMenu:menu] toMenu:menu];
    [self dvAddSeparatorToMenu:menu];
}

// The submenu has no delegate, because it is not an element's level and is complete from the start.
- (DVMenuItem*)dvRunningAppsItemForMenu:(DVMenu*)openWith {
    DVMenuItem* item = [DVMenuItem createAutoreleasedItemForTree:dv->running_apps
                                                          target:self
                                                       withTitle:running_title
                                                    andModifiers:0
                                                        useImage:NO];
    DVMenu* menu = [[DVMenu alloc] initWithTitle:running_title andTree:dv->running_apps];
    [menu setDvOpenWithIsAttachedToRoot:[openWith dvOpenWithIsAttachedToRoot]];
    [item setSubmenu:menu];
    [self insertItems:dv->running_apps forMenu:menu];
    [menu release];
    return item;
}

- (void)dvApplicationSelected:(DVMenuItem*)item withOption:(BOOL)optionDown {
    const BOOL inRoot = is_attached_to_root([item menu]);
    if (dvEnableDebugOutput) {
        dvdprintf("Delvio: Option key down: %d Selected item is in root menu: %d\n", optionDown,
                  inRoot);
    }
    if (optionDown != inRoot) {
        if (dvEnableDebugOutput) {
            dvdprintf("Delvio: Open selection with.. Attached to root? %d\n", inRoot);
        }
        dv_open_file_with_app(dv, dv->root, [item tree], true);
        return;
    }
    DVMenuItem* owner = owner_of_application(item);
    if (!owner) return;
    dv_tree_t* document = [owner tree];
    if (dvEnableDebugOutput) {
        dvdprintf("Delvio: Open parent item with.. %p %p %s\n", owner, document,
                  document ? document->display_name : " NOT FOUND");
    }
    dv_open_file_with_app(dv, document, [item tree], false);
}

@end
