#include "operations_ui/conflict_panel.h"

#include "operations_ui/operation_texts.h"
#include "operations_ui/window_parts.h"

using operations::Choice;
using operations::MakeButton;
using operations::MakeIcon;
using operations::MakeLabel;

namespace {

constexpr CGFloat width = 480, margin = 20, icon_size = 48, row_height = 56, button_height = 28;
constexpr CGFloat button_width = 92, gap = 12;

// From the right.
const struct {
    Choice choice;
    NSString* title;
    NSString* key;
} buttons[] = {
    {Choice::Skip, @"Skip", @"\r"},
    {Choice::KeepBoth, @"Keep Both", @"k"},
    {Choice::Replace, @"Replace", @"r"},
    {Choice::Stop, @"Stop", @"\e"},
};

void add_file(NSView* view, CGFloat y, NSString* title, const std::string& path) {
    const CGFloat left = margin + icon_size + gap, rest = width - left - margin;
    [view addSubview:MakeIcon(NSMakeRect(margin, y, icon_size, icon_size), path)];
    [view addSubview:MakeLabel(NSMakeRect(left, y + 25, rest, 18), title,
                               [NSFont boldSystemFontOfSize:12])];
    [view addSubview:MakeLabel(NSMakeRect(left, y + 5, rest, 18), operations::DescribeFile(path),
                               [NSFont systemFontOfSize:12])];
}

}  // namespace

@implementation ConflictPanel

- (void)dealloc {
    [_panel release];
    [super dealloc];
}

- (void)addButtonsAbove:(CGFloat)y {
    CGFloat right = width - margin;
    for (const auto& button : buttons) {
        // Stop keeps its distance.
        if (button.choice == Choice::Stop) right = margin + button_width;
        const NSRect frame = NSMakeRect(right - button_width, y, button_width, button_height);
        NSButton* view = MakeButton(frame, button.title, self, @selector(choose:));
        [view setKeyEquivalent:button.key];
        [view setTag:static_cast<NSInteger>(button.choice)];
        [[_panel contentView] addSubview:view];
        right -= button_width + gap;
    }
}

- (void)buildFor:(const operations::Conflict&)conflict {
    const bool has_more = conflict.sources_left > 0;
    const CGFloat files = margin + button_height + gap + (has_more ? 34 : 6);
    const CGFloat height = files + 2 * row_height + 44 + 12;
    _panel = operations::NewPanel(NSMakeSize(width, height), @"Delvio");
    NSView* view = [_panel contentView];
    NSTextField* question =
        MakeLabel(NSMakeRect(margin, height - 52, width - 2 * margin, 32),
                  operations::QuestionOf(conflict), [NSFont boldSystemFontOfSize:14]);
    [view addSubview:question];
    add_file(view, files + row_height, @"There already", conflict.target);
    add_file(view, files,
             conflict.kind == operations::Kind::Move ? @"To be moved" : @"To be copied",
             conflict.source);
    if (has_more) {
        const NSRect frame = NSMakeRect(margin, margin + button_height + 10, 300, 22);
        _applyToAll = MakeButton(frame, @"Apply to all", nil, nullptr);
        [_applyToAll setButtonType:NSSwitchButton];
        [view addSubview:_applyToAll];
    }
    [self addButtonsAbove:margin];
}

- (void)choose:(NSButton*)sender {
    [NSApp stopModalWithCode:[sender tag]];
}

- (operations::Answer)answerTo:(const operations::Conflict&)conflict {
    [self buildFor:conflict];
    operations::ShowPanel(_panel);
    const NSInteger code = [NSApp runModalForWindow:_panel];
    [_panel orderOut:nil];
    // Anything but a button ends it as Stop: nothing more is touched.
    Choice choice = Choice::Stop;
    for (const auto& button : buttons) {
        if (static_cast<NSInteger>(button.choice) == code) choice = button.choice;
    }
    return {choice, _applyToAll && [_applyToAll state] == NSOnState};
}

@end
