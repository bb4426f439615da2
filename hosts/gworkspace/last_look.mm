#include "gworkspace/last_look.h"

#include <objc/runtime.h>

#include <set>

// One of GWorkspace's operations (FileOpInfo). An executor in a thread of its own does the work; it
// registers when the thread runs.
@interface NSObject (GWorkspaceFileOperation)
- (void)detachOperationThread;
- (void)registerExecutor:(id)executor;
- (void)endOperation;
- (BOOL)checkSameName;
@end

NSString* const operation_has_ended = @"DelvioOperationOfGWorkspacesHasEnded";

// A proxy in front of the executor that answers its check for taken names with no. The executor
// then removes nothing, and leaves out files whose names are not free.
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
Detach original_end;

// The order that is being given.
struct AwaitedOrder {
    NSDictionary* words;
    const std::function<bool()>& look;
    bool was_refused;
};

AwaitedOrder* given;

// The operations that passed the look, until their executors register. The pointers are only
// compared.
std::set<id>& looked_at() {
    static std::set<id> operations;
    return operations;
}

bool is_given(id<GWorkspaceOperation> operation) {
    NSDictionary* words = given ? given->words : nil;
    return words && [[operation type] isEqual:[words objectForKey:@"operation"]] &&
           [[operation source] isEqual:[words objectForKey:@"source"]] &&
           [[operation destination] isEqual:[words objectForKey:@"destination"]];
}

// Called after GWorkspace's question, or in its place if the user has turned it off.
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

void end_operation(id operation, SEL selector) {
    original_end(operation, selector);
    [[NSNotificationCenter defaultCenter] postNotificationName:operation_has_ended
                                                        object:operation];
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
    replace(@selector(endOperation), &end_operation, &original_end);
}

}  // namespace

bool begins_after_look(NSDictionary* order, const std::function<bool()>& look,
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
