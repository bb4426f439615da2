#include "look/menu_look.h"

#include <host/text.h>

#include <AppKit/AppKit.h>

#include <algorithm>
#include <cmath>
#include <deque>

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

// Nothing is shown by a faint shade alone.
const MenuPalette contrast_light_palette = {
    .panel = {1, 1, 1, 1},
    .border = {0, 0, 0, 1},
    .edge = {1, 1, 1, 1},
    .text = {0, 0, 0, 1},
    .dimmed_text = {0, 0, 0, 0.60},
    .hidden_text = {0, 0, 0, 0.80},
    .mark = {0, 0, 0, 1},
    .highlight = {0, 0, 0, 1},
    .highlight_text = {1, 1, 1, 1},
    .trail = {0, 0, 0, 0.25},
    .separator = {0, 0, 0, 0.70},
    .bookmark = {0, 0, 0, 1},
    .shadow = 0.20,
};

const MenuPalette contrast_dark_palette = {
    .panel = {0, 0, 0, 1},
    .border = {1, 1, 1, 1},
    .edge = {0, 0, 0, 1},
    .text = {1, 1, 1, 1},
    .dimmed_text = {1, 1, 1, 0.62},
    .hidden_text = {1, 1, 1, 0.80},
    .mark = {1, 1, 1, 1},
    .highlight = {1, 1, 1, 1},
    .highlight_text = {0, 0, 0, 1},
    .trail = {1, 1, 1, 0.35},
    .separator = {1, 1, 1, 0.70},
    .bookmark = {1, 1, 1, 1},
    .shadow = 0.42,
};

const double default_font_size = 13, default_drag_distance = 5, least_highlight_contrast = 2.6;

bool wants_dark(DesktopSettings& desktop) {
    NSString* wanted = [[NSUserDefaults standardUserDefaults] stringForKey:@"MenuAppearance"];
    if ([wanted isEqualToString:@"light"]) return false;
    if ([wanted isEqualToString:@"dark"]) return true;
    return desktop.prefers_dark();
}

double chosen_scale(DesktopSettings& desktop, const char* server_resources) {
    const double wanted = [[NSUserDefaults standardUserDefaults] doubleForKey:@"GSScaleFactor"];
    return wanted > 0 ? std::clamp(wanted, 0.5, 8.0) : desktop.scale(server_resources);
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

// Palettes stay, because looks point to them; a desktop has few accents in a process's life.
const MenuPalette* palette_with(const MenuPalette& base, const DesktopSettings::Accent& accent) {
    static auto& made = *new std::deque<MenuPalette>;
    const Color color = {accent.red, accent.green, accent.blue, 1};
    for (const MenuPalette& each : made) {
        const Color& made_with = each.highlight;
        const bool is_same = each.panel.red == base.panel.red && made_with.red == color.red &&
                             made_with.green == color.green && made_with.blue == color.blue;
        if (is_same) return &each;
    }
    MenuPalette palette = base;
    palette.highlight = palette.trail = color;
    palette.trail.alpha = base.trail.alpha;
    const Color white = {1, 1, 1, 1}, black = {0, 0, 0, 1};
    palette.highlight_text = contrast(white, color) >= least_highlight_contrast ? white : black;
    return &made.emplace_back(palette);
}

const MenuPalette* chosen_palette(DesktopSettings& desktop) {
    const bool is_dark = wants_dark(desktop);
    if (desktop.wants_high_contrast()) {
        return is_dark ? &contrast_dark_palette : &contrast_light_palette;
    }
    const MenuPalette& base = is_dark ? dark_palette : light_palette;
    const auto accent = desktop.accent();
    return accent ? palette_with(base, *accent) : &base;
}

void set_font(MenuLook* look, DesktopSettings& desktop, NSFont* font) {
    const double wanted = font ? [font pointSize] : desktop.font_size();
    look->family = desktop.font_family();
    look->font_size = wanted > 0 ? std::clamp(wanted, 6.0, 96.0) : default_font_size;
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
    DesktopSettings desktop;
    MenuLook look = {};
    look.palette = chosen_palette(desktop);
    look.scale = chosen_scale(desktop, server_resources);
    look.mirrored = text_is_mirrored();
    look.icon_theme = desktop.icon_theme();
    set_font(&look, desktop, font);
    set_measures(&look);
    const double drag = desktop.drag_distance();
    look.drag_distance = pixels(look.scale, drag > 0 && drag <= 100 ? drag : default_drag_distance);
    return look;
}

void set_scale(MenuLook* look, double scale) {
    look->drag_distance = pixels(scale, look->drag_distance / look->scale);
    look->scale = scale;
    set_measures(look);
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
    for (int tenths = 1; tenths <= 10; tenths++) {
        if (contrast(color, look.palette->panel) >= 2.6) break;
        color = mixed(wanted, look.palette->text, tenths / 10.0);
    }
    return color;
}
