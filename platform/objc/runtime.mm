#include <objc/runtime.h>

#include <stdlib.h>

#include <vector>

#include "objc/method_patch.h"

#undef method_exchangeImplementations

namespace {

// The class, or metaclass, that defines the method. The method's record does not say.
Class owner_of(Method method) {
    const int count = objc_getClassList(nullptr, 0);
    std::vector<Class> classes(count > 0 ? count : 0);
    const int listed = objc_getClassList(classes.data(), count);
    for (int i = 0; i < listed && i < count; i++) {
        if (has_method(classes[i], method)) return classes[i];
        const Class metaclass = object_getClass(reinterpret_cast<id>(classes[i]));
        if (has_method(metaclass, method)) return metaclass;
    }
    return nullptr;
}

}  // namespace

extern "C" void MacMethodExchangeImplementations(Method first, Method second) {
    if (!first || !second) return;
    Class owner = owner_of(first), other = owner_of(second);
    if (!owner || !other) return method_exchangeImplementations(first, second);
    const IMP implementation = method_getImplementation(first);
    set_implementation(owner, first, method_getImplementation(second));
    set_implementation(other, second, implementation);
    refresh_dispatch(owner);
    if (other != owner) refresh_dispatch(other);
}
