#include "menus/DVDelvio+MoveCopy.h"

#include "finder/dv_file_ops.h"
#include "items/DVMenuItem.h"
#include "menus/DVDelvio+Items.h"
#include "menus/DVDelvio+Proxy.h"
#include "support/dv_log.h"
#include "tree/dv_state.h"
#include "tree/dv_tree.h"

namespace {

// The first row is shown unless the modifier keys of another row are held.
const struct {
    NSString* title;
    dv_file_op_t operation;
    NSUInteger modifiers;
} rows[] = {
    {@"Move selection here", DV_FILE_OP_MOVE, 0},
    {@"Copy selection here", DV_FILE_OP_COPY, NSAlternateKeyMask},
    {@"Alias selection here", DV_FILE_OP_ALIAS, NSShiftKeyMask},
};

unsigned shown(const dv_tree_t* elem) {
    return static_cast<unsigned>(reinterpret_cast<uintptr_t>(elem));
}

void log_move_copy_elem(const dv_tree_t* copy) {
    if (!dvEnableDebugOutput) return;
    dvdprintf("moveCopyElem: %x parent: %x pparent: %x name: %s\n", shown(copy),
              shown(copy->parent), shown(copy->parent->parent), copy->display_name);
}

}  // namespace

@implementation DVDelvio (MoveCopy)

- (dv_tree_t*)dvMoveCopyElemForElem:(dv_tree_t*)elem {
    const BOOL isLevel = elem->is_container || elem->kind == DV_KIND_FOLDER;
    if (dv->hideMoveCopyAlias || !isLevel || elem->origin & DV_ORIGIN_APP_LIST) return nullptr;
    dv_tree_t* copy = dv_copy_elem(elem);
    if (!copy) return nullptr;
    copy->parent = elem;
    copy->origin |= DV_ORIGIN_MOVE_COPY;
    copy->next = dv->copies;
    dv->copies = copy;
    log_move_copy_elem(copy);
    return copy;
}

- (void)insertMoveCopyElem:(dv_tree_t*)elem forMenu:(NSMenu*)menu {
    if (!elem || menu == _proxyMenu || elem->kind != DV_KIND_FOLDER) return;
    // A single selected folder cannot be moved into its own levels.
    if (!(elem->origin & DV_ORIGIN_USER_FOLDER) && !dv->multiple_selection) return;
    for (const auto& row : rows) {
        DVMenuItem* item = [DVMenuItem createAutoreleasedItemForTree:elem
                                                              target:self
                                                           withTitle:row.title
                                                        andModifiers:row.modifiers
                                                            useImage:NO];
        [item setTag:row.operation];
        [self addItem:item toMenu:menu];
    }
    [self dvAddSeparatorToMenu:menu];
}

- (void)dvFileOperationSelected:(DVMenuItem*)item {
    dv_tree_t* destination = [item tree];
    const long operation = [item tag];
    if (dvEnableDebugOutput) {
        dvdprintf("Delvio: Will move [0] /copy [1]/alias [2]: %ld | to this directory: %s \n",
                  operation, destination->display_name);
    }
    dv_send_file_op_to_finder(dv, dv->root, destination, operation, dv->open_after_file_op);
}

@end
