// What a panel shows, and where: widgets, in pixels from the upper left of its content. Main
// thread.
#pragma once

#include <Foundation/Foundation.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "look/menu_look.h"
#include "panels/sign.h"
#include "x11/menu_geometry.h"

// The alpha of a text that says less than the text before it.
constexpr double dimmed_text_alpha = 0.7;

// A text is one line, shortened in its middle; a paragraph wraps. A choice is a button that opens a
// menu. Of the rows of one group one is on; the arrow keys move along them. A field is a line of
// text that the user writes. A frame is the box around rows, and a picture shows `picture`.
enum class WidgetKind {
    text,
    paragraph,
    sign,
    icon,
    bar,
    button,
    check,
    choice,
    row,
    field,
    frame,
    picture
};

struct _cairo_surface;

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
    int group = 0;           // of a row: above 0
    std::shared_ptr<_cairo_surface> picture = {};
    std::string hint = "";   // of an empty field: what to write there
    std::string label = "";  // what the value of a choice or field is for, in words

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

    // Makes the scale smaller when a panel of this size, in points, is not to be larger than the
    // screen under the pointer.
    void fit(double width, double height);

    // The content that `lay_out` makes of an empty one, whose scale is smaller if it would else be
    // larger than that screen.
    static PanelContent fitting(const std::function<PanelContent(PanelContent)>& lay_out);

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
    // The next item that can be hit (of a group of rows only the one that is on) or, with step -1,
    // the one before, round and round. After 0 comes the first item, before 0 the last. Returns
    // `item` itself when no item can be hit.
    int item_beside(int item, int step) const;
    // The same within the group of a row, without going round.
    int row_beside(int item, int step) const;
};
