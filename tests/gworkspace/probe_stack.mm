#include "gworkspace/probe_stack.h"

#include <Foundation/Foundation.h>

#include <execinfo.h>
#include <objc/runtime.h>

#include <map>
#include <vector>

namespace {

using Methods = std::map<uintptr_t, std::string>;

void add_methods(Class owner, const char* kind, const char* name, Methods& methods) {
    unsigned count = 0;
    Method* list = class_copyMethodList(owner, &count);
    for (unsigned i = 0; i < count; i++) {
        const auto start = reinterpret_cast<uintptr_t>(method_getImplementation(list[i]));
        methods[start] =
            std::string(kind) + "[" + name + " " + sel_getName(method_getName(list[i])) + "]";
    }
    free(list);
}

Methods all_methods() {
    Methods methods;
    std::vector<Class> classes(static_cast<size_t>(objc_getClassList(nullptr, 0)));
    objc_getClassList(classes.data(), static_cast<int>(classes.size()));
    for (Class each : classes) {
        add_methods(each, "-", class_getName(each), methods);
        add_methods(object_getClass(each), "+", class_getName(each), methods);
    }
    return methods;
}

// No method is longer; further on lies a function.
constexpr uintptr_t longest_method = 16384;

}  // namespace

std::string methods_in_progress() {
    void* frames[200];
    const int count = backtrace(frames, 200);
    const Methods methods = all_methods();
    std::string text;
    for (int i = 0; i < count; i++) {
        const auto place = reinterpret_cast<uintptr_t>(frames[i]);
        auto next = methods.upper_bound(place);
        if (next == methods.begin()) continue;
        --next;
        if (place - next->first < longest_method) text += next->second + "\n";
    }
    return text;
}
