#include "wayland/kept_stage.h"

#include "events/deadline.h"
#include "x11/pointer_place.h"
#include "x11/screens.h"

// Looks whether the stage is still needed.
@interface KeptStageLook : NSObject
@end

namespace {

constexpr NSTimeInterval looking = 0.02;
// A drag begins after a tenth of a second, or after two when the pasteboard's server is busy.
constexpr double longest_keeping = 5;

std::unique_ptr<KeptStage> kept;
NSTimer* timer;  // retained by the run loop
Deadline limit;

void stop_looking() {
    [timer invalidate];
    timer = nil;
}

// Reads what has come, and gives the stage up that no drag can begin on any more.
void look() {
    if (!kept) return;
    const bool is_there = kept->stage->read();
    tell_pointer_of(*kept->stage);
    if (is_there && current_pointer().buttons && !limit.is_due()) return;
    kept.reset();
    end_telling_pointer();
    stop_looking();
}

}  // namespace

@implementation KeptStageLook

+ (void)look:(NSTimer*)timer {
    (void)timer;
    look();
}

@end

KeptStage::KeptStage(std::unique_ptr<MenuStage> stage, NSArray* windows)
    : stage(std::move(stage)), windows([windows retain]) {}

KeptStage::~KeptStage() { close_windows(); }

void KeptStage::close_windows() {
    for (NSWindow* window in windows) {
        [window orderOut:nil];
        [window close];
    }
    [windows release];
    windows = nil;
}

void keep_stage(std::unique_ptr<MenuStage> stage, NSArray* windows) {
    stop_looking();
    kept = std::make_unique<KeptStage>(std::move(stage), windows);
    // Where the press was on the stage itself, the windows only stand in the way of the drag.
    if (kept->stage->has_pointer()) kept->close_windows();
    for (NSWindow* window in kept->windows) [window setAlphaValue:0];
    limit.start(longest_keeping);
    timer = [NSTimer timerWithTimeInterval:looking
                                    target:[KeptStageLook class]
                                  selector:@selector(look:)
                                  userInfo:nil
                                   repeats:YES];
    for (NSString *mode in
         [NSArray arrayWithObjects:NSDefaultRunLoopMode, NSEventTrackingRunLoopMode,
                                   NSModalPanelRunLoopMode, nil]) {
        [[NSRunLoop currentRunLoop] addTimer:timer forMode:mode];
    }
}

std::unique_ptr<KeptStage> take_kept_stage() {
    look();
    stop_looking();
    return std::move(kept);
}

void tell_pointer_of(const MenuStage& stage) {
    const std::optional<StagePlace> place = stage.pointer();
    if (place && stage.has_pointer()) {
        tell_pointer(ToldPointer{place->x, place->y, stage.buttons()});
    } else {
        tell_pointer(std::nullopt);
    }
}
