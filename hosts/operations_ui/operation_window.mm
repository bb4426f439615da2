#include "operations_ui/operation_window.h"

#include <host/text.h>

#include <AppKit/AppKit.h>

#include "operations_ui/caution_alert.h"
#include "operations_ui/conflict_panel.h"
#include "operations_ui/operation_texts.h"
#include "operations_ui/progress_board.h"
#include "panels/widget_panel.h"

namespace {

constexpr NSTimeInterval looks_every = 0.05, shown_after = 0.5;
constexpr double width = 460, height = 142, margin = 24;

// The items of the window.
enum { no_item, title_item, bar_item, name_item, detail_item, cancel_item };

using Ended = std::function<void(const operations::Report&)>;

PanelContent content_of(NSString* title) {
    PanelContent content;
    content.fit(width, height);
    content.size = {content.pixels(width), content.pixels(height)};
    content.cancel_item = cancel_item;
    const double inner = width - 2 * margin, beside_button = inner - 110;
    const auto area = [&](double left, double top, double wide, double high) {
        return content.area(left, top, wide, high);
    };
    content.widgets = {
        {WidgetKind::text, area(margin, 18, inner, 22), [title UTF8String], title_item, 14, true},
        {WidgetKind::bar, area(margin, 52, inner, 8), "", bar_item},
        {WidgetKind::text, area(margin, 74, beside_button, 20), "", name_item},
        {WidgetKind::text, area(margin, 96, beside_button, 20), "", detail_item},
        {WidgetKind::button, area(width - margin - 92, 88, 92, 30), translated("Cancel"),
         cancel_item, 13},
    };
    content.widget(bar_item)->label = [title UTF8String];
    content.widget(detail_item)->alpha = dimmed_text_alpha;
    return content;
}

// The windows whose requests have not ended; each is retained by its timer.
NSUInteger running = 0;

}  // namespace

@interface OperationWindow : NSObject {
  @private
    std::shared_ptr<operations::ProgressBoard>* _board;
    Ended* _ended;
    NSString* _title;
    NSTimer* _timer;  // retains this object, and the run loop the timer
    NSDate* _start;
    WidgetPanel* _panel;
    operations::Asks _asks;
    BOOL _isBusy;
}
- (instancetype)initWithTitle:(NSString*)title
                        board:(const std::shared_ptr<operations::ProgressBoard>&)board
                        ended:(const Ended&)ended
                         asks:(operations::Asks)asks;
@end

@implementation OperationWindow

- (instancetype)initWithTitle:(NSString*)title
                        board:(const std::shared_ptr<operations::ProgressBoard>&)board
                        ended:(const Ended&)ended
                         asks:(operations::Asks)asks {
    if (!(self = [super init])) return nil;
    _board = new std::shared_ptr<operations::ProgressBoard>(board);
    _ended = new Ended(ended);
    _title = [title copy];
    _asks = asks;
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
    const bool may_show = -[_start timeIntervalSinceNow] >= shown_after && ![NSApp modalWindow];
    if (!_panel && may_show) [self show];
    if (_panel) [self giveWay];
    if (_panel) [self update];
}

- (void)ask:(const operations::Conflict&)conflict {
    _isBusy = YES;
    [_panel orderOut:nil];
    (*_board)->answer(operations::ask_about(conflict, _asks == operations::Asks::Once));
    _isBusy = NO;
    [self restart];
}

// Hides the window while a panel asks a question: window managers keep a dialog above all other
// windows of its program, so it would cover the question.
- (void)giveWay {
    const bool is_asked = [NSApp modalWindow] != nil;
    if (is_asked != ([_panel isVisible] != NO)) return;
    if (is_asked) return [_panel orderOut:nil];
    [_panel orderFrontRegardless];
}

// The rest of the work after an answer may be quick, so the half second starts again.
- (void)restart {
    [_start release];
    _start = [NSDate new];
}

- (void)show {
    // The panel goes before this object.
    const auto hit = [self](int) { [self cancel]; };
    _panel = [[WidgetPanel alloc] initWithTitle:_title content:content_of(_title) hit:hit];
    [self update];
    [_panel show];
}

- (void)update {
    const operations::Progress progress = (*_board)->progress();
    const bool is_stopping = [_panel content].widget(cancel_item)->disabled;
    NSString* detail = is_stopping ? [NSString stringWithUTF8String:translated("Stopping…")]
                                   : operations::detail_of(progress);
    [_panel content].widget(bar_item)->value = operations::fraction_of(progress);
    [_panel content].widget(name_item)->text = [operations::text_of_last(progress.path) UTF8String];
    [_panel content].widget(detail_item)->text = [detail UTF8String];
    [_panel widgetsChanged];
}

- (void)cancel {
    (*_board)->cancel();
    [_panel content].widget(cancel_item)->disabled = true;
    [self update];
}

- (void)end:(const operations::Report&)report {
    [[self retain] autorelease];
    [_timer invalidate];
    [_panel orderOut:nil];
    operations::show_failures(report);
    running--;
    if (*_ended) (*_ended)(report);
}

@end

namespace operations {

namespace {

// NOLINTNEXTLINE(performance-unnecessary-value-param): the window copies it.
std::shared_ptr<Observer> make_observer(NSString* title, Ended ended, Asks asks) {
    auto board = std::make_shared<ProgressBoard>();
    [[[OperationWindow alloc] initWithTitle:title board:board ended:ended asks:asks] release];
    return board;
}

}  // namespace

std::shared_ptr<Observer> make_window_observer(const Request& request, Ended ended, Asks asks) {
    return make_observer(window_title_of(request), std::move(ended), asks);
}

std::shared_ptr<Observer> make_window_observer(const std::string& title, Ended ended) {
    return make_observer(text_of_name(title), std::move(ended), Asks::Each);
}

void show_failures(const Report& report) {
    if (NSString* title = failure_title_of(report)) {
        show_caution(title, failure_reasons_of(report));
    }
}

bool windows_are_needed() { return running > 0; }

void run_until_operations_end() {
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
