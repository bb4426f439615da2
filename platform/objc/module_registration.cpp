// Tells GNU's run time of our object files without the categories that clang adds to each of them
// to list protocols. No class takes such a category, so the run time would look for its class again
// whenever an object file loads. The linker leads the reports of everything that links the platform
// here (see platform/CMakeLists.txt).
#include <string.h>

// Records of the run time's interface to compilers, which no header declares.
struct ObjectiveCategory {
    const char* name;
    const char* class_name;
};

struct ObjectiveSymbols {
    unsigned long selector_count;
    void* selectors;
    unsigned short class_count, category_count;
    // Classes, then categories, then null or the constant objects.
    void* definitions[1];
};

struct ObjectiveModule {
    unsigned long version, size;
    const char* name;
    ObjectiveSymbols* symbols;
};

extern "C" {
void __real___objc_exec_class(ObjectiveModule* module);
void __wrap___objc_exec_class(ObjectiveModule* module);
}

namespace {

bool holds_only_protocols(const void* category) {
    return strcmp(static_cast<const ObjectiveCategory*>(category)->class_name,
                  "__ObjC_Protocol_Holder_Ugly_Hack") == 0;
}

}  // namespace

void __wrap___objc_exec_class(ObjectiveModule* module) {
    ObjectiveSymbols& symbols = *module->symbols;
    void** const categories = symbols.definitions + symbols.class_count;
    for (unsigned i = 0; i < symbols.category_count;) {
        if (!holds_only_protocols(categories[i])) {
            i++;
            continue;
        }
        // What follows includes the constant objects.
        memmove(categories + i, categories + i + 1,
                (symbols.category_count - i) * sizeof *categories);
        symbols.category_count--;
    }
    __real___objc_exec_class(module);
}
