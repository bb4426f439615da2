// What GNUstep's menu items do not keep: attributed titles, views, and the target, action and title
// that an item had before it got a submenu.
#include <AppKit/AppKit.h>

#include <objc/runtime.h>

#include <unordered_map>

#include "look/image_questions.h"
#include "look/shared_strings.h"
#include "menu_classes/menu_item_array.h"
#include "menu_classes/menu_storage.h"
#include "objc/last_class.h"
#include "objc/method_patch.h"

namespace {

// Values that few items have. This run time has no associated objects, and an item has no room for
// them.
struct Extras {
    NSAttributedString* title;
    NSView* view;
};

std::unordered_map<NSMenuItem*, Extras>& all_extras() {
    static auto* extras = new std::unordered_map<NSMenuItem*, Extras>;
    return *extras;
}

Extras* find_extras(NSMenuItem* item) {
    if (all_extras().empty()) return nullptr;
    const auto found = all_extras().find(item);
    return found == all_extras().end() ? nullptr : &found->second;
}

void drop_extras(NSMenuItem* item) {
    Extras* extras = find_extras(item);
    if (!extras) return;
    const Extras dropped = *extras;
    all_extras().erase(item);
    [dropped.title release];
    [dropped.view release];
}

void set_extras(NSMenuItem* item, NSAttributedString* title, NSView* view) {
    [title retain];
    [view retain];
    drop_extras(item);
    if (title || view) all_extras()[item] = {title, view};
}

struct {
    IMP copy, update_key_equivalent, set_title, init_binding;
} stock_item;

// Whether any object of the process was ever bound to another one.
bool has_bindings;

id init_binding(id self, SEL selector, NSString* binding, NSString* name, id object, NSString* path,
                NSDictionary* options, id source) {
    has_bindings = true;
    return reinterpret_cast<decltype(&init_binding)>(stock_item.init_binding)(
        self, selector, binding, name, object, path, options, source);
}

void set_title(NSMenuItem* self, SEL selector, NSString* title) {
    reinterpret_cast<void (*)(id, SEL, id)>(stock_item.set_title)(self, selector,
                                                                  shared_string(title));
}

id copy_with_zone(NSMenuItem* self, SEL selector, NSZone* zone) {
    id copy = reinterpret_cast<id (*)(id, SEL, NSZone*)>(stock_item.copy)(self, selector, zone);
    const Extras* extras = find_extras(self);
    if (extras) set_extras(copy, extras->title, nil);
    return copy;
}

NSAttributedString* attributed_title(NSMenuItem* self, SEL) {
    const Extras* extras = find_extras(self);
    return extras ? extras->title : nil;
}

void set_attributed_title(NSMenuItem* self, SEL, NSAttributedString* title) {
    NSAttributedString* kept = [title copy];
    set_extras(self, kept, [self view]);
    [kept release];
    if (title) [self setTitle:[title string]];
    [[self menu] itemChanged:self];
}

}  // namespace

bool has_extras(NSMenuItem* item) { return find_extras(item) != nullptr; }

bool no_item_has_extras() { return all_extras().empty(); }

@interface MenuItemInstaller : NSObject
+ (void)watchDefaults;
@end

namespace {

// Whether the user defaults give any title a key. Looked up again only after the defaults have
// changed.
bool user_key_equivalents_known, has_user_key_equivalents;

bool user_gives_keys() {
    if (!user_key_equivalents_known) {
        [MenuItemInstaller watchDefaults];
        NSUserDefaults* defaults = [NSUserDefaults standardUserDefaults];
        has_user_key_equivalents = [defaults objectForKey:@"NSUserKeyEquivalents"] != nil;
        user_key_equivalents_known = true;
    }
    return has_user_key_equivalents;
}

void update_key_equivalent(NSMenuItem* self, SEL selector) {
    if (!user_gives_keys()) return;
    reinterpret_cast<void (*)(id, SEL)>(stock_item.update_key_equivalent)(self, selector);
}

// Whether the item takes titles and keys as all items do.
bool takes_texts_as_usual(NSMenuItem* item) {
    static const IMP stock_key =
        class_getMethodImplementation([NSMenuItem class], @selector(setKeyEquivalent:));
    static LastClass known;
    return known.fits(item, [&] {
        const Class owner = object_getClass(item);
        const IMP title = class_getMethodImplementation(owner, @selector(setTitle:));
        const IMP key = class_getMethodImplementation(owner, @selector(setKeyEquivalent:));
        return title == reinterpret_cast<IMP>(set_title) && key == stock_key;
    });
}

bool is_image(id object) {
    static const Class image_class = [NSImage class];
    static LastClass known;
    return known.fits(object, [&] { return [object isKindOfClass:image_class]; });
}

// A literal is never freed, so it is its own copy.
NSString* copy_of_key(NSString* key) {
    static const Class literal_class = object_getClass(@"");
    return object_getClass(key) == literal_class ? key : [key copy];
}

}  // namespace

@interface NSObject (KeyValueBinding)
+ (void)unbindAllForObject:(id)object;
@end

@implementation NSMenuItem (MacMenuItem)

- (void)deallocAsPlainObject {
    [super dealloc];
}

// Sets the fields without messages, which would tell the item's menu: a new item is in no menu.
void give_title_and_key(NSMenuItem* self, NSString* title, NSString* key) {
    if (!title || !key || user_gives_keys() || !takes_texts_as_usual(self)) {
        [self setKeyEquivalent:key];
        [self setTitle:title];
        return;
    }
    self->_keyEquivalent = copy_of_key(key);
    self->_title = copy_of_shared_string(title);
}

static void set_image(NSMenuItem* self, SEL, NSImage* image) {
    NSImage* const kept = [image imageForMenuItem];
    if (kept && !is_image(kept)) {
        [NSException raise:NSInvalidArgumentException format:@"%@ is no image", kept];
    }
    NSImage* const previous = self->_image;
    self->_image = [kept retain];
    [previous release];
    if (self->_menu) [self->_menu itemChanged:self];
}

// Does what GNUstep's own method does, which looks up a class by its name for each item, and the
// item in a table that is empty in nearly all programs.
static void deallocate(NSMenuItem* self, SEL) {
    static const Class bindings = NSClassFromString(@"GSKeyValueBinding");
    drop_extras(self);
    if (has_bindings || !stock_item.init_binding) [bindings unbindAllForObject:self];
    const id owned[] = {self->_title,        self->_keyEquivalent, self->_image,
                        self->_onStateImage, self->_offStateImage, self->_mixedStateImage,
                        self->_submenu,      self->_toolTip,       self->_representedObject};
    for (const id object : owned) {
        if (object) [object release];
    }
    [self deallocAsPlainObject];
}

- (NSMenuItem*)parentItem {
    NSMenu* menu = [self menu];
    return item_with_submenu([[menu supermenu] itemArray], menu);
}

- (void)setView:(NSView*)view {
    set_extras(self, [self attributedTitle], view);
    [[self menu] itemChanged:self];
}

- (NSView*)view {
    const Extras* extras = find_extras(self);
    return extras ? extras->view : nil;
}

- (BOOL)isHighlighted {
    return [[self menu] highlightedItem] == self;
}

// Gives an item with a submenu and no action of its own the action by which GNUstep enables such
// items.
static void adopt_submenu_action(NSMenuItem* self) {
    const BOOL borrowed = self->_action && sel_isEqual(self->_action, @selector(submenuAction:));
    if (!self->_submenu) {
        if (!borrowed) return;
        self->_action = nullptr;
        self->_target = nil;
    } else if (!self->_action || borrowed) {
        self->_action = @selector(submenuAction:);
        self->_target = self->_menu;
    }
}

static void set_menu(NSMenuItem* self, SEL, NSMenu* menu) {
    self->_menu = menu;  // it retains us
    if (!self->_submenu) return;
    [self->_submenu setSupermenu:menu];
    adopt_submenu_action(self);
}

static void set_submenu(NSMenuItem* self, SEL, NSMenu* submenu) {
    NSMenu* previous = self->_submenu;
    if (submenu == previous) return;
    if ([submenu supermenu]) {
        [NSException raise:NSInvalidArgumentException
                    format:@"submenu (%@) already has supermenu (%@)", [submenu title],
                           [[submenu supermenu] title]];
    }
    self->_submenu = [submenu retain];
    if (previous) {
        [previous setSupermenu:nil];
        [previous release];
    }
    [submenu setSupermenu:self->_menu];
    static NSProcessInfo* const process = [NSProcessInfo processInfo];
    // A menu made by -init has the program's name as its title, and takes the item's title here.
    // Other menus keep their titles.
    if (submenu && [submenu title] == [process processName]) {
        [submenu setTitle:self->_title];
    }
    adopt_submenu_action(self);
    if (self->_menu) [self->_menu itemChanged:self];
}

@end

@implementation MenuItemInstaller

+ (void)watchDefaults {
    static BOOL watching;
    if (watching) return;
    watching = YES;
    [[NSNotificationCenter defaultCenter] addObserver:self
                                             selector:@selector(defaultsDidChange:)
                                                 name:NSUserDefaultsDidChangeNotification
                                               object:nil];
}

+ (void)defaultsDidChange:(NSNotification*)notification {
    (void)notification;
    user_key_equivalents_known = false;
}

+ (void)load {
    const MethodPatch patches[] = {
        {"NSMenuItem", "dealloc", reinterpret_cast<IMP>(deallocate), nullptr},
        {"NSMenuItem", "setTitle:", reinterpret_cast<IMP>(set_title), &stock_item.set_title},
        {"NSMenuItem", "setImage:", reinterpret_cast<IMP>(set_image), nullptr},
        {"NSMenuItem", "copyWithZone:", reinterpret_cast<IMP>(copy_with_zone), &stock_item.copy},
        {"NSMenuItem", "attributedTitle", reinterpret_cast<IMP>(attributed_title), nullptr},
        {"NSMenuItem", "setAttributedTitle:", reinterpret_cast<IMP>(set_attributed_title), nullptr},
        {"NSMenuItem", "setMenu:", reinterpret_cast<IMP>(set_menu), nullptr},
        {"NSMenuItem", "setSubmenu:", reinterpret_cast<IMP>(set_submenu), nullptr},
        {"NSMenuItem", "_updateKeyEquivalent", reinterpret_cast<IMP>(update_key_equivalent),
         &stock_item.update_key_equivalent},
        {"GSKeyValueBinding", "initWithBinding:withName:toObject:withKeyPath:options:fromObject:",
         reinterpret_cast<IMP>(init_binding), &stock_item.init_binding},
    };
    patch_methods(patches);
}

@end
