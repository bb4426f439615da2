#include "operations_ui/conflict_panel.h"

#include "operations_ui/operation_texts.h"
#include "panels/widget_panel.h"

namespace operations {

namespace {

constexpr double width = 500, margin = 24, icon_side = 44, row_height = 60;
constexpr double button_width = 96, button_height = 30, gap = 10;

enum Item { none, skip, keep_both, replace, stop, apply_to_all };

// The buttons from the right; Stop keeps its distance.
const struct {
    Item item;
    Choice choice;
    const char* title;
    unichar key;
} buttons[] = {
    {skip, Choice::Skip, "Skip", 's'},
    {keep_both, Choice::KeepBoth, "Keep Both", 'k'},
    {replace, Choice::Replace, "Replace", 'r'},
    {stop, Choice::Stop, "Stop", 0},
};

std::string bytes_of(NSString* text) { return [text UTF8String] ?: ""; }

void add_text(PanelContent* content, double left, double top, double height, NSString* what,
              const Widget& like) {
    Widget text = like;
    text.area = content->area(left, top, width - margin - left, height);
    text.text = bytes_of(what);
    content->widgets.push_back(text);
}

Widget bold_text() {
    Widget text = {WidgetKind::text, {}};
    text.bold = true;
    return text;
}

void add_file(PanelContent* content, double top, NSString* title, const std::string& path) {
    const double left = margin + icon_side + 14;
    const Area icon = content->area(margin, top, icon_side, icon_side);
    content->widgets.push_back({WidgetKind::icon, icon, path});
    add_text(content, left, top + 2, 20, title, bold_text());
    Widget details = {WidgetKind::text, {}};
    details.alpha = dimmed_text_alpha;
    add_text(content, left, top + 22, 20, describe_file(path), details);
}

void add_check(PanelContent* content, double top, bool on) {
    Widget check = {WidgetKind::check, content->area(margin, top, 140, 24), "Apply to all",
                    apply_to_all, 13};
    check.key = 'a';
    check.on = on;
    content->widgets.push_back(check);
}

void add_buttons(PanelContent* content, double top) {
    double left = width - margin - button_width;
    for (const auto& button : buttons) {
        if (button.item == stop) left = margin;
        Widget made = {WidgetKind::button, content->area(left, top, button_width, button_height),
                       button.title, button.item, 13};
        made.key = button.key;
        content->widgets.push_back(made);
        left -= button_width + gap;
    }
}

PanelContent content_of(const Conflict& conflict, bool for_all) {
    PanelContent content;
    content.default_item = skip;
    content.cancel_item = stop;
    Widget question = bold_text();
    question.size = 14;
    add_text(&content, margin, margin - 4, 24, question_of(conflict), question);
    double top = margin + 36;
    add_file(&content, top, @"There already", conflict.target);
    top += row_height;
    add_file(&content, top, conflict.kind == Kind::Move ? @"To be moved" : @"To be copied",
             conflict.source);
    top += row_height + 4;
    if (conflict.sources_left > 0) {
        add_check(&content, top, for_all);
        top += 36;
    }
    add_buttons(&content, top);
    content.size = {content.pixels(width), content.pixels(top + button_height + margin)};
    return content;
}

}  // namespace

Answer ask_about(const Conflict& conflict, bool for_all) {
    WidgetPanel* panel = [WidgetPanel alloc];
    const auto hit = [panel](int item) {
        if (item != apply_to_all) return [NSApp stopModalWithCode:item];
        Widget* check = [panel content].widget(apply_to_all);
        check->on = !check->on;
        [panel widgetsChanged];
    };
    panel = [panel initWithTitle:@"Name Already Taken"
                         content:content_of(conflict, for_all)
                             hit:hit];
    const NSInteger code = [panel runModal];
    const Widget* check = [panel content].widget(apply_to_all);
    // If the panel ends without a button, the answer is Stop: nothing more is touched.
    Answer answer = {Choice::Stop, check && check->on};
    for (const auto& button : buttons) {
        if (button.item == code) answer.choice = button.choice;
    }
    [panel release];
    return answer;
}

}  // namespace operations
