#include "menus/DVDelvio+PreviewMenu.h"

#include <dispatch/dispatch.h>

#include "items/DVImageItem.h"
#include "items/DVMenu.h"
#include "menus/DVDelvio+Items.h"
#include "menus/DVDelvio+Population.h"
#include "menus/DVDelvio+Proxy.h"
#include "preview/dv_pictures.h"
#include "support/dv_log.h"
#include "tree/dv_state.h"
#include "tree/dv_tree.h"

namespace {

// A picture that a background queue makes for a menu. The menu may close before the picture is
// ready, and its trees are then freed, so the element is a copy.
struct preview_work_t {
    DVMenu* menu;       // retained
    DVImageItem* item;  // retained
    dv_tree_t* elem;    // owned
    CGImageRef image;   // owned
};

}  // namespace

@interface DVDelvio (PreviewResults)
- (void)dvShowImage:(CGImageRef)image onItem:(DVImageItem*)item inMenu:(DVMenu*)menu;
- (void)dvShowNoPreviewInsteadOfItem:(DVImageItem*)item inMenu:(DVMenu*)menu;
@end

namespace {

void show_preview(void* context) {
    auto* work = static_cast<preview_work_t*>(context);
    DVDelvio* controller = [DVDelvio sharedDelvio];
    if (work->image) {
        [controller dvShowImage:work->image onItem:work->item inMenu:work->menu];
    } else {
        [controller dvShowNoPreviewInsteadOfItem:work->item inMenu:work->menu];
    }
    CGImageRelease(work->image);
    if (work->elem) dv_free_elem(work->elem);
    [work->item release];
    [work->menu release];
    delete work;
}

void make_preview(void* context) {
    auto* work = static_cast<preview_work_t*>(context);
    if (dvEnableDebugOutput) dvdprintf("Delvio: Populating preview item\n");
    delvio_t* dv = [[DVDelvio sharedDelvio] getDV];
    NSURL* url = [DVDelvio urlForTree:work->elem];
    work->image = dv_create_picture(dv, url, dv->preview_size, work->elem);
    dispatch_async_f(dispatch_get_main_queue(), work, show_preview);
}

}  // namespace

@implementation DVDelvio (PreviewMenu)

- (DVMenu*)createPreviewSubmenuForItem:(DVMenuItem*)item {
    DVMenu* menu = [[[DVMenu alloc] initWithTitle:@"" andTree:[item tree]] autorelease];
    [menu setDelegate:self];
    [menu setDvIsPreviewMenu:YES];
    [item setSubmenu:menu];
    [item setTag:1];
    return menu;
}

- (void)dvPopulatePreviewMenu:(DVMenu*)menu {
    if ([menu dvDidPopulate]) return;
    DVImageItem* item = [[DVImageItem alloc] initWithTree:[menu tree] target:self];
    [menu addItem:item];
    [menu setDvDidPopulate:YES];
    auto* work = new preview_work_t{[menu retain], item, dv_copy_elem([menu tree]), nullptr};
    dispatch_async_f(dispatch_get_global_queue(DISPATCH_QUEUE_PRIORITY_DEFAULT, 0), work,
                     make_preview);
}

- (void)dvShowImage:(CGImageRef)image onItem:(DVImageItem*)item inMenu:(DVMenu*)menu {
    if (dvEnableDebugOutput) dvdprintf("Delvio: Got preview image\n");
    NSImage* picture = [[NSImage alloc] initWithCGImage:image size:NSZeroSize];
    [item setImage:picture];
    [picture release];
    [menu itemChanged:item];
}

- (void)dvShowNoPreviewInsteadOfItem:(DVImageItem*)item inMenu:(DVMenu*)menu {
    NSMenuItem* line = [[NSMenuItem alloc] initWithTitle:@"No preview available"
                                                  action:nullptr
                                           keyEquivalent:@""];
    [line setEnabled:NO];
    // Removing the item from the menu may free it.
    if (_currentlyHighlightedItem == item) _currentlyHighlightedItem = nil;
    [menu removeItem:item];
    [menu addItem:line];
    [line release];
    [menu itemChanged:line];
}

@end
