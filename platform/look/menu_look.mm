#include "look/menu_look.h"

#include <host/text.h>

#include <AppKit/AppKit.h>

#include <algorithm>
#include <cmath>

#include "desktop/desktop_settings.h"

namespace {

const MenuPalette light_palette = {
    .panel = {0.988, 0.988, 0.992, 1},
    .border = {0, 0, 0, 0.20},
    .edge = {1, 1, 1, 0.9},
    .text = {0.11, 0.11, 0.13, 1},
    .dimmed_text = {0.11, 0.11, 0.13, 0.38},
    .hidden_text = {0.11, 0.11, 0.13, 0.62},
    .mark = {0.11, 0.11, 0.13, 0.50},
    .highlight = {0.133, 0.427, 0.925, 1},
    .highlight_text = {1, 1, 1, 1},
    .trail = {0.133, 0.427, 0.925, 0.20},
    .separator = {0, 0, 0, 0.10},
    .bookmark = {0.902, 0.380, 0.0, 1},
    .shadow = 0.20,
};

const MenuPalette dark_palette = {
    .panel = {0.157, 0.161, 0.176, 1},
    .border = {0, 0, 0, 0.55},
    .edge = {1, 1, 1, 0.14},
    .text = {0.937, 0.941, 0.953, 1},
    .dimmed_text = {0.937, 0.941, 0.953, 0.36},
    .hidden_text = {0.937, 0.941, 0.953, 0.60},
    .mark = {0.937, 0.941, 0.953, 0.55},
    .highlight = {0.196, 0.467, 0.933, 1},
    .highlight_text = {1, 1, 1, 1},
    .trail = {0.196, 0.467, 0.933, 0.38},
    .separator = {1, 1, 1, 0.13},
    .bookmark = {1.0, 0.620, 0.235, 1},
    .shadow = 0.42,
};

const double default_font_size = 13;

const MenuPalette* chosen_palette() {
    NSString* wanted = [[NSUserDefaults standardUserDefaults] stringForKey:@"MenuAppearance"];
    if ([wanted isEqualToString:@"light"]) return &light_palette;
    if ([wanted isEqualToString:@"dark"]) return &dark_palette;
    return desktop_prefers_dark() ? &dark_palette : &light_palette;
}

double chosen_scale(const char* server_resources) {
    const double wanted = [[NSUserDefaults standardUserDefaults] doubleForKey:@"GSScaleFactor"];
    return wanted > 0 ? std::clamp(wanted, 0.5, 8.0) : desktop_scale(server_resources);
}

int pixels(double scale, double points) {
    return std::max(1, static_cast<int>(std::lround(scale * points)));
}

double luminance(const Color& color) {
    return 0.2126 * color.red + 0.7152 * color.green + 0.0722 * color.blue;
}

double contrast(const Color& one, const Color& other) {
    const double a = std::pow(luminance(one), 2.2) + 0.05;
    const double b = std::pow(luminance(other), 2.2) + 0.05;
    return std::max(a, b) / std::min(a, b);
}

Color mixed(const Color& from, const Color& to, double share) {
    return {from.red + (to.red - from.red) * share, from.green + (to.green - from.green) * share,
            from.blue + (to.blue - from.blue) * share, from.alpha};
}

void set_font(MenuLook* look, NSFont* font) {
    look->family = desktop_font_family();
    look->font_size = font ? std::clamp<double>([font pointSize], 6, 96) : default_font_size;
    look->bold = look->italic = false;
    if (!font) return;
    const NSFontTraitMask traits = [[NSFontManager sharedFontManager] traitsOfFont:font];
    look->bold = traits & NSBoldFontMask;
    look->italic = traits & NSItalicFontMask;
    look->family = drawn_family(*look, font);
}

// Numbers are points at the default font size. Rows grow and shrink with the font.
void set_measures(MenuLook* look) {
    const double scale = look->scale, size = look->font_size;
    const double growth = size / default_font_size;
    look->hairline = pixels(scale, 1);
    look->row_height = pixels(scale, size * 1.35 + 6.5);
    look->separator_height = pixels(scale, 5 + 6 * growth);
    look->inset = pixels(scale, 5);
    look->padding = pixels(scale, 4 + 5 * growth);
    look->gap = pixels(scale, 2 + 6 * growth);
    look->image_side = pixels(scale, 16 * growth);
    look->mark_width = pixels(scale, 9 * growth);
    look->arrow_height = pixels(scale, 10 + 8 * growth);
    look->title_limit = pixels(scale, size * 34);
    look->least_width = pixels(scale, size * 10);
    look->radius = pixels(scale, 8);
    look->row_radius = pixels(scale, 5);
    look->shadow_extent = pixels(scale, 22);
}

}  // namespace

MenuLook menu_look(NSFont* font, const char* server_resources) {
    MenuLook look = {};
    look.palette = chosen_palette();
    look.scale = chosen_scale(server_resources);
    look.mirrored = text_is_mirrored();
    set_font(&look, font);
    set_measures(&look);
    return look;
}

std::string drawn_family(const MenuLook& look, NSFont* font) {
    NSString* family = [font familyName];
    NSString* system = [[NSFont systemFontOfSize:0] familyName];
    if (!family || [family isEqualToString:system]) return look.family;
    return [family UTF8String] ?: look.family;
}

bool is_dark(const MenuLook& look) {
    return luminance(look.palette->panel) < luminance(look.palette->text);
}

Color readable(const MenuLook& look, Color color) {
    const Color wanted = color;
    for (double share = 0.1; share < 1; share += 0.1) {
        if (contrast(color, look.palette->panel) >= 2.6) break;
        color = mixed(wanted, look.palette->text, share);
    }
    return color;
}
