// Leads every call that pops up a contextual menu to one place: the Mac's private instance method,
// which runs a session with the process's tracker.
#include <host/memory_reserve.h>
#include <host/menu_tracking.h>
#include <GNUstepGUI/GSTheme.h>
#include <objc/runtime.h>

#include "menu_classes/menu_item_array.h"
#include "menu_classes/menu_storage.h"
#include "menus/menu_items.h"
#include "menu_classes/menu_memory.h"
#include "menus/menu_presenter.h"
#include "menus/menu_session.h"
#include "objc/method_patch.h"

namespace {

id<MenuTracker> chosen_tracker;

void run_popup(NSMenu* menu, NSEvent* event, NSView* view, NSFont* font) {
    if (!menu) return;
    keep_memory_reserve();
    memory_was_short();  // before this menu
    MenuSession* session = [[[MenuSession alloc] initWithMenu:menu] autorelease];
    id<MenuTracker> tracker = chosen_tracker ?: [MenuPresenter sharedPresenter];
    @try {
        [tracker trackSession:session event:event view:view font:font ?: [menu font]];
    } @finally {
        [session close];
        give_memory_back_soon();
    }
    [session performPick];
    keep_memory_reserve();
}

void class_popup_with_font(id, SEL, NSMenu* menu, NSEvent* event, NSView* view, NSFont* font) {
    [menu _popUpContextMenu:menu withEvent:event forView:view withFont:font];
}

void class_popup(id, SEL, NSMenu* menu, NSEvent* event, NSView* view) {
    [menu _popUpContextMenu:menu withEvent:event forView:view withFont:nil];
}

// Themes may show a menu without the class popups.
void theme_popup(id, SEL, NSMenu* menu, NSEvent* event) {
    [menu _popUpContextMenu:menu withEvent:event forView:nil withFont:nil];
}

// Pops up the main menu after a right click that nobody handled. It is no file's contextual menu,
// so it bypasses the methods where plug-ins look for one.
void unhandled_right_click(id application, SEL, NSEvent* event) {
    run_popup([application mainMenu], event, nil, nil);
}

}  // namespace

NSEvent* right_click_event(NSPoint at, NSUInteger modifiers) {
    return [NSEvent mouseEventWithType:NSRightMouseDown
                              location:at
                         modifierFlags:modifiers
                             timestamp:0
                          windowNumber:0
                               context:nil
                           eventNumber:0
                            clickCount:1
                              pressure:1];
}

@implementation NSMenu (MenuTracking)

+ (void)setContextMenuTracker:(id<MenuTracker>)tracker {
    chosen_tracker = tracker;
}

+ (void)setHeadingQuestion:(BOOL (*)(NSMenuItem*))question {
    set_heading_question(question);
}

+ (void)setMarkQuestion:(MenuMark (*)(NSMenuItem*))question {
    set_mark_question(question);
}

+ (void)setEscapeQuestion:(BOOL (*)())question {
    set_escape_question(question);
}

- (NSMenuItem*)glanceAtItemAtIndex:(NSInteger)index {
    return glance_at_item([self itemArray], static_cast<NSUInteger>(index));
}

- (BOOL)readAlternate:(AlternateFields*)fields atIndex:(NSInteger)index {
    return read_packed_item([self itemArray], static_cast<NSUInteger>(index), fields);
}

- (BOOL)hasItemWithView {
    if (no_item_has_extras()) return NO;
    NSArray* const items = [self itemArray];
    for (NSUInteger i = 0; i < count_of_items(items); i++) {
        if ([glance_at_item(items, i) view]) return YES;
    }
    return NO;
}

- (void)_popUpContextMenu:(NSMenu*)menu
                withEvent:(NSEvent*)event
                  forView:(NSView*)view
                 withFont:(NSFont*)font {
    run_popup(menu, event, view, font);
}

@end

@interface MenuHookInstaller : NSObject
@end

@implementation MenuHookInstaller

+ (void)load {
    static const MethodPatch patches[] = {
        {"NSMenu", "popUpContextMenu:withEvent:forView:withFont:",
         reinterpret_cast<IMP>(class_popup_with_font), nullptr, true},
        {"NSMenu", "popUpContextMenu:withEvent:forView:", reinterpret_cast<IMP>(class_popup),
         nullptr, true},
        {"GSTheme", "rightMouseDisplay:forEvent:", reinterpret_cast<IMP>(theme_popup), nullptr},
        {"NSApplication", "rightMouseDown:", reinterpret_cast<IMP>(unhandled_right_click), nullptr},
    };
    patch_methods(patches);
}

@end
