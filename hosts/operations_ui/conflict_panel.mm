#include "operations_ui/conflict_panel.h"

#include "operations_ui/operation_texts.h"
#include "operations_ui/parts_panel.h"

namespace operations {

namespace {

constexpr double width = 500, margin = 24, icon_side = 44, row_height = 60;
constexpr double button_width = 96, button_height = 30, gap = 10;

enum Item { none, skip, keep_both, replace, stop, apply_to_all };

// From the right; Stop keeps its distance.
const struct {
    Item item;
    Choice choice;
    const char* title;
    unichar key;
} buttons[] = {
    {skip, Choice::Skip, "Skip", 's'},
    {keep_both, Choice::KeepBoth, "Keep Both", 'k'},
    {replace, Choice::Replace, "Replace", 'r'},
    {stop, Choice::Stop, "Stop", cancel_key},
};

std::string bytes_of(NSString* text) { return [text UTF8String] ?: ""; }

Part text(double left, double top, double height, NSString* what) {
    return {PartKind::Text, left, top, width - margin - left, height, bytes_of(what)};
}

void add_file(std::vector<Part>& parts, double top, NSString* title, const std::string& path) {
    const double left = margin + icon_side + 14;
    parts.push_back({PartKind::Icon, margin, top, icon_side, icon_side, path});
    Part name = text(left, top + 2, 20, title);
    name.bold = true;
    parts.push_back(name);
    Part details = text(left, top + 22, 20, DescribeFile(path));
    details.dim = true;
    parts.push_back(details);
}

void add_buttons(std::vector<Part>& parts, double top) {
    double left = width - margin - button_width;
    for (const auto& button : buttons) {
        if (button.item == stop) left = margin;
        Part part = {PartKind::Button, left, top, button_width, button_height, button.title};
        part.item = button.item;
        part.size = 13;
        part.chief = button.item == skip;
        part.key = button.key;
        parts.push_back(part);
        left -= button_width + gap;
    }
}

// Returns the height that they take.
double add_all(std::vector<Part>& parts, const Conflict& conflict, bool for_all) {
    Part question = text(margin, margin - 4, 24, QuestionOf(conflict));
    question.bold = true;
    question.size = 14;
    parts.push_back(question);
    double top = margin + 36;
    add_file(parts, top, @"There already", conflict.target);
    top += row_height;
    add_file(parts, top, conflict.kind == Kind::Move ? @"To be moved" : @"To be copied",
             conflict.source);
    top += row_height + 4;
    if (conflict.sources_left > 0) {
        Part check = {PartKind::Check, margin, top, 140, 24, "Apply to all"};
        check.item = apply_to_all;
        check.size = 13;
        check.key = 'a';
        check.on = for_all;
        parts.push_back(check);
        top += 36;
    }
    add_buttons(parts, top);
    return top + button_height + margin;
}

}  // namespace

Answer AskAbout(const Conflict& conflict, bool for_all) {
    std::vector<Part> parts;
    const double height = add_all(parts, conflict, for_all);
    PartsPanel* panel = [PartsPanel alloc];
    const Hit hit = [panel](int item) {
        if (item != apply_to_all) return [NSApp stopModalWithCode:item];
        Part* check = [panel partOfItem:item];
        check->on = !check->on;
        [panel partsChanged];
    };
    panel = [panel initWithTitle:@"Name Already Taken"
                           width:width
                          height:height
                           parts:parts
                             hit:hit];
    const NSInteger code = [panel runModal];
    const Part* check = [panel partOfItem:apply_to_all];
    // Anything but a button ends it as Stop: nothing more is touched.
    Answer answer = {Choice::Stop, check && check->on};
    for (const auto& button : buttons) {
        if (button.item == code) answer.choice = button.choice;
    }
    [panel release];
    return answer;
}

}  // namespace operations
