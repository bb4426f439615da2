#include "panels/alert_layout.h"

#include <algorithm>
#include <cmath>

namespace {

// In points.
const double margin = 24, sign_side = 52, sign_gap = 20, text_width_wanted = 340;
const double message_size = 14, explanation_size = 12, message_gap = 8;
const double button_height = 30, button_gap = 10, button_padding = 18, button_least_width = 92;
const double buttons_gap = 24, button_text_size = 13;

}  // namespace

int alert_layout_t::pixels(double points) const {
    return static_cast<int>(std::lround(points * look_.scale));
}

alert_layout_t::alert_layout_t(const alert_words_t& words, const menu_look_t& look)
    : look_(look), sign_(words.sign), default_item_(words.default_item) {
    int buttons_width = 0;
    for (const alert_button_t& button : words.buttons) {
        text_t title = paragraph(look_, button.title, button_text_size, false, 0);
        const int width =
            std::max(text_width(title) + 2 * pixels(button_padding), pixels(button_least_width));
        buttons_width += width + pixels(button_gap);
        buttons_.push_back({button.item, std::move(title), {0, 0, width, pixels(button_height)}});
    }
    const bool has_sign = sign_ != alert_sign_t::none;
    const int left = pixels(margin) + (has_sign ? pixels(sign_side + sign_gap) : 0);
    const int column = std::max(pixels(text_width_wanted), buttons_width - pixels(button_gap));
    width_ = left + column + pixels(margin);
    sign_area_ = {pixels(margin), pixels(margin), pixels(sign_side), pixels(sign_side)};
    message_at_ = {left, pixels(margin)};
    place_texts(words, column);
}

void alert_layout_t::place_texts(const alert_words_t& words, int column) {
    message_ = paragraph(look_, words.message, message_size, true, column);
    explanation_ = paragraph(look_, words.explanation, explanation_size, false, column);
    int bottom = message_at_.y + text_height(message_);
    explanation_at_ = {message_at_.x, bottom + pixels(message_gap)};
    if (!words.explanation.empty()) bottom = explanation_at_.y + text_height(explanation_);
    if (sign_ != alert_sign_t::none) bottom = std::max(bottom, sign_area_.bottom());
    place_buttons(bottom + pixels(buttons_gap));
}

void alert_layout_t::place_buttons(int top) {
    int right = width_ - pixels(margin);
    for (button_t& button : buttons_) {
        button.area.left = right - button.area.width;
        button.area.top = top;
        right = button.area.left - pixels(button_gap);
    }
    height_ = top + pixels(button_height) + pixels(margin);
}

const alert_layout_t::button_t* alert_layout_t::button_at(point_t point) const {
    for (const button_t& button : buttons_) {
        if (button.area.contains(point)) return &button;
    }
    return nullptr;
}
