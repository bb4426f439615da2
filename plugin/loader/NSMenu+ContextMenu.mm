#include "loader/NSMenu+ContextMenu.h"

#include "controller/DVDelvio.h"
#include "menus/DVDelvio+Selection.h"
#include "support/dv_log.h"

// HOST: the host's own methods, declared here for the compiler.
@interface NSArray (FinderNodes)
+ (NSArray*)FINodesFromFENodeVector:(const TFENodeVector*)nodes;
@end

@interface NSObject (FinderNode)
- (NSURL*)url;
@end

namespace {

void log_probably_trash(const char* reason) {
    if (!dvEnableDebugOutput) return;
    dvdprintf("Delvio: %s in dvConfigureWithNodes! [Probably the Trash?]\n", reason);
}

void select_nodes(NSArray* nodes) {
    NSMutableArray* urls = [NSMutableArray arrayWithCapacity:[nodes count]];
    for (id node in nodes) [urls addObject:[node url]];
    [[DVDelvio sharedDelvio] setSelectedFiles:urls];
    if (dvEnableDebugOutput) {
        dvdprintf("Delvio: Added %d items using new-style selection-detection\n",
                  static_cast<int>([urls count]));
    }
}

void select_node_vector(const TFENodeVector* vector) {
    if (!vector) {
        log_probably_trash("No TFENodeVectors");
        return;
    }
    @try {
        NSArray* nodes = [NSArray FINodesFromFENodeVector:vector];
        if ([nodes count]) {
            select_nodes(nodes);
        } else {
            log_probably_trash("Empty selection");
        }
    } @catch (id exception) {
        if (dvEnableDebugOutput) {
            dvdprintf("Delvio: Caught exception while calling FINodesFromFENodeVector.\n");
            dvdprintf("Delvio: Exception was: %s\n", [[exception description] UTF8String]);
        }
    }
}

}  // namespace

@implementation NSMenu (DVDelvioAdditionsToTContextMenu)

- (void)dvConfigureWithNodes:(const TFENodeVector*)nodes
            windowController:(id)window_controller
                   container:(BOOL)container {
    if (dvEnableDebugOutput) {
        dvdprintf("Delvio: TCONTEXTMENU configureWith NODES %p windowController %p container %p\n",
                  nodes, window_controller,
                  reinterpret_cast<void*>(static_cast<uintptr_t>(container)));
    }
    select_node_vector(nodes);
    [self dvConfigureWithNodes:nodes windowController:window_controller container:container];
}

- (void)dvRemoveAllItems {
    if (dvEnableDebugOutput) {
        dvdprintf("Delvio: Remove all items from menu %p : %s\n", self,
                  [[self description] UTF8String]);
    }
    DVDelvio* controller = [DVDelvio sharedDelvio];
    [controller handleRemoveAllItemsPre:self];
    [self dvRemoveAllItems];
    [controller handleRemoveAllItemsPost:self];
}

@end
