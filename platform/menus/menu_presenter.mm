#include "menus/menu_presenter.h"

#include "menus/menu_run.h"

namespace {

void (*levels_listener)();

}  // namespace

void set_open_levels_listener(void (*listener)()) { levels_listener = listener; }

void tell_open_levels_changed() {
    if (levels_listener) levels_listener();
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
