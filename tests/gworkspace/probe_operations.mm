#include <Foundation/Foundation.h>

#include <objc/runtime.h>

#include <fstream>

#include "gworkspace/probe_questions.h"

@interface NSObject (ProbedFileOperation)
- (void)registerExecutor:(id)executor;
@end

namespace {

using Register = void (*)(id, SEL, id);

Register original;
std::string name_to_take;

// Runs after GWorkspace's own question, before GWorkspace looks at any name.
void register_executor(id operation, SEL selector, id executor) {
    if (!name_to_take.empty()) std::ofstream(name_to_take) << "taken";
    name_to_take.clear();
    original(operation, selector, executor);
}

}  // namespace

void take_name_at_start(const std::string& path) {
    name_to_take = path;
    if (original) return;
    Method method =
        class_getInstanceMethod(objc_lookUpClass("FileOpInfo"), @selector(registerExecutor:));
    original = reinterpret_cast<Register>(
        method_setImplementation(method, reinterpret_cast<IMP>(&register_executor)));
}
