#include <AppKit/AppKit.h>
#include <gtest/gtest.h>
#include <objc/runtime.h>

#include <algorithm>
#include <string>
#include <vector>

#include "counted_lookups.h"
#include "objc/method_patch.h"
#include "support/app.h"

static std::string trail;

// A class like a host's menu class: it overrides a method of NSMenu.
@interface HostMenu : NSMenu
@end
@implementation HostMenu
- (void)removeAllItems {
    trail += "host ";
    [super removeAllItems];
}
@end
@interface HostSubmenu : HostMenu
@end
@implementation HostSubmenu
@end

// Plug-in code, found through NSMenu; after the exchange its own name is the host's method.
@interface NSMenu (RuntimeTest)
- (void)testRemoveAllItems;
@end
@implementation NSMenu (RuntimeTest)
- (void)testRemoveAllItems {
    trail += "plugin ";
    if (trail.size() > 200) return;
    [self testRemoveAllItems];
}
@end

@interface RuntimeBase : NSObject
+ (int)number;
- (int)first;
- (int)second;
@end
@implementation RuntimeBase
+ (int)number {
    return 1;
}
- (int)first {
    return 1;
}
- (int)second {
    return 2;
}
@end
@interface RuntimeChild : RuntimeBase
+ (int)otherNumber;
@end
@implementation RuntimeChild
+ (int)otherNumber {
    return 2;
}
@end

// Nothing uses these classes before their methods are replaced.
static int initialized_classes = 0;
@interface UnusedClass : NSObject
+ (int)unusedNumber;
@end
@implementation UnusedClass
+ (void)initialize {
    initialized_classes++;
}
+ (int)unusedNumber {
    return 1;
}
@end
@interface OtherUnusedClass : NSObject
+ (int)unusedNumber;
@end
@implementation OtherUnusedClass
+ (void)initialize {
    initialized_classes++;
}
+ (int)unusedNumber {
    return 2;
}
@end

namespace {

int replaced_number(id, SEL) { return 10 + initialized_classes; }

std::string removal_of(Class menu_class) {
    trail.clear();
    NSMenu* menu = [[menu_class alloc] initWithTitle:@"x"];
    [menu addItemWithTitle:@"item" action:NULL keyEquivalent:@""];
    [menu removeAllItems];
    if ([menu numberOfItems]) trail += "items left";
    [menu release];
    return trail;
}

void exchange() {
    method_exchangeImplementations(
        class_getInstanceMethod([HostMenu class], @selector(removeAllItems)),
        class_getInstanceMethod([HostMenu class], @selector(testRemoveAllItems)));
}

}  // namespace

TEST(Runtime, AnOverriddenMethodExchangedWithAnInheritedOneRunsPluginThenHost) {
    test::start_application();
    ASSERT_EQ(removal_of([HostMenu class]), "host ");
    ASSERT_EQ(removal_of([HostSubmenu class]), "host ");
    exchange();
    EXPECT_EQ(removal_of([HostMenu class]), "plugin host ");
    EXPECT_EQ(removal_of([HostSubmenu class]), "plugin host ");
    EXPECT_EQ(removal_of([NSMenu class]), "");
    exchange();
    EXPECT_EQ(removal_of([HostMenu class]), "host ");
    EXPECT_EQ(removal_of([HostSubmenu class]), "host ");
    EXPECT_EQ(removal_of([NSMenu class]), "");
}

TEST(Runtime, ASubclassWithADispatchTableSeesTheExchangeOfInheritedMethods) {
    RuntimeChild* child = [RuntimeChild new];
    ASSERT_EQ([child first], 1);
    for (const int expected : {2, 1}) {
        method_exchangeImplementations(
            class_getInstanceMethod([RuntimeBase class], @selector(first)),
            class_getInstanceMethod([RuntimeBase class], @selector(second)));
        EXPECT_EQ([child first], expected);
        EXPECT_EQ([child second], 3 - expected);
    }
    [child release];
}

TEST(Runtime, ClassMethodsAreExchangedAcrossClasses) {
    ASSERT_EQ([RuntimeChild number], 1);
    ASSERT_EQ([RuntimeChild otherNumber], 2);
    Method base = class_getClassMethod([RuntimeBase class], @selector(number));
    Method child = class_getClassMethod([RuntimeChild class], @selector(otherNumber));
    for (const int expected : {2, 1}) {
        method_exchangeImplementations(base, child);
        EXPECT_EQ([RuntimeBase number], expected);
        EXPECT_EQ([RuntimeChild number], expected);
        EXPECT_EQ([RuntimeChild otherNumber], 3 - expected);
    }
}

TEST(Runtime, ExchangingAMissingMethodDoesNothing) {
    Method first = class_getInstanceMethod([RuntimeBase class], @selector(first));
    method_exchangeImplementations(first, nullptr);
    method_exchangeImplementations(nullptr, first);
    RuntimeBase* base = [[RuntimeBase new] autorelease];
    EXPECT_EQ([base first], 1);
}

TEST(Runtime, AClassMethodThatIsReplacedBeforeItsClassIsUsedRunsInAnInitializedClass) {
    const MethodPatch patches[] = {
        {"UnusedClass", "unusedNumber", reinterpret_cast<IMP>(replaced_number), nullptr, true}};
    patch_methods(patches);
    EXPECT_EQ(initialized_classes, 0);
    EXPECT_EQ([OtherUnusedClass unusedNumber], 2);
    EXPECT_EQ(initialized_classes, 1);
    EXPECT_EQ([UnusedClass unusedNumber], 12);
}

TEST(Runtime, TheClassOfANameInCodeIsLookedUpOnce) {
    Class found = nullptr;
    const int before = class_lookups;
    for (int i = 0; i < 10; i++) found = [NSCountedSet class];
    EXPECT_EQ(found, objc_getClass("NSCountedSet"));
    EXPECT_EQ(class_lookups - before, 1);
}

TEST(Runtime, ANameWithoutAClassIsLookedUpAgain) {
    static const char name[] = "RuntimeTestLateClass";
    EXPECT_EQ(__wrap_objc_lookup_class(name), nullptr);
    Class late = objc_allocateClassPair([NSObject class], name, 0);
    objc_registerClassPair(late);
    EXPECT_EQ(__wrap_objc_lookup_class(name), late);
}

namespace {

std::vector<std::string> unknown_classes;

Class note_unknown(const char* name) {
    unknown_classes.push_back(name);
    return Nil;
}

// A report of an object file without classes, as the compiler writes it.
struct {
    unsigned long selector_count;
    void* selectors;
    unsigned short class_count, category_count;
    void* definitions[1];
} no_symbols;
struct {
    unsigned long version = 8, size = sizeof(*this);
    const char* name = "";
    void* symbols = &no_symbols;
} empty_object_file;

}  // namespace

extern "C" void __objc_exec_class(void* module);

TEST(Runtime, NoCategoryOfOursWaitsForAClassThatNeverComes) {
    const auto before = objc_setGetUnknownClassHandler(note_unknown);
    __objc_exec_class(&empty_object_file);  // looks for the classes of all categories that wait
    objc_setGetUnknownClassHandler(before);
    EXPECT_EQ(std::ranges::count(unknown_classes, "__ObjC_Protocol_Holder_Ugly_Hack"), 0);
}
