#include "popup/menu_photographer.h"

#include <host/text.h>
#include <host/menu_picture.h>

#include "file_steps/visible_text.h"
#include "popup/menu_walker.h"

using operations::in_quotes;

namespace {

// One turn of the tracking loop: long enough to draw the windows of a level.
constexpr NSTimeInterval turn_length = 0.1;

}  // namespace

@interface MenuPhotographer (Turns)
- (void)turn:(NSTimer*)timer;
- (void)openNext:(MenuSession*)session;
- (std::string)takePicture;
@end

@implementation MenuPhotographer

- (instancetype)initWithFile:(const std::string&)file
                  openTitles:(const std::vector<std::string>&)titles {
    if (!(self = [super init])) return nil;
    _file = new std::string(file);
    _titles = new std::vector<std::string>(titles);
    _problem = new std::string(translated("the menu closed before its picture was taken"));
    return self;
}

- (void)dealloc {
    [self stop];
    delete _file;
    delete _titles;
    delete _problem;
    [super dealloc];
}

- (void)waitForMenu {
    _timer = [[NSTimer timerWithTimeInterval:turn_length
                                      target:self
                                    selector:@selector(turn:)
                                    userInfo:nil
                                     repeats:YES] retain];
    [[NSRunLoop currentRunLoop] addTimer:_timer forMode:NSEventTrackingRunLoopMode];
}

- (void)stop {
    [_timer invalidate];
    [_timer release];
    _timer = nil;
}

- (const std::string&)problem {
    return *_problem;
}

@end

@implementation MenuPhotographer (Turns)

// Opens one submenu in each turn, then takes the picture.
- (void)turn:(NSTimer*)timer {
    (void)timer;
    MenuSession* session = [MenuSession current];
    if (![[session levels] count] || [session isEnding]) return;
    if (_opened < _titles->size()) {
        [self openNext:session];
        return;
    }
    *_problem = [self takePicture];
    [session cancel];
}

- (void)openNext:(MenuSession*)session {
    const std::vector<std::string> way(_titles->begin(), _titles->begin() + ++_opened);
    NSMenu* menu = nil;
    std::string problem;
    if (open_by_titles(session, way, &menu, &problem)) return;
    *_problem = problem;
    [session cancel];
}

- (std::string)takePicture {
    NSString* file = [NSString stringWithUTF8String:_file->c_str()];
    if (file && write_picture_of_open_menus(file, YES)) return {};
    return translated("cannot save the picture %s; is its folder there and writable?",
                      {in_quotes(*_file)});
}

@end
