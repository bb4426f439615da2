// The target of a press in one of GWorkspace's views of files. Main thread.
#pragma once

#include <AppKit/AppKit.h>

#include "gworkspace/gworkspace_classes.h"

enum FilePlaceKind {
    FilePlaceItems,          // items of a viewer or the desktop
    FilePlaceGround,         // the folder that a viewer shows
    FilePlaceFilePointer,    // an icon on the shelf or in the path, which leads to items elsewhere
    FilePlaceFolderPointer,  // the same, leading to a folder
    FilePlaceDockProgram,
    FilePlaceDockTrash,
    FilePlaceDockWorkspace,
};

@interface FilePlace : NSObject {
  @protected
    NSView<GWContainer>* _container;
    NSView* _view;     // the pressed view
    id<GWRep> _rep;    // the item that was pressed; nil for ground
    id<GWNode> _node;  // its node, or the folder that is shown
    NSArray* _nodes;   // the files that the menu is for
}
// Nil where the window shows no files.
+ (FilePlace*)placeOfEvent:(NSEvent*)event inWindow:(NSWindow*)window;

- (FilePlaceKind)kind;
- (BOOL)isGround;
- (NSView*)view;
// The files that the menu is for, in GWorkspace's order, once -select has been sent.
- (NSArray*)nodes;

// Makes the window the target of commands, and selects the pressed item unless it is selected
// already.
- (void)select;
// Used where the selection only shows while the menu is open: does what GWorkspace does on a click.
- (void)selectForCommand;
// Called when the menu has closed.
- (void)end;

// The contextual menu that GWorkspace itself would show, or nil.
- (NSMenu*)ownMenuForEvent:(NSEvent*)event;
// Whether that menu is a list of programs to open the files with.
- (BOOL)listsPrograms;
@end

// For the subclasses.
@interface FilePlace (Making)
- (instancetype)initWithContainer:(NSView<GWContainer>*)container
                             view:(NSView*)view
                              rep:(id<GWRep>)rep
                             node:(id<GWNode>)node;
- (void)setNodes:(NSArray*)nodes;
// Makes these nodes the target of GWorkspace's commands and inspectors.
- (void)tellSelection;
@end
