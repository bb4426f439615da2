// The contextual menu of a Finder-like host, and the nodes that it is configured with. Main thread.
#pragma once

#include <AppKit/AppKit.h>

#include <string>
#include <vector>

// One selected file or folder: its absolute path, in the bytes of the file system.
struct TFENode {
    std::string path;
};

// The selection, in the host's order.
struct TFENodeVector {
    std::vector<TFENode> nodes;
};

@interface FINode : NSObject {
  @private
    NSURL* _url;
}
- (instancetype)initWithNode:(const TFENode&)node;
// A file URL. If the name is not valid UTF-8, the URL has no `path`.
- (NSURL*)url;
@end

@interface NSArray (FinderNodes)
// An FINode for each node, in order. Null gives an empty array.
+ (NSArray*)FINodesFromFENodeVector:(const TFENodeVector*)vector;
@end

@interface TContextMenu : NSMenu {
  @private
    NSArray* _nodes;
    id _windowController;  // not retained
    BOOL _isContainer;
}
// Sets what the menu is for. `controller` may be nil; `isContainer` is true when the one node is
// the folder whose background the user clicked.
- (void)configureWithNodes:(const TFENodeVector*)nodes
          windowController:(id)controller
                 container:(BOOL)isContainer;
- (NSArray*)nodes;
- (id)windowController;
- (BOOL)isContainer;
// Implemented by this class and not only inherited, because a plug-in may exchange the method.
- (void)removeAllItems;
@end
