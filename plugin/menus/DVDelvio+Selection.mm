#include "menus/DVDelvio+Selection.h"

#include "items/DVMenuItem.h"
#include "menus/DVDelvio+MoveCopy.h"
#include "menus/DVDelvio+OpenWith.h"
#include "menus/DVDelvio+Population.h"
#include "support/dv_log.h"
#include "tree/dv_scan.h"
#include "tree/dv_state.h"
#include "tree/dv_tree.h"

uint8_t dvDidGetURLs = 0;

namespace {

struct chain_t {
    dv_tree_t* head;
    dv_tree_t* tail;

    void append(dv_tree_t* elem) { dv_update_ptrs(elem, &tail, &head); }
};

// A selection while it is being built: folders before files, each in the host's order.
struct selection_t {
    chain_t folders, files;
    int32_t count;

    dv_tree_t* joined() {
        if (!folders.head) return files.head;
        folders.tail->next = files.head;
        return folders.head;
    }
};

void add_path(const char* path, uint32_t flags, selection_t& selection) {
    if (dv_tree_t* folder = dv_build_tree(path, 0, 1, flags, 0)) {
        if (dvEnableDebugOutput) dvdprintf("Delvio: Add folder '%s'\n", path);
        selection.count++;
        selection.folders.append(folder);
        return;
    }
    dv_tree_t* file = dv_build_single_elem(path, flags, DV_ORIGIN_SELECTED_FILE);
    if (file) selection.count++;
    if (dvEnableDebugOutput) {
        dvdprintf("Delvio: Add   file '%s'\n", file ? file->display_name : "NONE-1?");
    }
    selection.files.append(file);
}

void add_file(id file, uint32_t flags, selection_t& selection) {
    const BOOL is_url = [file isKindOfClass:[NSURL class]];
    if (!is_url) return;
    if (dvEnableDebugOutput) {
        dvdprintf("Delvio: is URL? %d : %s\n", is_url, [[file description] UTF8String]);
    }
    const char* path = [[static_cast<NSURL*>(file) path] UTF8String];
    if (!path) {
        if (dvEnableDebugOutput) dvdprintf("Delvio: Warning, failed to get path from URL?\n");
        return;
    }
    add_path(path, flags, selection);
    dvDidGetURLs = 1;
}

void open_elem(dv_tree_t* elem) {
    NSString* path = [DVDelvio stringPathForTree:elem];
    if (!path) {
        if (dvEnableDebugOutput) {
            dvdprintf("Delvio: WARNING: Regular open of selected item, but no path!\n");
        }
        return;
    }
    if (dvEnableDebugOutput) {
        dvdprintf("Delvio: Regular open of selected item at '%s'\n", [path UTF8String]);
    }
    [[NSWorkspace sharedWorkspace] openFile:path];
}

}  // namespace

@implementation DVDelvio (SelectionActions)

- (void)setSelectedFiles:(NSArray*)files {
    if (dvEnableDebugOutput) {
        dvdprintf("Delvio: Set selected files. Have URLS: %d Is invoked: %d  Files: %s\n",
                  dvDidGetURLs, isInvoked, [[files description] UTF8String]);
    }
    if (dvDidGetURLs || !isInvoked) return;
    rootMenuSelectionCount = 0;
    if (dvEnableDebugOutput) dvdprintf("Delvio: Handling selected files..\n");

    selection_t selection = {};
    const uint32_t flags = dv_get_flags(dv);
    for (id file in files) add_file(file, flags, selection);
    rootMenuSelectionCount = selection.count;

    if (dvEnableDebugOutput) dvdprintf("Delvio: Did get any URLs? %d\n", dvDidGetURLs);
    if (!dvDidGetURLs) return;
    if (dvEnableDebugOutput) dvdprintf("Delvio: Updating menu..\n");
    dv->multiple_selection = rootMenuSelectionCount > 1;
    if (dvEnableDebugOutput) {
        dvdprintf("Delvio: Order: %d Ptrs: %p | %p %p | %p %p\n", dv->custom_folder_order, dv->root,
                  selection.folders.head, selection.folders.tail, selection.files.head,
                  selection.files.tail);
    }
    dv->root = selection.joined();
    [self updateProxyMenu];
    if (dvEnableDebugOutput) dvdprintf("Delvio: Done updating menu..\n");
}

- (void)dvItemSelected:(id)sender {
    const NSUInteger modifiers = [NSEvent modifierFlags];
    if (![sender isKindOfClass:[DVMenuItem class]]) return;
    dv_tree_t* elem = [static_cast<DVMenuItem*>(sender) tree];
    if (!elem) return;
    if (dvEnableDebugOutput) {
        dvdprintf("Delvio: Selected item %p\n", sender);
        dvdprintf("Delvio: The selected item has title '%s' and flags %x\n", elem->display_name,
                  elem->origin);
    }
    if (elem->origin & DV_ORIGIN_MOVE_COPY) {
        [self dvFileOperationSelected:static_cast<DVMenuItem*>(sender)];
        return;
    }
    if (elem->origin & DV_ORIGIN_APP_LIST) {
        [self dvApplicationSelected:static_cast<DVMenuItem*>(sender)
                         withOption:(modifiers & NSAlternateKeyMask) != 0];
        return;
    }
    // A command-click starts a drag, which the event tap handles.
    if (modifiers & NSCommandKeyMask) {
        if (dvEnableDebugOutput) {
            dvdprintf("Delvio: Selected item with command key down - is drag tap not working?\n");
        }
        return;
    }
    open_elem(elem);
}

@end
