// What a panel shows, and where: widgets, in pixels from the upper left of its content. Main
// thread.
#pragma once

#include <Foundation/Foundation.h>

#include <string>
#include <vector>

#include "look/menu_look.h"
#include "panels/sign.h"
#include "x11/menu_geometry.h"

// The alpha of a text that says less than the text before it.
constexpr double dimmed_text_alpha = 0.7;

// A text is one line, shortened in its middle; a paragraph wraps.
enum class WidgetKind { text, paragraph, sign, icon, bar, button, check };

struct Widget {
    WidgetKind kind = WidgetKind::text;
    Area area = {};
    std::string text = "";  // UTF-8; of an icon the path of its file
    int item = 0;           // the number that a hit sends: above 0 for buttons and check boxes
    double size = 12;       // of the text, in points
    bool bold = false;
    double alpha = 1;        // of the text
    unichar key = 0;         // hits a button or check box
    bool disabled = false;   // cannot be hit
    bool on = false;         // of a check box
    double value = 0;        // of a bar, from 0 to 1; negative while unknown
    Sign sign = Sign::none;  // of a sign

    // Whether mouse or keys can hit the widget.
    bool can_be_hit() const;
    // Sets text and key from a title such as "_Skip", in which the letter after _ is the key.
    void set_title(const std::string& title);
};

struct PanelContent {
    MenuLook look;
    Extent size = {};
    std::vector<Widget> widgets;
    int default_item = 0;  // Return hits it; 0: none
    int cancel_item = 0;   // Escape and the window's close button hit it; 0: none

    // Makes an empty content in the present look of menus: light or dark, at the screen's scale.
    PanelContent();

    // These convert measures in points.
    int pixels(double points) const;
    Area area(double left, double top, double width, double height) const;

    // The width of a button with this title, at least `least` points.
    int button_width(const Widget& button, double least) const;

    // Exchanges left and right, for a language that is written from right to left.
    void mirror();

    // The first widget of this item, or null.
    Widget* widget(int item);
    const Widget* widget(int item) const;
    // The item that a click there would hit, or 0.
    int item_at(MenuPoint point) const;
    // The next item that can be hit or, with step -1, the one before, round and round. After 0
    // comes the first item, before 0 the last. Returns `item` itself when no item can be hit.
    int item_beside(int item, int step) const;
};
