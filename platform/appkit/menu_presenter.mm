#include "appkit/menu_presenter.h"

#include "appkit/menu_run.h"

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
    menu_run_t run(session, font);
    run.track(event);
}

@end
