#include <AppKit/AppKit.h>
#include <GNUstepGUI/GSDisplayServer.h>

#include <dlfcn.h>
#include <malloc.h>
#include <objc/runtime.h>

#include <map>
#include <sstream>

#include "gworkspace/probe_questions.h"
#include "gworkspace/probe_stack.h"
#include "gworkspace/settled_windows.h"

// GWorkspace's own classes, by name.
@interface NSObject (ProbedGWorkspace)
- (void)initializeMouse;
+ (id)gworkspace;
+ (id)desktopManager;
+ (id)nodeWithPath:(NSString*)path;
- (NSArray*)selectedPaths;
- (NSArray*)reps;
- (id)node;
- (NSArray*)selection;
- (NSString*)path;
- (NSRect)iconBounds;
- (NSMatrix*)cmatrix;
- (id)shelf;
- (id)addIconForNode:(id)node atIndex:(NSInteger)index;
- (void)setViewerType:(id)sender;
- (void)newViewerAtPath:(NSString*)path;
- (id)lastLoadedColumn;
- (id)nodeView;
- (id)desktopView;
- (id)baseNode;
- (void)showContentsOfNode:(id)node;
- (void)tile;
@end

namespace {

std::string text_of(NSString* string) { return [string UTF8String] ?: ""; }

std::string lines_of(NSArray* strings) {
    std::string text;
    for (NSString* string in strings) text += text_of(string) + "\n";
    return text;
}

// The first view of a class in a tree of views.
NSView* find_view(NSView* view, Class wanted) {
    if ([view isKindOfClass:wanted]) return view;
    for (NSView* each in [view subviews]) {
        if (NSView* found = find_view(each, wanted)) return found;
    }
    return nil;
}

NSView* find_shown_view(const char* class_name) {
    Class wanted = objc_lookUpClass(class_name);
    // The front window first.
    for (NSWindow* window in [NSApp orderedWindows]) {
        NSView* found = [window isVisible] ? find_view([window contentView], wanted) : nil;
        if (found) return found;
    }
    for (NSWindow* window in [NSApp windows]) {
        NSView* found = [window isVisible] ? find_view([window contentView], wanted) : nil;
        if (found) return found;
    }
    return nil;
}

NSView* view_of(const std::string& kind) {
    static const std::map<std::string, const char*> classes = {
        {"browser", "GWViewerBrowser"},
        {"icons", "GWViewerIconsView"},
        {"list", "GWViewerListView"},
        {"path", "GWViewerIconsPath"},
        {"shelf", "GWViewerShelf"},
        {"desktop", "GWDesktopView"},
        {"dock", "Dock"},
        {"popup", "NSPopUpButton"},
    };
    const auto found = classes.find(kind);
    return found == classes.end() ? nil : find_shown_view(found->second);
}

std::string area_of(NSView* view, NSRect rect) {
    const NSRect shown = NSIntersectionRect(rect, [view visibleRect]);
    if (NSIsEmptyRect(shown) || !is_settled([view window])) return "";
    const NSRect area = [view convertRect:shown toView:nil];
    const NSPoint corner = [[view window] convertBaseToScreen:area.origin];
    const double top = NSHeight([[NSScreen mainScreen] frame]) - corner.y - NSHeight(area);
    std::ostringstream text;
    text << static_cast<int>(corner.x) << " " << static_cast<int>(top) << " "
         << static_cast<int>(NSWidth(area)) << " " << static_cast<int>(NSHeight(area)) << "\n";
    return text.str();
}

bool stands_for(id rep, NSString* path) {
    if ([[[rep node] path] isEqualToString:path]) return true;
    for (id node in [rep respondsToSelector:@selector(selection)] ? [rep selection] : nil) {
        if ([[node path] isEqualToString:path]) return true;
    }
    return false;
}

std::string cell_area(NSView* browser, NSString* path) {
    for (NSView* column in [browser subviews]) {
        if (![column respondsToSelector:@selector(cmatrix)]) continue;
        NSMatrix* matrix = [column cmatrix];
        for (NSInteger row = 0; row < [matrix numberOfRows]; row++) {
            if (!stands_for([matrix cellAtRow:row column:0], path)) continue;
            const std::string area = area_of(matrix, [matrix cellFrameAtRow:row column:0]);
            if (!area.empty()) return area;
        }
    }
    return "";
}

std::string row_area(NSTableView* list, NSString* path) {
    NSArray* reps = [list reps];
    for (NSUInteger row = 0; row < [reps count]; row++) {
        if (stands_for([reps objectAtIndex:row], path)) return area_of(list, [list rectOfRow:row]);
    }
    return "";
}

NSView* icon_for(NSView* view, NSString* path) {
    for (NSView* icon in [view subviews]) {
        if ([icon respondsToSelector:@selector(iconBounds)] && stands_for(icon, path)) return icon;
    }
    return nil;
}

std::string icon_area(NSView* view, NSString* path) {
    NSView* icon = icon_for(view, path);
    return icon ? area_of(icon, [icon iconBounds]) : "";
}

std::string item_area(const std::string& kind, NSString* path) {
    NSView* view = view_of(kind);
    if (!view) return "";
    if (kind == "browser") return cell_area(view, path);
    if (kind == "list") return row_area((NSTableView*)view, path);
    return icon_area(view, path);
}

// Below the last cell, row or icon, or the view's lower right corner.
std::string ground_area(const std::string& kind) {
    NSView* view = view_of(kind);
    if (kind == "browser") {
        NSMatrix* matrix = [[view lastLoadedColumn] cmatrix];
        NSView* clip = [matrix superview];
        NSRect rect = [clip bounds];
        rect.origin.y = NSMaxY([matrix frame]) + 4;
        rect.size.height = NSMaxY([clip bounds]) - NSMinY(rect);
        return area_of(clip, rect);
    }
    NSRect rect = [view visibleRect];
    if (kind == "list") {
        const CGFloat end = NSMaxY([(NSTableView*)view rectOfRow:[[view reps] count] - 1]) + 4;
        NSView* clip = [view superview];
        rect = [clip bounds];
        rect.size.height = NSMaxY(rect) - end;
        rect.origin.y = end;
        return area_of(clip, rect);
    }
    const CGFloat left = NSMaxX(rect) - (kind == "desktop" ? 300 : 12);
    const CGFloat low = [view isFlipped] ? NSMaxY(rect) - 12 : NSMinY(rect) + 4;
    return area_of(view, NSMakeRect(left, low, 8, 8));
}

bool is_drag_target(NSView* view) {
    if (!view) return false;
    Ivar variable = class_getInstanceVariable([view class], "isDragTarget");
    if (!variable) return false;
    return *(reinterpret_cast<const BOOL*>(view) + ivar_getOffset(variable));
}

std::string window_titles() {
    std::string text;
    for (NSWindow* window in [NSApp windows]) {
        if ([window isVisible]) text += text_of([window title]) + "\n";
    }
    return text;
}

size_t count_stock_menus() {
    size_t count = 0;
    for (NSWindow* window in [NSApp windows]) {
        if ([window isVisible] && [window isKindOfClass:NSClassFromString(@"NSMenuPanel")]) ++count;
    }
    return count;
}

void close_window(const std::string& title) {
    for (NSWindow* window in [NSArray arrayWithArray:[NSApp windows]]) {
        if ([window isVisible] && text_of([window title]) == title) [window performClose:nil];
    }
}

void add_texts(NSView* view, std::string* text) {
    if ([view isKindOfClass:[NSTextField class]]) {
        *text += text_of([(NSTextField*)view stringValue]) + "\n";
    }
    for (NSView* each in [view subviews]) add_texts(each, text);
}

std::string alert_text() {
    std::string text;
    if (NSWindow* panel = [NSApp modalWindow]) add_texts([panel contentView], &text);
    return text;
}

NSWindow* viewer_window() {
    for (NSWindow* window in [NSApp windows]) {
        if ([window isVisible] && [window respondsToSelector:@selector(setViewerType:)])
            return window;
    }
    return nil;
}

void show_as(const std::string& kind) {
    static const std::map<std::string, int> types = {{"browser", 1}, {"icons", 2}, {"list", 3}};
    NSMenuItem* item = [[[NSMenuItem alloc] initWithTitle:@"" action:NULL
                                            keyEquivalent:@""] autorelease];
    [item setTag:types.at(kind)];
    NSWindow* window = viewer_window();
    [window setViewerType:item];
    id view = [(id)[window delegate] nodeView];
    [view showContentsOfNode:[(id)[window delegate] baseNode]];
}

void set_frame(const std::string& words) {
    double left = 0, low = 0, width = 0, height = 0;
    std::istringstream(words) >> left >> low >> width >> height;
    [NSApp activateIgnoringOtherApps:YES];
    [viewer_window() setFrame:NSMakeRect(left, low, width, height) display:YES];
    [viewer_window() makeKeyAndOrderFront:nil];
}

void shelve(NSString* path) {
    NSView* shelf = view_of("shelf");
    [shelf addIconForNode:[NSClassFromString(@"FSNode") nodeWithPath:path] atIndex:2];
    [shelf tile];
    [shelf setNeedsDisplay:YES];
}

std::string allocated() {
    const struct mallinfo2 info = mallinfo2();
    return std::to_string(info.uordblks + info.hblkhd) + "\n";
}

NSString* string_of(const std::string& text) {
    return [NSString stringWithUTF8String:text.c_str()];
}

// What the desktop's window said that it was when it first appeared.
std::string type_of_shown_desktop() {
    using Type = const char* (*)(unsigned long);
    const auto type = reinterpret_cast<Type>(dlsym(RTLD_DEFAULT, "type_when_shown"));
    NSWindow* desktop = [view_of("desktop") window];
    return type ? type(reinterpret_cast<unsigned long>([desktop windowRef])) : "";
}

}  // namespace

bool answer_about_views(const std::string& question, const std::string& words,
                        std::string* answer) {
    const size_t blank = words.find(' ');
    const std::string kind = words.substr(0, blank);
    NSString* path = string_of(blank == std::string::npos ? words : words.substr(blank + 1));
    id workspace = [NSClassFromString(@"GWorkspace") gworkspace];
    if (question == "selection") {
        *answer = lines_of([workspace selectedPaths]);
    } else if (question == "desktop_type") {
        *answer = type_of_shown_desktop();
    } else if (question == "selected") {
        *answer = lines_of([view_of(kind) selectedPaths]);
    } else if (question == "item") {
        *answer = item_area(kind, path);
    } else if (question == "ground") {
        *answer = ground_area(kind);
    } else if (question == "bounds") {
        NSView* view = view_of(kind);
        *answer = view ? area_of(view, [view visibleRect]) : "";
    } else if (question == "target") {
        NSView* view = view_of(kind);
        *answer =
            is_drag_target(blank == std::string::npos ? view : icon_for(view, path)) ? "yes" : "";
    } else if (question == "clipboard") {
        NSPasteboard* board = [NSPasteboard generalPasteboard];
        *answer = lines_of([board propertyListForType:NSFilenamesPboardType]);
    } else if (question == "windows") {
        *answer = window_titles();
    } else if (question == "stock") {
        *answer = std::to_string(count_stock_menus());
    } else if (question == "show") {
        show_as(kind);
    } else if (question == "frame") {
        set_frame(words);
    } else if (question == "shelve") {
        shelve(path);
    } else if (question == "close") {
        close_window(words);
    } else if (question == "open") {
        [workspace newViewerAtPath:path];
    } else if (question == "alert") {
        *answer = alert_text();
    } else if (question == "alert_ground") {
        NSWindow* panel = [NSApp modalWindow];
        if (panel && is_settled(panel)) {
            *answer = area_of([panel contentView], NSMakeRect(2, 2, 4, 4));
        }
    } else if (question == "question") {
        NSWindow* panel = [NSApp modalWindow];
        if (panel && keyboard_is_in(panel)) *answer = alert_text();
    } else if (question == "covering") {
        for (NSWindow* window in [NSApp windows]) {
            if (stands_over(window, [NSApp modalWindow])) *answer += text_of([window title]) + "\n";
        }
    } else if (question == "set_mouse_up") {
        [GSCurrentServer() initializeMouse];
    } else if (question == "idle") {
        *answer = [NSApp modalWindow] ? "" : "yes";
    } else if (question == "take_at_start") {
        take_name_at_start(words);
    } else if (question == "quit") {
        [NSApp performSelector:@selector(terminate:) withObject:nil afterDelay:0];
    } else if (question == "doing") {
        *answer = methods_in_progress();
    } else if (question == "memory") {
        *answer = allocated();
    } else {
        return false;
    }
    return true;
}
