#include "platform/menu_script.h"

#include <AppKit/MenuTracking.h>

@interface ScriptTimer : NSObject {
  @private
    MenuScript* _script;
}
- (instancetype)initWithScript:(MenuScript*)script;
@end

@implementation ScriptTimer

- (instancetype)initWithScript:(MenuScript*)script {
    if (!(self = [super init])) return nil;
    _script = script;
    return self;
}

- (void)tick:(NSTimer*)timer {
    (void)timer;
    _script->tick();
}

@end

void MenuScript::when(const std::string& name, Condition condition, Action action) {
    steps_.push_back({name, condition, action});
}

void MenuScript::tick() {
    MenuSession* session = [MenuSession current];
    if (!session || [session isEnding]) return;
    if (next_ < steps_.size() && steps_[next_].condition()) {
        patience_ = 0;
        steps_[next_++].action();
        return;
    }
    // Far longer than any of the presenter's own delays, on any machine.
    if (++patience_ < 3000) return;
    failed_ = next_ < steps_.size();
    [session cancel];
}

std::string MenuScript::run(NSMenu* menu, int x, int y) {
    ScriptTimer* target = [[[ScriptTimer alloc] initWithScript:this] autorelease];
    NSTimer* timer = [NSTimer timerWithTimeInterval:0.005
                                             target:target
                                           selector:@selector(tick:)
                                           userInfo:nil
                                            repeats:YES];
    [[NSRunLoop currentRunLoop] addTimer:timer forMode:NSEventTrackingRunLoopMode];
    NSEvent* event = [NSEvent mouseEventWithType:NSRightMouseDown
                                        location:screen_point({x, y})
                                   modifierFlags:0
                                       timestamp:0
                                    windowNumber:0
                                         context:nil
                                     eventNumber:0
                                      clickCount:1
                                        pressure:1];
    @try {
        [NSMenu popUpContextMenu:menu withEvent:event forView:nil];
    } @finally {
        [timer invalidate];
    }
    return next_ < steps_.size() ? steps_[next_].name : "";
}

size_t shown_levels() {
    size_t count = 0;
    while (level_is_shown(count)) count++;
    return count;
}

bool level_is_shown(size_t index) {
    const menu_run_t* run = menu_run_t::current();
    return run && index < run->levels().size() && run->levels()[index]->is_shown();
}

menu_level_t& shown_level(size_t index) { return *menu_run_t::current()->levels()[index]; }

point_t row_point(size_t index, NSString* title) {
    if (!level_is_shown(index)) return {-1, -1};
    const menu_level_t& level = shown_level(index);
    const std::vector<menu_row_t>& rows = level.layout().rows();
    for (size_t i = 0; i < rows.size(); i++) {
        if (![[rows[i].item title] isEqualToString:title]) continue;
        const area_t area = level.row_area(static_cast<int>(i));
        return {area.left + area.width / 2, area.top + area.height / 2};
    }
    return {-1, -1};
}

std::string highlighted_title(size_t index) {
    if (!level_is_shown(index)) return "";
    NSMenuItem* item = [[MenuSession current] highlightedItemOfMenu:shown_level(index).menu()];
    return [[item title] UTF8String] ?: "";
}
