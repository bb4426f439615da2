#include "appkit/menu_presenter.h"

@implementation MenuPresenter

+ (MenuPresenter *)sharedPresenter {
    static MenuPresenter *presenter = [MenuPresenter new];
    return presenter;
}

- (void)trackSession:(MenuSession *)session
               event:(NSEvent *)event
                view:(NSView *)view
                font:(NSFont *)font {
    (void)event, (void)view, (void)font;
    [session open];
    [session close];
}

@end
