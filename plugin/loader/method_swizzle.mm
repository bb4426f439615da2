#include "loader/method_swizzle.h"

#include <objc/runtime.h>

#include "support/dv_log.h"

namespace {

Method find_method(Class owner, SEL selector, int instance) {
    return instance ? class_getInstanceMethod(owner, selector)
                    : class_getClassMethod(owner, selector);
}

void* implementation(Method method) {
    return method ? reinterpret_cast<void*>(method_getImplementation(method)) : nullptr;
}

}  // namespace

void MethodSwizzle(Class owner, SEL original, SEL replacement, int instance_methods) {
    if (!owner) return;
    Method theirs = find_method(owner, original, instance_methods);
    Method ours = find_method(owner, replacement, instance_methods);
    if (dvEnableDebugOutput) {
        dvdprintf("Delvio: Swizzle %p %p [%p %p] %d\n", theirs, ours, implementation(theirs),
                  implementation(ours), instance_methods);
    }
    if (!theirs || !ours) return;
    method_exchangeImplementations(theirs, ours);
}
