// What a press in one of GWorkspace's views of files is about. Main thread.
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
    NSView* _view;     // that was pressed
    id<GWRep> _rep;    // the item that was pressed; nil for ground
    id<GWNode> _node;  // its node, or the folder that is shown
    NSArray* _nodes;   // what the menu is for
}
// Nil where no files are shown.
+ (FilePlace*)placeOfEvent:(NSEvent*)event inWindow:(NSWindow*)window;

- (FilePlaceKind)kind;
- (BOOL)isGround;
- (NSView*)view;
// The files that the menu is for, in GWorkspace's order, once -select has been sent.
- (NSArray*)nodes;

// Makes the window the one that commands are for, and selects what was pressed unless it is
// selected already.
- (void)select;
// Where the selection is only shown in the menu's time: does what GWorkspace does on a click.
- (void)selectForCommand;
// The menu has closed.
- (void)end;

// The contextual menu that GWorkspace itself would show, or nil.
- (NSMenu*)ownMenuForEvent:(NSEvent*)event;
// Whether that menu is a list of programs to open the files with.
- (BOOL)listsPrograms;
@end

// For the places themselves.
@interface FilePlace (Making)
- (instancetype)initWithContainer:(NSView<GWContainer>*)container
                             view:(NSView*)view
                              rep:(id<GWRep>)rep
                             node:(id<GWNode>)node;
- (void)setNodes:(NSArray*)nodes;
// GWorkspace's commands and inspectors are for these nodes.
- (void)tellSelection;
@end
