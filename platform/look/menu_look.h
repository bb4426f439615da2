// How menus look: colours, type and measures. This is the one place to change the look.
#pragma once

#include <string>

@class NSFont;

struct Color {
    double red, green, blue, alpha;
};

struct MenuPalette {
    Color panel, border, edge;                   // the edge is the hairline inside the border
    Color text, dimmed_text, hidden_text, mark;  // dimmed: disabled; hidden: of hidden files
    Color highlight, highlight_text;
    Color trail;  // behind the rows that have led to the level with the highlight
    Color separator;
    Color bookmark;
    double shadow;  // darkest alpha
};

// Every measure is in pixels of the screen, whole so that lines stay sharp.
struct MenuLook {
    const MenuPalette* palette;
    double scale;        // pixels a point
    std::string family;  // of the interface font
    double font_size;    // points
    bool bold, italic;
    bool mirrored;  // left and right are exchanged, for a language from right to left
    int hairline;
    int row_height;
    int separator_height;
    int inset;               // panel edge to the rows' highlight
    int padding;             // highlight's edge to its text
    int gap;                 // between image, text and mark
    int image_side;          // room for an image of the usual size
    int mark_width;          // chevron, check mark
    int arrow_height;        // strip that scrolls
    int title_limit;         // widest title
    int least_width;         // of a panel
    int radius;              // panel's corners
    int row_radius;          // highlight's corners
    int shadow_extent;       // room around the panel for the shadow, when there is one
    int drag_distance;       // that the pointer moves before a press becomes a drag
    std::string icon_theme;  // empty for the usual one
};

// The look for menus in `font` (nil: the desktop's), by the user default MenuAppearance ("light",
// "dark" or "auto"), the desktop's settings of this moment and the scale (GSScaleFactor, else the
// desktop's).
MenuLook menu_look(NSFont* font, const char* server_resources);

// Gives the look another scale, which all its measures follow.
void set_scale(MenuLook* look, double scale);

// The family in which a font's text is drawn: GNUstep's system font stands for the desktop's.
std::string drawn_family(const MenuLook& look, NSFont* font);

// Whether the menus have light text on dark ground.
bool is_dark(const MenuLook& look);

// `color`, moved towards the text's colour until it is readable on the panel.
Color readable(const MenuLook& look, Color color);
