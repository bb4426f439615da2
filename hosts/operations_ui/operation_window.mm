#include "operations_ui/operation_window.h"

#include <AppKit/AppKit.h>

#include "operations_ui/conflict_panel.h"
#include "operations_ui/operation_texts.h"
#include "operations_ui/progress_board.h"
#include "operations_ui/window_parts.h"

using operations::MakeButton;
using operations::MakeLabel;

namespace {

constexpr NSTimeInterval looks_every = 0.05, shown_after = 0.5;
constexpr CGFloat width = 440, height = 132, margin = 20;

using Ended = std::function<void(const operations::Report&)>;

// Those whose requests have not ended; each is retained by its timer.
NSUInteger running = 0;

}  // namespace

@interface OperationWindow : NSObject {
  @private
    std::shared_ptr<operations::ProgressBoard>* _board;
    Ended* _ended;
    NSString* _title;
    NSTimer* _timer;  // retains this object, and the run loop the timer
    NSDate* _start;
    NSPanel* _panel;
    NSTextField *_name, *_detail;
    NSProgressIndicator* _bar;
    NSButton* _cancel;
    BOOL _isBusy;
}
- (instancetype)initWithTitle:(NSString*)title
                        board:(const std::shared_ptr<operations::ProgressBoard>&)board
                        ended:(const Ended&)ended;
@end

@implementation OperationWindow

- (instancetype)initWithTitle:(NSString*)title
                        board:(const std::shared_ptr<operations::ProgressBoard>&)board
                        ended:(const Ended&)ended {
    if (!(self = [super init])) return nil;
    _board = new std::shared_ptr<operations::ProgressBoard>(board);
    _ended = new Ended(ended);
    _title = [title copy];
    _start = [NSDate new];
    _timer = [NSTimer timerWithTimeInterval:looks_every
                                     target:self
                                   selector:@selector(look:)
                                   userInfo:nil
                                    repeats:YES];
    NSArray* modes = @[ NSDefaultRunLoopMode, NSEventTrackingRunLoopMode, NSModalPanelRunLoopMode ];
    for (NSString* mode in modes) [[NSRunLoop currentRunLoop] addTimer:_timer forMode:mode];
    running++;
    return self;
}

- (void)dealloc {
    [_title release];
    [_start release];
    [_panel release];
    delete _board;
    delete _ended;
    [super dealloc];
}

- (void)look:(NSTimer*)timer {
    (void)timer;
    if (_isBusy) return;
    if (const auto report = (*_board)->take_report()) return [self end:*report];
    if (const auto question = (*_board)->take_question()) return [self ask:*question];
    if (!_panel && -[_start timeIntervalSinceNow] >= shown_after) [self show];
    if (_panel) [self update];
}

- (void)ask:(const operations::Conflict&)conflict {
    _isBusy = YES;
    ConflictPanel* panel = [[ConflictPanel new] autorelease];
    (*_board)->answer([panel answerTo:conflict]);
    _isBusy = NO;
}

- (void)show {
    _panel = operations::NewPanel(NSMakeSize(width, height), @"Delvio");
    NSView* view = [_panel contentView];
    const CGFloat inner = width - 2 * margin;
    NSFont* plain = [NSFont systemFontOfSize:12];
    [view addSubview:MakeLabel(NSMakeRect(margin, 98, inner, 20), _title,
                               [NSFont boldSystemFontOfSize:13])];
    _bar =
        [[[NSProgressIndicator alloc] initWithFrame:NSMakeRect(margin, 74, inner, 14)] autorelease];
    [_bar setMinValue:0];
    [_bar setMaxValue:1];
    [view addSubview:_bar];
    _name = MakeLabel(NSMakeRect(margin, 46, inner - 100, 18), @"", plain);
    _detail = MakeLabel(NSMakeRect(margin, 24, inner - 100, 18), @"", plain);
    [view addSubview:_name];
    [view addSubview:_detail];
    _cancel = MakeButton(NSMakeRect(width - margin - 88, 20, 88, 28), @"Cancel", self,
                         @selector(cancel:));
    [_cancel setKeyEquivalent:@"\e"];
    [view addSubview:_cancel];
    [self update];
    operations::ShowPanel(_panel);
}

- (void)update {
    const operations::Progress progress = (*_board)->progress();
    const double fraction = operations::FractionOf(progress);
    [_bar setIndeterminate:fraction < 0];
    if (fraction >= 0) [_bar setDoubleValue:fraction];
    [_name setStringValue:operations::TextOfLast(progress.path)];
    if ([_cancel isEnabled]) [_detail setStringValue:operations::DetailOf(progress)];
}

- (void)cancel:(id)sender {
    (void)sender;
    (*_board)->cancel();
    [_cancel setEnabled:NO];
    [_detail setStringValue:@"Stopping…"];
}

- (void)end:(const operations::Report&)report {
    [[self retain] autorelease];
    [_timer invalidate];
    [_panel orderOut:nil];
    if (NSString* title = operations::FailureTitleOf(report)) {
        NSAlert* alert = [[NSAlert new] autorelease];
        [alert setMessageText:title];
        [alert setInformativeText:operations::FailureReasonsOf(report)];
        [NSApp activateIgnoringOtherApps:YES];
        [alert runModal];
    }
    running--;
    if (*_ended) (*_ended)(report);
}

@end

namespace operations {

std::shared_ptr<Observer> MakeWindowObserver(const Request& request, Ended ended) {
    auto board = std::make_shared<ProgressBoard>();
    [[[OperationWindow alloc] initWithTitle:TitleOf(request) board:board ended:ended] release];
    return board;
}

bool WindowsAreNeeded() { return running > 0; }

void RunUntilOperationsEnd() {
    while (running > 0) {
        NSAutoreleasePool* pool = [NSAutoreleasePool new];
        NSEvent* event = [NSApp nextEventMatchingMask:NSAnyEventMask
                                            untilDate:[NSDate dateWithTimeIntervalSinceNow:0.1]
                                               inMode:NSDefaultRunLoopMode
                                              dequeue:YES];
        if (event) [NSApp sendEvent:event];
        [NSApp updateWindows];
        [pool release];
    }
}

}  // namespace operations
