// Finds the classes that our compiled code names. clang writes a call of the run time for each use
// of a class, and GNU's run time compares the name with those of its table each time: in a level of
// thousands of items that was a seventh of all work. The linker leads the calls of everything that
// links the platform here (see platform/CMakeLists.txt).
#include <objc/runtime.h>

#include <stdint.h>

#include <atomic>

extern "C" {
Class __real_objc_lookup_class(const char* name);
Class __real_objc_get_class(const char* name);
Class __wrap_objc_lookup_class(const char* name);
Class __wrap_objc_get_class(const char* name);
}

namespace {

// A compiled name is always at the same address, so the address stands for it. A place is filled
// once and then stays as it is, so any thread may read it without a lock.
struct Place {
    std::atomic<const char*> name;
    std::atomic<Class> found;
};

constexpr size_t place_count = 1024, most_steps = 8;

Place places[place_count];

size_t first_place(const char* name) {
    return (reinterpret_cast<uintptr_t>(name) * 0x9e3779b97f4a7c15u) >> 54;
}

Class keep(const char* name, Class found) {
    if (!found) return found;  // a later library may bring it
    for (size_t i = 0; i < most_steps; i++) {
        Place& place = places[(first_place(name) + i) % place_count];
        const char* owner = nullptr;
        if (!place.name.compare_exchange_strong(owner, name) && owner != name) continue;
        place.found.store(found, std::memory_order_release);
        break;
    }
    return found;
}

// Nearly all names are at their first place.
inline Class find(const char* name) {
    const Place& first = places[first_place(name)];
    if (first.name.load(std::memory_order_relaxed) == name) {
        return first.found.load(std::memory_order_acquire);
    }
    for (size_t i = 1; i < most_steps; i++) {
        const Place& place = places[(first_place(name) + i) % place_count];
        const char* owner = place.name.load(std::memory_order_relaxed);
        if (!owner) return nullptr;
        if (owner == name) return place.found.load(std::memory_order_acquire);
    }
    return nullptr;
}

}  // namespace

Class __wrap_objc_lookup_class(const char* name) {
    const Class known = find(name);
    return known ? known : keep(name, __real_objc_lookup_class(name));
}

Class __wrap_objc_get_class(const char* name) {
    const Class known = find(name);
    return known ? known : keep(name, __real_objc_get_class(name));
}
