#include "gworkspace/file_places.h"

namespace {

constexpr int single_selection = 0;  // GWorkspace's mask

NSView* browser_of(NSView* column) {
    NSView* view = column;
    while (view && !is_of_gworkspace(view, "FSNBrowser")) view = [view superview];
    return view;
}

}  // namespace

@implementation ViewerPlace

- (void)select {
    [super select];
    if (!_rep) {
        if ([_container respondsToSelector:@selector(setSelectionMask:)]) {
            [_container setSelectionMask:single_selection];
        }
        [_container unselectOtherReps:nil];
        [_container selectionDidChange];
    } else {
        if (![[_container selectedNodes] containsObject:_node]) {
            [_container selectRepsOfSubnodes:[NSArray arrayWithObject:_node]];
        }
        NSArray* selected = [_container selectedNodes];
        if ([selected containsObject:_node]) [self setNodes:selected];
    }
    [self tellSelection];
}

@end

@implementation BrowserPlace

- (instancetype)initWithColumn:(NSView*)column view:(NSView*)view cell:(id<GWRep>)cell {
    NSView<GWContainer>* browser = (NSView<GWContainer>*)browser_of(column);
    const id<GWColumn> shown = (id<GWColumn>)column;
    // A column that only fills the browser shows what the selection shows.
    id<GWNode> node = cell ? [cell node] : [shown shownNode] ?: [browser shownNode];
    if (!(self = [super initWithContainer:browser view:view rep:cell node:node])) return nil;
    _column = (id<GWColumn>)[(NSObject*)shown retain];
    return self;
}

- (void)dealloc {
    [(NSObject*)_column release];
    [super dealloc];
}

- (void)select {
    [super select];
    const bool is_selected = [[_container selectedNodes] containsObject:_node];
    if (!is_selected && _rep) {
        [[_column cmatrix] deselectAllCells];
        [_column selectCellOfNode:_node sendAction:YES];
    } else if (!is_selected && [_column shownNode]) {
        [self selectFolder];
    }
    NSArray* selected = [_container selectedNodes];
    if ([selected containsObject:_node]) [self setNodes:selected];
    [self tellSelection];
}

// The columns that follow showed what was selected in this one.
- (void)selectFolder {
    NSView<GWBrowser>* browser = (NSView<GWBrowser>*)_container;
    [[_column cmatrix] deselectAllCells];
    [browser setLastColumn:static_cast<int>([_column index])];
    [browser tile];
    [browser notifySelectionChange:[NSArray arrayWithObject:_node]];
}

@end

@implementation PointerPlace

- (FilePlaceKind)kind {
    const bool leads_to_folder = [_nodes count] == 1 && [_node isDirectory] && ![_node isPackage];
    return leads_to_folder ? FilePlaceFolderPointer : FilePlaceFilePointer;
}

- (void)select {
    [super select];
    if ([[_rep selection] count] > 0) [self setNodes:[_rep selection]];
    [_container unselectOtherReps:_rep];
    [_rep select];
}

- (void)selectForCommand {
    [_container repSelected:_rep];
}

- (void)end {
    if ([_container respondsToSelector:@selector(restoreLastSelection)]) {
        [_container unselectOtherReps:nil];
        [_container restoreLastSelection];
    } else {
        [_rep unselect];
    }
}

@end

@interface NSObject (DockIcon)
- (BOOL)isTrashIcon;
- (BOOL)isWsIcon;
@end

@implementation DockPlace

- (FilePlaceKind)kind {
    if ([(NSObject*)_rep isTrashIcon]) return FilePlaceDockTrash;
    return [(NSObject*)_rep isWsIcon] ? FilePlaceDockWorkspace : FilePlaceDockProgram;
}

- (void)select {
    [_rep select];
}

- (void)end {
    [_rep unselect];
}

- (BOOL)listsPrograms {
    return NO;
}

@end
