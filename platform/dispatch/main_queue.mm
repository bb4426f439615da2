#include "dispatch/work.h"

#import <Foundation/Foundation.h>

#include <memory>

#include "corefoundation/common_modes.h"

namespace {

struct MainPiece {
    void* context;
    dispatch_function_t work;
};

}  // namespace

@interface MainQueue : NSObject
// Performs a piece of work, and frees it. Main thread.
+ (void)run:(NSValue*)piece;
@end

@implementation MainQueue

+ (void)run:(NSValue*)value {
    const std::unique_ptr<MainPiece> piece(static_cast<MainPiece*>([value pointerValue]));
    @autoreleasepool {
        piece->work(piece->context);
    }
}

@end

void run_on_main_thread(void* context, dispatch_function_t work) {
    @autoreleasepool {
        // On a thread that has no run loop yet, GNUstep performs the work at once instead of later.
        if ([NSThread isMainThread]) [NSRunLoop currentRunLoop];
        // An object is freed by the thread that releases it last. The main thread must free the
        // piece, so it is no object.
        [MainQueue
            performSelectorOnMainThread:@selector(run:)
                             withObject:[NSValue valueWithPointer:new MainPiece{context, work}]
                          waitUntilDone:NO
                                  modes:common_modes()];
    }
}
