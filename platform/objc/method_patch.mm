#include "objc/method_patch.h"

#include <stdio.h>
#include <stdlib.h>

// libobjc's one dispatch table for all classes that nobody has used yet.
extern "C" void* __objc_uninstalled_dtable;

namespace {

void unused_method(id, SEL) {}

struct MethodList;

// The head of GNU's class record, which its public headers do not declare.
struct ClassRecord {
    Class is_a;
    Class superclass;
    const char* name;
    long version;
    unsigned long info;
    long instance_size;
    void* variables;
    MethodList* methods;
    void* dispatch_table;
};
constexpr unsigned long under_construction = 0x10;

// A method's record, whose layout is part of the run time's interface to compilers.
struct MethodRecord {
    SEL name;
    const char* types;
    IMP implementation;
};

// A class has one list for its own methods and one for each category.
struct MethodList {
    MethodList* next;
    int count;
    MethodRecord methods[1];
};

ClassRecord* record_of(Class owner) { return reinterpret_cast<ClassRecord*>(owner); }

// clang sets a flag in each metaclass that this run time reads as "under construction", and to
// such a class it adds methods without telling the dispatch tables.
void finish_construction(Class owner) {
    if (!class_isMetaClass(owner)) return;
    record_of(owner)->info &= ~under_construction;
}

// Searches the list itself, as class_getInstanceMethod would initialize the class.
Method own_method(Class owner, SEL selector) {
    unsigned count = 0;
    Method* list = class_copyMethodList(owner, &count);
    Method found = nullptr;
    for (unsigned i = 0; i < count && !found; i++) {
        if (sel_isEqual(method_getName(list[i]), selector)) found = list[i];
    }
    free(list);
    return found;
}

Method inherited_method(Class owner, SEL selector) {
    Method method = nullptr;
    for (; owner && !method; owner = class_getSuperclass(owner)) {
        method = own_method(owner, selector);
    }
    return method;
}

void patch_method(const MethodPatch& patch) {
    Class owner = objc_getClass(patch.class_name);
    if (owner && patch.on_class) owner = object_getClass(reinterpret_cast<id>(owner));
    if (!owner) return;
    SEL selector = sel_registerName(patch.selector);
    Method method = inherited_method(owner, selector);
    if (!method) return;
    IMP original = method_getImplementation(method);
    // Stores the original first: another thread may enter the new method as soon as it is there.
    if (patch.original) *patch.original = original;
    if (Method own = own_method(owner, selector)) {
        set_implementation(owner, own, patch.implementation);
    } else {
        class_addMethod(owner, selector, patch.implementation, method_getTypeEncoding(method));
    }
    refresh_dispatch(owner);
}

}  // namespace

void patch_methods(const MethodPatch* patches, unsigned count) {
    for (unsigned i = 0; i < count; i++) patch_method(patches[i]);
}

bool has_method(Class owner, Method method) {
    const auto* record = reinterpret_cast<const MethodRecord*>(method);
    for (const MethodList* list = record_of(owner)->methods; list; list = list->next) {
        if (record >= list->methods && record < list->methods + list->count) return true;
    }
    return false;
}

void set_implementation(Class owner, Method method, IMP implementation) {
    if (record_of(owner)->dispatch_table == __objc_uninstalled_dtable) {
        reinterpret_cast<MethodRecord*>(method)->implementation = implementation;
    } else {
        method_setImplementation(method, implementation);
    }
}

void refresh_dispatch(Class owner) {
    finish_construction(owner);
    // Only adding a method rebuilds the tables, and only under a name that the class lacks.
    static unsigned serial;
    char name[32];
    do {
        snprintf(name, sizeof name, "_dispatchRefresh%u",
                 __atomic_fetch_add(&serial, 1, __ATOMIC_RELAXED));
    } while (!class_addMethod(owner, sel_registerName(name), reinterpret_cast<IMP>(unused_method),
                              "v16@0:8"));
}
