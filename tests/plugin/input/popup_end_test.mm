// How the thread of press and hold ends, which the plug-in itself never asks for.
#include "input/DVControlFreePopup.h"

#include <gtest/gtest.h>

#include <atomic>

#include "controller/DVDelvio.h"
#include "support/app.h"
#include "support/dv_log.h"
#include "support/waiting.h"
#include "tree/dv_state.h"

@interface ThreadWatcher : NSObject {
  @public
    std::atomic<int> ended;
}
- (void)threadEnded:(NSNotification*)notification;
@end

@implementation ThreadWatcher
- (void)threadEnded:(NSNotification*)notification {
    (void)notification;
    ended++;
}
@end

TEST(PopupThread, EndsAtItsNextPressOnceItIsTold) {
    @autoreleasepool {
        test::start_application();
        ThreadWatcher* watcher = [ThreadWatcher new];
        [[NSNotificationCenter defaultCenter] addObserver:watcher
                                                 selector:@selector(threadEnded:)
                                                     name:NSThreadWillExitNotification
                                                   object:nil];
        DVControlFreePopup* popup = [DVControlFreePopup sharedControlFreePopup];
        delvio_t* dv = [[DVDelvio sharedDelvio] getDV];
        dv->control_free_enabled = 2;
        dv->popup_wake = 1;
        [popup mouseDownAt:CGPointMake(1, 1) flipped:CGPointMake(1, 1)];
        EXPECT_TRUE(test::wait_for([&] { return watcher->ended == 1; }));
        [[NSNotificationCenter defaultCenter] removeObserver:watcher];
        [watcher release];
    }
}
