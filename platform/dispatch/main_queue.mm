#include "dispatch/work.h"

#import <Foundation/Foundation.h>

#include "corefoundation/common_modes.h"

// One piece of work, for the run loop to perform.
@interface MainQueueWork : NSObject {
  @private
    void* _context;
    dispatch_function_t _work;
}
- (instancetype)initWithContext:(void*)context work:(dispatch_function_t)work;
- (void)run;
@end

@implementation MainQueueWork

- (instancetype)initWithContext:(void*)context work:(dispatch_function_t)work {
    if (!(self = [super init])) return nil;
    _context = context;
    _work = work;
    return self;
}

- (void)run {
    @autoreleasepool {
        _work(_context);
    }
}

@end

void run_on_main_thread(void* context, dispatch_function_t work) {
    @autoreleasepool {
        // On a thread that has no run loop yet, GNUstep performs the work at once instead of later.
        if ([NSThread isMainThread]) [NSRunLoop currentRunLoop];
        MainQueueWork* piece = [[MainQueueWork alloc] initWithContext:context work:work];
        [piece performSelectorOnMainThread:@selector(run)
                                withObject:nil
                             waitUntilDone:NO
                                     modes:common_modes()];
        [piece release];
    }
}
