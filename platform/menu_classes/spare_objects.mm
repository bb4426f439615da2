#include "menu_classes/spare_objects.h"

#include <objc/runtime.h>
#include <string.h>

#include <atomic>

#include "objc/method_patch.h"

namespace {

// One object of each kind is enough. Any thread may make an object.
std::atomic<void*> spare_item{nullptr}, spare_menu{nullptr};

IMP stock_allocation_of_item, stock_allocation_of_menu;

id allocate(std::atomic<void*>* spare, IMP stock, Class owner, SEL selector, NSZone* zone) {
    if (void* const kept = spare->exchange(nullptr)) {
        id const object = static_cast<id>(kept);
        if (object_getClass(object) == owner) {
            memset(static_cast<char*>(kept) + sizeof(Class), 0,
                   class_getInstanceSize(owner) - sizeof(Class));
            return object;
        }
        NSDeallocateObject(object);
    }
    return reinterpret_cast<id (*)(Class, SEL, NSZone*)>(stock)(owner, selector, zone);
}

id allocate_item(Class owner, SEL selector, NSZone* zone) {
    return allocate(&spare_item, stock_allocation_of_item, owner, selector, zone);
}

id allocate_menu(Class owner, SEL selector, NSZone* zone) {
    return allocate(&spare_menu, stock_allocation_of_menu, owner, selector, zone);
}

void keep(std::atomic<void*>* spare, id object) {
    void* const before = spare->exchange(static_cast<void*>(object));
    if (before) NSDeallocateObject(static_cast<id>(before));
}

}  // namespace

void keep_spare_item(NSMenuItem* item) { keep(&spare_item, item); }

void keep_spare_menu(NSMenu* menu) { keep(&spare_menu, menu); }

@interface SpareObjectsInstaller : NSObject
@end

@implementation SpareObjectsInstaller

+ (void)load {
    const MethodPatch patches[] = {
        {"NSMenuItem", "allocWithZone:", reinterpret_cast<IMP>(allocate_item),
         &stock_allocation_of_item, true},
        {"NSMenu", "allocWithZone:", reinterpret_cast<IMP>(allocate_menu),
         &stock_allocation_of_menu, true},
    };
    patch_methods(patches);
}

@end
