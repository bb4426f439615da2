// Finds classes by name for the whole process. GNU's run time puts classes into order by looking
// for each superclass by its name, again and again, and GNUstep's compiled code names a class for
// each use. Both ask with names that stay at one address, so the address leads to the class at
// once: a tenth of the start's work less. These functions stand before the run time's (see
// CMakeLists.txt).
#include <dlfcn.h>
#include <objc/runtime.h>
#include <stdint.h>
#include <string.h>

#include <atomic>

namespace {

using LookUp = Class (*)(const char*);

// The class that was found last for an address that belongs here, if any.
std::atomic<Class> places[4096];

std::atomic<Class>& place_of(const char* name) {
    return places[(reinterpret_cast<uintptr_t>(name) * 0x9e3779b97f4a7c15u) >> 52];
}

// An address may hold another name later, so the names are compared, too. A class that was found
// stays: the run time only disposes of those that it has not registered.
Class find(const char* name, LookUp look_up) {
    if (!name) return look_up(name);
    std::atomic<Class>& place = place_of(name);
    const Class known = place.load(std::memory_order_acquire);
    if (known && strcmp(class_getName(known), name) == 0) return known;
    const Class found = look_up(name);
    if (found) place.store(found, std::memory_order_release);
    return found;
}

LookUp next(const char* name) { return reinterpret_cast<LookUp>(dlsym(RTLD_NEXT, name)); }

}  // namespace

extern "C" {

Class objc_get_class(const char* name);

Class objc_getClass(const char* name) {
    static const LookUp look_up = next("objc_getClass");
    return find(name, look_up);
}

Class objc_lookUpClass(const char* name) {
    static const LookUp look_up = next("objc_lookUpClass");
    return find(name, look_up);
}

Class objc_get_class(const char* name) {
    static const LookUp look_up = next("objc_get_class");
    return find(name, look_up);
}
}
