#include "panels/alert_content.h"

#include <algorithm>

#include "look/menu_text.h"

namespace {

// Measures in points.
const double margin = 24, sign_side = 52, sign_gap = 20, text_width_wanted = 340;
const double wide_text_width = 560, most_height = 240;  // of texts in the usual width
const double message_size = 14, explanation_size = 12, message_gap = 8;
const double explanation_alpha = 0.78;
const double button_height = 30, button_gap = 10, button_least_width = 92;
const double buttons_gap = 24, button_text_size = 13;

// A button as wide as its title needs.
Widget button_of(const PanelContent& content, const AlertButton& button) {
    Widget made = {WidgetKind::button, {0, 0, 0, content.pixels(button_height)}};
    made.text = button.title;
    made.item = button.item;
    made.size = button_text_size;
    made.area.width = content.button_width(made, button_least_width);
    return made;
}

// A text that wraps at the width of `area` and is as high as its lines need.
Widget text_of(const PanelContent& content, Area area, const std::string& words, double size,
               bool bold) {
    area.height = text_height(paragraph(content.look, words, size, bold, area.width));
    Widget made = {WidgetKind::paragraph, area};
    made.text = words;
    made.size = size;
    made.bold = bold;
    return made;
}

const glong longest_line = 300;  // in characters

// Lines that no alert has room for, such as paths of thousands of characters, lose their middle.
std::string without_middles(const std::string& text) {
    std::string shown;
    for (size_t begin = 0, end; begin <= text.size(); begin = end + 1) {
        end = std::min(text.find('\n', begin), text.size());
        const std::string line = text.substr(begin, end - begin);
        const glong length = g_utf8_strlen(line.c_str(), -1), half = longest_line / 2;
        if (begin > 0) shown += '\n';
        if (length <= longest_line) {
            shown += line;
            continue;
        }
        const char* const tail = g_utf8_offset_to_pointer(line.c_str(), length - half);
        const auto head = g_utf8_offset_to_pointer(line.c_str(), half) - line.c_str();
        shown += line.substr(0, static_cast<size_t>(head)) + "\u2026" + tail;
    }
    return shown;
}

// The usual width, unless the texts would make a tower of it.
int column_width(const PanelContent& content, const AlertWords& words) {
    const int usual = content.pixels(text_width_wanted);
    int height = 0;
    for (const auto& [text, size] :
         {std::pair(words.message, message_size), std::pair(words.explanation, explanation_size)}) {
        height += text_of(content, {0, 0, usual, 0}, text, size, size == message_size).area.height;
    }
    return height > content.pixels(most_height) ? content.pixels(wide_text_width) : usual;
}

// Returns where the texts and the sign end.
int add_texts(PanelContent* content, const AlertWords& words, int left, int column) {
    const int top = content->pixels(margin);
    const Widget message =
        text_of(*content, {left, top, column, 0}, words.message, message_size, true);
    const int below = message.area.bottom() + content->pixels(message_gap);
    Widget explanation =
        text_of(*content, {left, below, column, 0}, words.explanation, explanation_size, false);
    explanation.alpha = explanation_alpha;
    content->widgets.insert(content->widgets.end(), {message, explanation});
    const int bottom =
        words.explanation.empty() ? message.area.bottom() : explanation.area.bottom();
    return words.sign == Sign::none ? bottom : std::max(bottom, top + content->pixels(sign_side));
}

void add_sign(PanelContent* content, Sign sign) {
    Widget made = {WidgetKind::sign, content->area(margin, margin, sign_side, sign_side)};
    made.sign = sign;
    content->widgets.push_back(made);
}

void add_buttons(PanelContent* content, std::vector<Widget> buttons, int top) {
    int right = content->size.width - content->pixels(margin);
    for (Widget& button : buttons) {
        button.area.left = right - button.area.width;
        button.area.top = top;
        right = button.area.left - content->pixels(button_gap);
        content->widgets.push_back(button);
    }
}

PanelContent laid_out(const AlertWords& words, PanelContent content) {
    content.default_item = words.default_item;
    content.cancel_item = words.cancel_item ? words.cancel_item : words.default_item;
    const int gap = content.pixels(button_gap), border = content.pixels(margin);
    std::vector<Widget> buttons;
    int buttons_width = -gap;
    for (const AlertButton& button : words.buttons) {
        buttons.push_back(button_of(content, button));
        buttons_width += buttons.back().area.width + gap;
    }
    const bool has_sign = words.sign != Sign::none;
    const int left = border + (has_sign ? content.pixels(sign_side + sign_gap) : 0);
    const int column = std::max(column_width(content, words), buttons_width);
    if (has_sign) add_sign(&content, words.sign);
    const int top = add_texts(&content, words, left, column) + content.pixels(buttons_gap);
    content.size = {left + column + border, top + content.pixels(button_height) + border};
    add_buttons(&content, std::move(buttons), top);
    return content;
}

}  // namespace

PanelContent alert_content(const AlertWords& words) {
    AlertWords shown = words;
    shown.message = without_middles(words.message);
    shown.explanation = without_middles(words.explanation);
    return PanelContent::fitting([&](const PanelContent& empty) { return laid_out(shown, empty); });
}
