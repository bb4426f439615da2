#include "popup/menu_walker.h"

#include <host/text.h>
#include <host/modifier_keys.h>

#include <stdio.h>
#include <unistd.h>

#include <unordered_set>

#include "command/title_match.h"
#include "file_steps/visible_text.h"

using operations::in_quotes;

namespace {

// Once it is the turn of a thumbnail, it takes at most half a minute.
constexpr NSTimeInterval seconds_to_make = 60, seconds_a_turn = 0.1;

// A pool for each row would take as long as reading it.
constexpr NSInteger rows_a_pool = 64;

NSArray* shown_items(NSMenu* menu) {
    return [MenuSession visibleItemsOfMenu:menu withModifiers:current_modifier_flags()];
}

using ItemSet = std::unordered_set<NSMenuItem*>;

ItemSet with_submenus(NSArray* items) {
    ItemSet found;
    for (NSMenuItem* item in items) {
        if ([item hasSubmenu]) found.insert(item);
    }
    return found;
}

// A row shows a view while its content, such as a picture, is still being made.
bool is_being_made(NSArray* rows) {
    for (NSMenuItem* item in rows) {
        if ([item view]) return true;
    }
    return false;
}

// Waits until all rows are made.
void wait_for_rows(NSMenu* menu) {
    NSDate* end = [NSDate dateWithTimeIntervalSinceNow:seconds_to_make];
    while ([menu hasItemWithView]) {
        if (!is_being_made(shown_items(menu)) || [end timeIntervalSinceNow] <= 0) return;
        NSDate* turn = [NSDate dateWithTimeIntervalSinceNow:seconds_a_turn];
        [[NSRunLoop currentRunLoop] runMode:NSEventTrackingRunLoopMode beforeDate:turn];
    }
}

long resident_bytes() {
    long pages = 0;
    FILE* const file = fopen("/proc/self/statm", "re");
    if (!file) return 0;
    // NOLINTNEXTLINE(cert-err34-c): the numbers are the kernel's.
    if (fscanf(file, "%*ld %ld", &pages) != 1) pages = 0;
    fclose(file);
    return pages * sysconf(_SC_PAGESIZE);
}

// Why the item with the last title cannot be picked; empty when it can.
std::string why_not_picked(NSMenuItem* item, const std::string& title) {
    if (![item isEnabled]) return translated("%s is disabled", {in_quotes(title)});
    if (![MenuSession canPickItem:item]) {
        return translated("%s only opens a submenu; name one of its items with another --pick",
                          {in_quotes(title)});
    }
    return {};
}

// The only alternate item with exactly this title; nil when there is none or several.
NSMenuItem* find_alternate(NSMenu* menu, const std::string& title) {
    NSMenuItem* found = nil;
    for (NSMenuItem* item in [menu itemArray]) {
        if (![item isAlternate] || utf8_text([item title]) != title) continue;
        if (found) return nil;
        found = item;
    }
    return found;
}

}  // namespace

NSMenuItem* find_visible_item(NSMenu* menu, const std::string& title, std::string* problem) {
    NSMutableArray* items = [NSMutableArray array];
    std::vector<std::string> titles;
    for (NSMenuItem* item in shown_items(menu)) {
        if ([item isSeparatorItem]) continue;
        [items addObject:item];
        titles.push_back(utf8_text([item title]));
    }
    const int index = match_title(title, titles, problem);
    return index < 0 ? nil : [items objectAtIndex:index];
}

bool open_by_titles(MenuSession* session, const std::vector<std::string>& titles, NSMenu** last,
                    std::string* problem) {
    *last = [session rootMenu];
    for (const std::string& title : titles) {
        NSMenuItem* item = find_visible_item(*last, title, problem);
        if (!item) return false;
        if (![session openSubmenuOfItem:item]) {
            *problem = translated([item hasSubmenu] ? to_translate("%s cannot be opened")
                                                    : to_translate("%s has no submenu"),
                                  {in_quotes(title)});
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

- (instancetype)initWithDepth:(int)depth writer:(MenuWriter*)writer details:(BOOL)details {
    if (!(self = [super init])) return nil;
    _depth = depth;
    _writer = writer;
    _items = new ItemReader(details);
    return self;
}

- (void)dealloc {
    delete _items;
    [super dealloc];
}

- (std::string)problem {
    if (_leftClosed == 0) return {};
    return translated_count(
        "the menu is too large to be written as a whole: %s submenu was not opened; "
        "a smaller --depth opens all that it covers",
        "the menu is too large to be written as a whole: %s submenus were not opened; "
        "a smaller --depth opens all that it covers",
        static_cast<unsigned long>(_leftClosed), {std::to_string(_leftClosed)});
}

- (void)walk:(MenuSession*)session {
    [self readMenu:[session rootMenu] ofSession:session level:0];
}

// Whether another submenu may be opened; counts the submenus that may not.
- (BOOL)hasRoomAtLevel:(int)level {
    const bool room =
        _rows < most_read_rows && level < most_read_levels && resident_bytes() < most_read_bytes;
    if (!room) _leftClosed++;
    return room;
}

// Keeps the menu's items after it has closed. The command ends soon, and freeing a large level item
// by item would take a tenth of its time.
static void keep_until_end(NSMenu* menu) {
    static NSMutableArray* const kept = [NSMutableArray new];
    [kept addObject:menu];
}

- (void)readSubmenu:(NSMenu*)submenu ofSession:(MenuSession*)session level:(int)level {
    keep_until_end(submenu);
    wait_for_rows(submenu);
    [self readMenu:submenu ofSession:session level:level];
    _writer->end_submenu();
}

static NSMenuItem* item_to_open(NSMenu* menu, NSInteger index, const ItemSet& openable) {
    if (openable.empty()) return nil;
    NSMenuItem* const item = [menu glanceAtItemAtIndex:index];
    return openable.contains(item) ? item : nil;
}

// Reads an open level, and the levels below it down to the depth. Items that only other modifier
// keys would show are listed, but not opened.
- (void)readMenu:(NSMenu*)menu ofSession:(MenuSession*)session level:(int)level {
    const ItemSet openable = level < _depth ? with_submenus(shown_items(menu)) : ItemSet();
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    NSInteger count = [menu numberOfItems];
    for (NSInteger i = 0; i < count; i++) {
        if (i % rows_a_pool == 0) {
            [pool release];
            pool = [NSAutoreleasePool new];
        }
        const ItemSnapshot& snapshot = _items->read(menu, i);
        NSMenuItem* const item = item_to_open(menu, i, openable);
        const BOOL is_opened =
            item && [self hasRoomAtLevel:level] && [session openSubmenuOfItem:item];
        _writer->add(snapshot, is_opened);
        if (is_opened) {
            [self readSubmenu:[item submenu] ofSession:session level:level + 1];
            [session closeLevelsBelowMenu:menu];
            count = [menu numberOfItems];  // what was opened may have changed the menu
        }
        _rows++;
    }
    [pool release];
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
    if (open_by_titles(session, way, &menu, _problem)) [self pickIn:menu session:session];
}

- (void)pickIn:(NSMenu*)menu session:(MenuSession*)session {
    const std::string& title = _titles->back();
    NSMenuItem* item = find_visible_item(menu, title, _problem);
    if (!item && (item = find_alternate(menu, title))) {
        // The item's modifier keys are pressed for this pick alone.
        set_held_modifier_flags([item keyEquivalentModifierMask]);
    }
    if (!item) return;
    *_problem = why_not_picked(item, title);
    if (!_problem->empty()) return;
    [session highlightItem:item inMenu:menu];
    [session pickItem:item];
}

@end
