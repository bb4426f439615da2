#include "wayland/stage_input.h"

#include "wayland/kept_stage.h"
#include "wayland/stage_events.h"
#include "x11/pointer_place.h"
#include "x11/screens.h"
#include "x11/toolkit_display.h"

// Xlib's headers come after AppKit's, as some of their names are the same.
#include <X11/Xlib.h>

@interface StageWatcher : NSObject <RunLoopEvents> {
  @private
    StageInput* _input;
    void* _descriptor;
    NSString* _mode;
}
- (instancetype)initWithInput:(StageInput*)input descriptor:(int)descriptor mode:(NSString*)mode;
// Must be sent before the last release.
- (void)stop;
@end

@implementation StageWatcher

- (instancetype)initWithInput:(StageInput*)input descriptor:(int)descriptor mode:(NSString*)mode {
    if (!(self = [super init])) return nil;
    _input = input;
    _descriptor = reinterpret_cast<void*>(intptr_t{descriptor});
    _mode = [mode retain];
    [[NSRunLoop currentRunLoop] addEvent:_descriptor type:ET_RDESC watcher:self forMode:_mode];
    return self;
}

- (void)stop {
    [[NSRunLoop currentRunLoop] removeEvent:_descriptor type:ET_RDESC forMode:_mode all:YES];
}

- (void)dealloc {
    [_mode release];
    [super dealloc];
}

- (void)receivedEvent:(void*)data
                 type:(RunLoopEventType)type
                extra:(void*)extra
              forMode:(NSString*)mode {
    (void)data, (void)type, (void)extra, (void)mode;
    _input->take_events();
}

@end

StageInput::StageInput(std::unique_ptr<MenuStage> stage, NSString* mode)
    : stage_(std::move(stage)) {
    if (!stage_) return;
    watcher_ = [[StageWatcher alloc] initWithInput:this descriptor:stage_->descriptor() mode:mode];
}

StageInput::~StageInput() { end(); }

void StageInput::begin(NSWindow* root) {
    if (!stage_) return;
    [root_ autorelease];
    root_ = [root retain];
    XSync(toolkit_display(), False);
    stage_->menu_is_open();
    take_events();
}

std::optional<StagePlace> StageInput::pointer() const {
    return stage_ ? stage_->pointer() : std::nullopt;
}

bool StageInput::has_button() const { return stage_ && current_pointer().buttons; }

void StageInput::end_after_drag(NSArray* windows) {
    if (stage_) keep_stage(std::move(stage_), windows);
    end();
}

void StageInput::end() {
    [watcher_ stop];
    [watcher_ release];
    watcher_ = nil;
    [root_ release];
    root_ = nil;
    if (!stage_) return;
    stage_.reset();
    end_telling_pointer();
}

// A compositor that has gone takes the X server with it, and the process decides about that.
void StageInput::take_events() {
    if (!stage_->read()) {
        [watcher_ stop];
        [watcher_ release];
        watcher_ = nil;
    }
    tell_pointer_of(*stage_);
    if (!root_) return;
    while (const std::optional<StageEvent> event = stage_->next_event()) post(*event);
}

void StageInput::post(const StageEvent& event) const {
    if (NSEvent* made = event_of_stage(event, root_)) [NSApp postEvent:made atStart:NO];
}
