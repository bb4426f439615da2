#include "gworkspace/file_place.h"

#include "gworkspace/file_places.h"

namespace {

// The views of files, except the browser's columns.
const struct View {
    const char* view_class;
    const char* place_class;
    bool has_ground;
} views[] = {
    {"FSNIconsView", "ViewerPlace", true},  // the desktop too
    {"FSNListView", "ViewerPlace", true},     {"GWViewerIconsPath", "PointerPlace", false},
    {"GWViewerShelf", "PointerPlace", false}, {"Dock", "DockPlace", false},
};

const View* kind_of(NSView* view) {
    for (const View& kind : views) {
        if (is_of_gworkspace(view, kind.view_class)) return &kind;
    }
    return nullptr;
}

// Follows GWorkspace: the rest of an icon's frame is background.
bool is_on_icon(NSView* icon, NSEvent* event) {
    const id<GWRep> rep = (id<GWRep>)icon;
    const NSPoint point = [icon convertPoint:[event locationInWindow] fromView:nil];
    if ([icon mouse:point inRect:[rep iconBounds]]) return true;
    return [rep iconPosition] != NSImageOnly && [icon mouse:point inRect:[rep labelRect]];
}

id<GWRep> list_row(NSTableView* list, NSEvent* event) {
    const NSInteger row = [list rowAtPoint:[list convertPoint:[event locationInWindow]
                                                     fromView:nil]];
    NSArray* reps = [(id<GWContainer>)list reps];
    return row >= 0 && row < static_cast<NSInteger>([reps count]) ? [reps objectAtIndex:row] : nil;
}

id<GWRep> browser_cell(id<GWColumn> column, NSEvent* event) {
    NSMatrix* matrix = [column cmatrix];
    const NSPoint point = [matrix convertPoint:[event locationInWindow] fromView:nil];
    NSInteger row = 0, ignored = 0;
    if (![matrix mouse:point inRect:[matrix bounds]]) return nil;
    if (![matrix getRow:&row column:&ignored forPoint:point]) return nil;
    return (id<GWRep>)[matrix cellAtRow:row column:0];
}

FilePlace* place_in_browser(NSView* column, NSView* view, NSEvent* event) {
    id<GWRep> cell = browser_cell((id<GWColumn>)column, event);
    return [[[BrowserPlace alloc] initWithColumn:column view:view cell:cell] autorelease];
}

FilePlace* place_in(NSView* container, const View& kind, NSView* icon, NSView* view,
                    NSEvent* event) {
    id<GWRep> rep = (id<GWRep>)icon;
    if ([container isKindOfClass:[NSTableView class]]) {
        rep = list_row((NSTableView*)container, event);
    }
    if (!rep && !kind.has_ground) return nil;
    NSView<GWContainer>* viewer = (NSView<GWContainer>*)container;
    id<GWNode> node = rep ? [rep node] : [viewer shownNode];
    return [[[NSClassFromString([NSString stringWithUTF8String:kind.place_class]) alloc]
        initWithContainer:viewer
                     view:view
                      rep:rep
                     node:node] autorelease];
}

// A view of files may be smaller than its scroll view; a press beside it counts as a press on it.
NSView* scrolled_view(NSView* view) {
    if (![view isKindOfClass:[NSClipView class]]) return view;
    NSView* document = [(NSClipView*)view documentView];
    return kind_of(document) ? document : view;
}

bool has_menu_of_its_own(NSView* view) {
    return [view isKindOfClass:[NSText class]] || [view isKindOfClass:[NSTextField class]] ||
           [view isKindOfClass:[NSScroller class]];
}

}  // namespace

@implementation FilePlace

+ (FilePlace*)placeOfEvent:(NSEvent*)event inWindow:(NSWindow*)window {
    NSView* frame = [[window contentView] superview] ?: [window contentView];
    NSView* const hit = [frame hitTest:[event locationInWindow]];
    if (!hit || has_menu_of_its_own(hit)) return nil;
    NSView* icon = nil;
    for (NSView* each = hit; each; each = [each superview]) {
        NSView* view = scrolled_view(each);
        if (is_of_gworkspace(view, "FSNBrowserColumn")) return place_in_browser(view, hit, event);
        if (is_of_gworkspace(view, "FSNIcon") && is_on_icon(view, event)) icon = view;
        const View* kind = kind_of(view);
        FilePlace* place = kind ? place_in(view, *kind, icon, hit, event) : nil;
        if (place) return place;
    }
    return nil;
}

- (instancetype)initWithContainer:(NSView<GWContainer>*)container
                             view:(NSView*)view
                              rep:(id<GWRep>)rep
                             node:(id<GWNode>)node {
    if (!(self = [super init])) return nil;
    _container = [container retain];
    _view = [view retain];
    _rep = [rep retain];
    _node = [node retain];
    _nodes = node ? [[NSArray alloc] initWithObjects:node, nil] : [NSArray new];
    return self;
}

- (void)dealloc {
    [_container release];
    [_view release];
    [_rep release];
    [_node release];
    [_nodes release];
    [super dealloc];
}

- (FilePlaceKind)kind {
    return _rep ? FilePlaceItems : FilePlaceGround;
}

- (BOOL)isGround {
    return _rep == nil;
}

- (NSView*)view {
    return _view;
}

- (NSArray*)nodes {
    return _nodes;
}

- (void)setNodes:(NSArray*)nodes {
    if (nodes == _nodes) return;
    [_nodes release];
    _nodes = [nodes copy];
}

- (void)select {
    NSWindow* window = [_container window];
    if (![NSApp isActive]) [NSApp activateIgnoringOtherApps:YES];
    if ([window isKeyWindow]) return;
    if ([window level] == NSDesktopWindowLevel) {
        [window makeMainWindow];
        [window makeKeyWindow];
    } else {
        [window makeKeyAndOrderFront:nil];
    }
}

- (void)selectForCommand {
}

- (void)end {
}

- (void)tellSelection {
    if ([_nodes count] > 0) [shared_gworkspace() selectionChanged:_nodes];
}

// The menu of the pressed view, or of a view that contains it.
- (NSMenu*)ownMenuForEvent:(NSEvent*)event {
    for (NSView* view = _view; view; view = [view superview]) {
        if (NSMenu* menu = [view menuForEvent:event]) return menu;
        if (view == _container) break;
    }
    return nil;
}

- (BOOL)listsPrograms {
    return YES;
}

@end
