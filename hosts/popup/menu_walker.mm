#include "popup/menu_walker.h"

#include <AppKit/ModifierKeys.h>

#include "popup/close_words.h"
#include "popup/menu_reading.h"
#include "popup/title_match.h"

namespace {

// Reads an open level, and the levels below it as far as `depth` goes. What other keys would show
// is listed, but not opened.
MenuSnapshot read_level(MenuSession* session, NSMenu* menu, int depth) {
    MenuSnapshot level;
    NSArray* shown = [MenuSession visibleItemsOfMenu:menu withModifiers:CurrentModifierFlags()];
    NSSet* openable = [NSSet setWithArray:shown];
    for (NSMenuItem* item in [NSArray arrayWithArray:[menu itemArray]]) {
        NSAutoreleasePool* pool = [NSAutoreleasePool new];
        ItemSnapshot snapshot = ReadItem(item);
        if (depth > 0 && [openable containsObject:item] && [session openSubmenuOfItem:item]) {
            snapshot.populated = true;
            snapshot.items = read_level(session, [item submenu], depth - 1);
            [session closeLevelsBelowMenu:menu];
        }
        level.push_back(std::move(snapshot));
        [pool release];
    }
    return level;
}

// Of the last title: why the item cannot be picked; empty when it can.
std::string why_not_picked(NSMenuItem* item, const std::string& title) {
    if (![item isEnabled]) return Quoted(title) + " is disabled";
    if (![MenuSession canPickItem:item]) {
        return Quoted(title) + " only opens a submenu; name one of its items with another --pick";
    }
    return {};
}

// The one alternate of this very title; nil when there is none or several.
NSMenuItem* find_alternate(NSMenu* menu, const std::string& title) {
    NSMenuItem* found = nil;
    for (NSMenuItem* item in [menu itemArray]) {
        if (![item isAlternate] || TextOf([item title]) != title) continue;
        if (found) return nil;
        found = item;
    }
    return found;
}

}  // namespace

NSMenuItem* FindVisibleItem(NSMenu* menu, const std::string& title, std::string* problem) {
    NSMutableArray* items = [NSMutableArray array];
    std::vector<std::string> titles;
    for (NSMenuItem* item in [MenuSession visibleItemsOfMenu:menu
                                               withModifiers:CurrentModifierFlags()]) {
        if ([item isSeparatorItem]) continue;
        [items addObject:item];
        titles.push_back(TextOf([item title]));
    }
    const int index = MatchTitle(title, titles, problem);
    return index < 0 ? nil : [items objectAtIndex:index];
}

bool OpenByTitles(MenuSession* session, const std::vector<std::string>& titles, NSMenu** last,
                  std::string* problem) {
    *last = [session rootMenu];
    for (const std::string& title : titles) {
        NSMenuItem* item = FindVisibleItem(*last, title, problem);
        if (!item) return false;
        if (![session openSubmenuOfItem:item]) {
            *problem =
                Quoted(title) + ([item hasSubmenu] ? " cannot be opened" : " has no submenu");
            return false;
        }
        *last = [item submenu];
    }
    return true;
}

@implementation MenuWalker

- (void)trackSession:(MenuSession*)session
               event:(NSEvent*)event
                view:(NSView*)view
                font:(NSFont*)font {
    (void)event, (void)view, (void)font;
    [session open];
    [self walk:session];
    [session close];
}

- (void)walk:(MenuSession*)session {
    (void)session;
}

@end

@implementation MenuReader

- (instancetype)initWithDepth:(int)depth {
    if (!(self = [super init])) return nil;
    _depth = depth;
    _snapshot = new MenuSnapshot;
    return self;
}

- (void)dealloc {
    delete _snapshot;
    [super dealloc];
}

- (const MenuSnapshot&)snapshot {
    return *_snapshot;
}

- (void)walk:(MenuSession*)session {
    *_snapshot = read_level(session, [session rootMenu], _depth);
}

@end

@implementation MenuPicker

- (instancetype)initWithTitles:(const std::vector<std::string>&)titles {
    if (!(self = [super init])) return nil;
    _titles = new std::vector<std::string>(titles);
    _problem = new std::string;
    return self;
}

- (void)dealloc {
    delete _titles;
    delete _problem;
    [super dealloc];
}

- (const std::string&)problem {
    return *_problem;
}

- (void)walk:(MenuSession*)session {
    const std::vector<std::string> way(_titles->begin(), _titles->end() - 1);
    NSMenu* menu = nil;
    if (OpenByTitles(session, way, &menu, _problem)) [self pickIn:menu session:session];
}

- (void)pickIn:(NSMenu*)menu session:(MenuSession*)session {
    const std::string& title = _titles->back();
    NSMenuItem* item = FindVisibleItem(menu, title, _problem);
    if (!item && (item = find_alternate(menu, title))) {
        // Its keys are pressed for the pick alone.
        SetHeldModifierFlags([item keyEquivalentModifierMask]);
    }
    if (!item) return;
    *_problem = why_not_picked(item, title);
    if (!_problem->empty()) return;
    [session highlightItem:item inMenu:menu];
    [session pickItem:item];
}

@end
