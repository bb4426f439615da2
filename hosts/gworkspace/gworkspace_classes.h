// The methods of GWorkspace's classes that are used here. The classes are part of that program and
// are found by name.
#pragma once

#include <AppKit/AppKit.h>

// A file or folder (FSNode).
@protocol GWNode <NSObject>
- (NSString*)path;
- (BOOL)isDirectory;
- (BOOL)isPackage;
@end

// The representation of a node in a view: an icon, a cell of the browser, a row of the list.
@protocol GWRep <NSObject>
- (id<GWNode>)node;
// All nodes, if it represents several; else nil.
- (NSArray*)selection;
- (void)select;
- (void)unselect;
- (NSRect)iconBounds;
- (NSRect)labelRect;
- (NSCellImagePosition)iconPosition;
@end

// A view of nodes.
@protocol GWContainer <NSObject>
- (id<GWNode>)shownNode;
- (NSArray*)reps;
- (NSArray*)selectedNodes;
- (void)selectRepsOfSubnodes:(NSArray*)nodes;
- (void)unselectOtherReps:(id)rep;
- (void)selectionDidChange;
- (void)setSelectionMask:(int)mask;
- (void)repSelected:(id)rep;
- (void)restoreLastSelection;
@end

// The browser and its columns.
@protocol GWBrowser <GWContainer>
- (void)setLastColumn:(int)column;
- (void)tile;
- (void)notifySelectionChange:(NSArray*)nodes;
@end

@protocol GWColumn <NSObject>
- (id<GWNode>)shownNode;
- (NSMatrix*)cmatrix;
- (NSInteger)index;
- (id)selectCellOfNode:(id)node sendAction:(BOOL)act;
- (BOOL)selectCellWithPrefix:(NSString*)prefix;
@end

// The program's own object.
@protocol GWWorkspace <NSObject>
- (void)selectionChanged:(NSArray*)nodes;
- (void)newViewerAtPath:(NSString*)path;
- (BOOL)openFile:(NSString*)path;
// The keys are "operation", "source", "destination" and "files", the names in the source folder.
- (void)performFileOperation:(NSDictionary*)operation;
- (NSString*)trashPath;
@end

@interface NSObject (GWorkspaceObject)
+ (id<GWWorkspace>)gworkspace;
@end

inline id<GWWorkspace> shared_gworkspace() { return [NSClassFromString(@"GWorkspace") gworkspace]; }

inline BOOL is_of_gworkspace(id object, const char* class_name) {
    Class wanted = objc_lookUpClass(class_name);
    return wanted && [object isKindOfClass:wanted];
}
