#include "gworkspace/last_look.h"

#include <objc/runtime.h>

#include <set>

// An operation of GWorkspace's (FileOpInfo). What does the work stands in a thread of its own, as
// the executor, which is registered when the thread runs.
@interface NSObject (GWorkspaceFileOperation)
- (NSString*)type;
- (NSString*)source;
- (NSString*)destination;
- (void)detachOperationThread;
- (void)registerExecutor:(id)executor;
- (void)endOperation;
- (BOOL)checkSameName;
@end

// Stands before the executor, and spares it the question for names that are taken: without it, the
// executor removes nothing, and leaves out what has no free name.
@interface ReplacingNothing : NSProxy {
  @private
    id _executor;
}
- (instancetype)initWithExecutor:(id)executor;
@end

@implementation ReplacingNothing

- (instancetype)initWithExecutor:(id)executor {
    _executor = [executor retain];
    return self;
}

- (void)dealloc {
    [_executor release];
    [super dealloc];
}

- (BOOL)checkSameName {
    return NO;
}

- (NSMethodSignature*)methodSignatureForSelector:(SEL)selector {
    return [_executor methodSignatureForSelector:selector];
}

- (void)forwardInvocation:(NSInvocation*)invocation {
    [invocation invokeWithTarget:_executor];
}

@end

namespace {

using Detach = void (*)(id, SEL);
using Register = void (*)(id, SEL, id);

Detach original_detach;
Register original_register;

// The order that is being given.
struct AwaitedOrder {
    NSDictionary* words;
    const std::function<bool()>& look;
    bool was_refused;
};

AwaitedOrder* given;

// Those that were looked at, until their executors come. Only compared.
std::set<id>& looked_at() {
    static std::set<id> operations;
    return operations;
}

bool is_given(id operation) {
    NSDictionary* words = given ? given->words : nil;
    return words && [[operation type] isEqual:[words objectForKey:@"operation"]] &&
           [[operation source] isEqual:[words objectForKey:@"source"]] &&
           [[operation destination] isEqual:[words objectForKey:@"destination"]];
}

// After GWorkspace's question, or instead of it where the user has turned it off.
void detach(id operation, SEL selector) {
    if (is_given(operation)) {
        if (!given->look()) {
            given->was_refused = true;
            return [operation endOperation];
        }
        looked_at().insert(operation);
    }
    original_detach(operation, selector);
}

void register_executor(id operation, SEL selector, id executor) {
    if (looked_at().erase(operation) > 0) {
        executor = [[[ReplacingNothing alloc] initWithExecutor:executor] autorelease];
    }
    original_register(operation, selector, executor);
}

template <typename function_t>
void replace(SEL selector, function_t with, function_t* original) {
    Method method = class_getInstanceMethod(objc_lookUpClass("FileOpInfo"), selector);
    if (!method) return;
    *original =
        reinterpret_cast<function_t>(method_setImplementation(method, reinterpret_cast<IMP>(with)));
}

void stand_between() {
    if (original_detach) return;
    replace(@selector(detachOperationThread), &detach, &original_detach);
    replace(@selector(registerExecutor:), &register_executor, &original_register);
}

}  // namespace

bool BeginsAfterLook(NSDictionary* order, const std::function<bool()>& look,
                     const std::function<void()>& start) {
    stand_between();
    AwaitedOrder giving = {order, look, false};
    AwaitedOrder* before = given;
    given = &giving;
    @try {
        start();
    } @finally {
        given = before;
    }
    return !giving.was_refused;
}
