#include "operations_ui/conflict_panel.h"

#include <host/text.h>

#include <algorithm>

#include "operations_ui/operation_texts.h"
#include "panels/widget_panel.h"

namespace operations {

namespace {

constexpr double least_width = 500, margin = 24, icon_side = 44, row_height = 60;
constexpr double least_button_width = 96, check_width = 320, button_height = 30, gap = 10,
                 stop_distance = 14;

enum Item { none, skip, keep_both, replace, stop, apply_to_all };

const struct {
    Item item;
    Choice choice;
    const char* title;  // the letter after _ is its key
} buttons[] = {
    {skip, Choice::Skip, to_translate("_Skip")},
    {keep_both, Choice::KeepBoth, to_translate("_Keep Both")},
    {replace, Choice::Replace, to_translate("_Replace")},
    {stop, Choice::Stop, to_translate("Stop")},
};

std::string bytes_of(NSString* text) { return [text UTF8String] ?: ""; }

// Its width is the content's.
void add_text(PanelContent* content, double left, double top, double height, NSString* what,
              const Widget& like) {
    Widget text = like;
    text.area = content->area(left, top, 0, height);
    text.area.width = content->size.width - content->pixels(margin) - text.area.left;
    text.text = bytes_of(what);
    content->widgets.push_back(text);
}

NSString* string_of(const char* text) { return [NSString stringWithUTF8String:text] ?: @""; }

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
    Widget check = {WidgetKind::check, content->area(margin, top, check_width, 24), "",
                    apply_to_all, 13};
    check.set_title(translated("_Apply to all"));
    check.on = on;
    content->widgets.push_back(check);
}

std::vector<Widget> made_buttons(const PanelContent& content) {
    std::vector<Widget> made;
    for (const auto& button : buttons) {
        Widget widget = {WidgetKind::button, content.area(margin, 0, 0, button_height), "",
                         button.item, 13};
        widget.set_title(translated(button.title));
        widget.area.width = content.button_width(widget, least_button_width);
        made.push_back(widget);
    }
    return made;
}

// As wide as the buttons need, whose titles decide how wide they are.
int content_width(const PanelContent& content, const std::vector<Widget>& made) {
    int width = content.pixels(2 * margin + stop_distance);
    for (const Widget& button : made) width += button.area.width + content.pixels(gap);
    return std::max(width, content.pixels(least_width));
}

// The buttons from the right; Stop keeps its distance.
void add_buttons(PanelContent* content, std::vector<Widget> made, double top) {
    int right = content->size.width - content->pixels(margin);
    for (Widget& button : made) {
        button.area.top = content->pixels(top);
        if (button.item != stop) button.area.left = right - button.area.width;
        right = button.area.left - content->pixels(gap);
        content->widgets.push_back(button);
    }
}

PanelContent content_of(const Conflict& conflict, bool for_all, PanelContent content) {
    const std::vector<Widget> made = made_buttons(content);
    content.size.width = content_width(content, made);
    content.default_item = skip;
    content.cancel_item = stop;
    Widget question = bold_text();
    question.size = 14;
    add_text(&content, margin, margin - 4, 24, question_of(conflict), question);
    double top = margin + 36;
    add_file(&content, top, string_of(translated("There already")), conflict.target);
    top += row_height;
    add_file(&content, top,
             string_of(conflict.kind == Kind::Move ? translated("To be moved")
                                                   : translated("To be copied")),
             conflict.source);
    top += row_height + 4;
    if (conflict.sources_left > 0) {
        add_check(&content, top, for_all);
        top += 36;
    }
    add_buttons(&content, made, top);
    content.size.height = content.pixels(top + button_height + margin);
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
    panel = [panel initWithTitle:string_of(translated("Name Already Taken"))
                         content:PanelContent::fitting([&](const PanelContent& empty) {
                             return content_of(conflict, for_all, empty);
                         })
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
