// What an alert says, and where everything stands in it. Pixels from the upper left of its content.
#pragma once

#include <string>
#include <vector>

#include "look/menu_look.h"
#include "look/menu_text.h"
#include "x11/menu_geometry.h"

enum class alert_sign_t { stop, note, caution, none };

struct alert_button_t {
    int item;
    std::string title;
};

struct alert_words_t {
    alert_sign_t sign;
    std::string message, explanation;
    std::vector<alert_button_t> buttons;  // from the right
    int default_item, cancel_item;        // 0: none
};

class alert_layout_t {
  public:
    struct button_t {
        int item;
        text_t title;
        area_t area;
    };

    alert_layout_t(const alert_words_t& words, const menu_look_t& look);

    const menu_look_t& look() const { return look_; }
    int width() const { return width_; }
    int height() const { return height_; }
    alert_sign_t sign() const { return sign_; }
    const area_t& sign_area() const { return sign_area_; }
    const text_t& message() const { return message_; }
    const text_t& explanation() const { return explanation_; }
    point_t message_at() const { return message_at_; }
    point_t explanation_at() const { return explanation_at_; }
    const std::vector<button_t>& buttons() const { return buttons_; }
    int default_item() const { return default_item_; }
    // The button there, null for none.
    const button_t* button_at(point_t point) const;
    // Of a measure in points.
    int pixels(double points) const;

  private:
    void place_texts(const alert_words_t& words, int column);
    void place_buttons(int top);

    menu_look_t look_;
    alert_sign_t sign_;
    int default_item_;
    int width_ = 0, height_ = 0;
    area_t sign_area_ = {};
    text_t message_, explanation_;
    point_t message_at_ = {}, explanation_at_ = {};
    std::vector<button_t> buttons_;
};
