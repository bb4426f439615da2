#include "menus/menu_presenter.h"

#include <algorithm>
#include <vector>

#include "menus/menu_run.h"

namespace {

std::vector<void (*)()>& levels_listeners() {
    static auto* listeners = new std::vector<void (*)()>;
    return *listeners;
}

}  // namespace

void add_open_levels_listener(void (*listener)()) {
    std::vector<void (*)()>& all = levels_listeners();
    if (std::find(all.begin(), all.end(), listener) == all.end()) all.push_back(listener);
}

void tell_open_levels_changed() {
    for (void (*listener)() : levels_listeners()) listener();
}

@implementation MenuPresenter

+ (MenuPresenter*)sharedPresenter {
    static MenuPresenter* presenter = [MenuPresenter new];
    return presenter;
}

- (void)trackSession:(MenuSession*)session
               event:(NSEvent*)event
                view:(NSView*)view
                font:(NSFont*)font {
    (void)view;
    MenuRun run(session, font);
    run.track(event);
}

@end
