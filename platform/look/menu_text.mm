#include "look/menu_text.h"

#include <AppKit/AppKit.h>
#include <string.h>

#include <algorithm>
#include <vector>

namespace {

const NSUInteger longest_title = 2000;
const char *const right_to_left_mark = "\u200f", *const left_to_right_mark = "\u200e";
// Between these a text has its own direction, that of its first letter.
const char *const first_strong_isolate = "\u2068", *const end_of_isolate = "\u2069";
const char* const between_facts = "  \u00b7  ";

// One context for all text: it keeps the fonts. Glyphs stand where the type designer put them, not
// on whole pixels, and are the same on every kind of surface.
PangoContext* text_context() {
    static PangoContext* context = [] {
        PangoContext* made = pango_font_map_create_context(pango_cairo_font_map_get_default());
        cairo_font_options_t* options = cairo_font_options_create();
        cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
        cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_SLIGHT);
        cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
        pango_cairo_context_set_font_options(made, options);
        cairo_font_options_destroy(options);
        pango_context_set_round_glyph_positions(made, FALSE);
        return made;
    }();
    return context;
}

bool is_surrogate(unichar c) { return c >= 0xD800 && c <= 0xDFFF; }

bool reorders(unichar c) {
    return (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069) || c == 0x200E ||
           c == 0x200F || c == 0x061C || (c >= 0x206A && c <= 0x206F);
}

// Whether the character is invisible, so that two different names look alike.
bool hides(unichar c) {
    return c == 0x00AD || c == 0x180E || c == 0x200B || (c >= 0x2060 && c <= 0x2064) ||
           c == 0xFEFF || (c >= 0xFFF9 && c <= 0xFFFB);
}

unichar visible(unichar c) {
    if (c == '\n' || c == '\r') return 0x21B5;  // the return arrow
    if (c == '\t') return 0x21E5;               // the tabulator arrow
    const bool breaks = c < 0x20 || (c >= 0x7F && c < 0xA0) || c == 0x2028 || c == 0x2029;
    return breaks || reorders(c) || hides(c) ? 0xFFFD : c;
}

// Works in place. Unpaired surrogates are no characters and are replaced, too.
void make_visible(std::vector<unichar>* text) {
    for (size_t i = 0; i < text->size(); i++) {
        unichar& c = (*text)[i];
        const bool pair = c >= 0xD800 && c < 0xDC00 && i + 1 < text->size() &&
                          (*text)[i + 1] >= 0xDC00 && (*text)[i + 1] <= 0xDFFF;
        if (pair) {
            i++;
        } else {
            c = is_surrogate(c) ? 0xFFFD : visible(c);
        }
    }
}

std::string utf8(const std::vector<unichar>& text) {
    if (text.empty()) return std::string();
    glong length = 0;
    const files::TextOwner converted(
        g_utf16_to_utf8(text.data(), text.size(), nullptr, &length, nullptr));
    return converted ? std::string(converted.get(), length) : std::string();
}

std::vector<unichar> characters(NSString* title) {
    const NSUInteger length = std::min([title length], longest_title);
    std::vector<unichar> text(length);
    if (length) [title getCharacters:text.data() range:NSMakeRange(0, length)];
    const NSUInteger tail = 200;
    if ([title length] > length) {
        [title getCharacters:text.data() + length - tail
                       range:NSMakeRange([title length] - tail, tail)];
        text[length - tail - 1] = 0x2026;
    }
    make_visible(&text);
    return text;
}

// The number of UTF-8 bytes of the first `count` characters.
guint byte_offset(const std::vector<unichar>& text, NSUInteger count) {
    const auto end = text.begin() + std::min<size_t>(count, text.size());
    return utf8(std::vector<unichar>(text.begin(), end)).size();
}

PangoFontDescription* description(const std::string& family, double size, bool bold, bool italic) {
    PangoFontDescription* font = pango_font_description_new();
    pango_font_description_set_family(font, family.c_str());
    pango_font_description_set_absolute_size(font, size * PANGO_SCALE);
    if (bold) pango_font_description_set_weight(font, PANGO_WEIGHT_BOLD);
    if (italic) pango_font_description_set_style(font, PANGO_STYLE_ITALIC);
    return font;
}

struct Run {
    PangoAttrList* list;
    guint start, end;

    void add(PangoAttribute* attribute) const {
        attribute->start_index = start;
        attribute->end_index = end;
        pango_attr_list_insert(list, attribute);
    }
};

void add_color(const Run& run, const MenuLook& look, NSColor* color) {
    color = [color colorUsingColorSpaceName:NSDeviceRGBColorSpace];
    if (!color) return;
    const Color wanted = {[color redComponent],
                          [color greenComponent],
                          [color blueComponent],
                          [color alphaComponent]};
    const Color shown = readable(look, wanted);
    run.add(pango_attr_foreground_new(shown.red * 65535, shown.green * 65535, shown.blue * 65535));
}

void add_font(const Run& run, const MenuLook& look, NSFont* font) {
    const NSFontTraitMask traits = [[NSFontManager sharedFontManager] traitsOfFont:font];
    const double size = std::clamp<double>([font pointSize], 4, 200) * look.scale;
    PangoFontDescription* shown = description(drawn_family(look, font), size,
                                              traits & NSBoldFontMask, traits & NSItalicFontMask);
    run.add(pango_attr_font_desc_new(shown));
    pango_font_description_free(shown);
}

PangoAttrList* attributes(const MenuLook& look, NSAttributedString* title,
                          const std::vector<unichar>& text, bool plain) {
    PangoAttrList* list = pango_attr_list_new();
    NSRange range = NSMakeRange(0, 0);
    for (NSUInteger at = 0; at < [title length] && at < text.size(); at = NSMaxRange(range)) {
        NSDictionary* found = [title attributesAtIndex:at effectiveRange:&range];
        const Run run = {list, byte_offset(text, at), byte_offset(text, NSMaxRange(range))};
        NSColor* color = [found objectForKey:NSForegroundColorAttributeName];
        NSFont* font = [found objectForKey:NSFontAttributeName];
        if (color && !plain) add_color(run, look, color);
        if (font) add_font(run, look, font);
        if ([[found objectForKey:NSUnderlineStyleAttributeName] intValue]) {
            run.add(pango_attr_underline_new(PANGO_UNDERLINE_SINGLE));
        }
        if ([[found objectForKey:NSStrikethroughStyleAttributeName] intValue]) {
            run.add(pango_attr_strikethrough_new(TRUE));
        }
    }
    return list;
}

}  // namespace

std::string visible_title(NSString* title) { return utf8(characters(title)); }

std::string folded(const std::string& text) {
    const files::TextOwner lower(g_utf8_casefold(text.data(), text.size()));
    const files::TextOwner apart(g_utf8_normalize(lower.get(), -1, G_NORMALIZE_ALL));
    std::string result;
    for (const gchar* at = apart.get(); at && *at; at = g_utf8_next_char(at)) {
        if (!g_unichar_ismark(g_utf8_get_char(at))) result.append(at, g_utf8_next_char(at) - at);
    }
    return result;
}

TextLayout line_text(const MenuLook& look, const std::string& bytes) {
    TextLayout text(pango_layout_new(text_context()));
    pango_layout_set_single_paragraph_mode(text.get(), TRUE);
    PangoFontDescription* font =
        description(look.family, look.font_size * look.scale, look.bold, look.italic);
    pango_layout_set_font_description(text.get(), font);
    pango_font_description_free(font);
    pango_layout_set_text(text.get(), bytes.data(), static_cast<int>(bytes.size()));
    return text;
}

TextLayout item_text(const MenuLook& look, NSMenuItem* item, bool plain) {
    NSAttributedString* attributed = [item attributedTitle];
    const std::vector<unichar> title = characters(attributed ? [attributed string] : [item title]);
    TextLayout text = line_text(look, utf8(title));
    if (attributed) {
        PangoAttrList* list = attributes(look, attributed, title, plain);
        pango_layout_set_attributes(text.get(), list);
        pango_attr_list_unref(list);
    }
    return text;
}

static bool runs_left_somewhere(const std::string& text) {
    for (const gchar* at = text.c_str(); *at; at = g_utf8_next_char(at)) {
        switch (g_unichar_get_script(g_utf8_get_char(at))) {
            case G_UNICODE_SCRIPT_ARABIC:
            case G_UNICODE_SCRIPT_HEBREW:
            case G_UNICODE_SCRIPT_SYRIAC:
            case G_UNICODE_SCRIPT_THAANA:
                return true;
            default:
                break;
        }
    }
    return false;
}

static bool begins_word(const std::string& text, size_t place) {
    return place == 0 || strchr(" \"(", text[place - 1]) ||
           (place >= 3 && text.compare(place - 3, 3, "\u201c") == 0);
}

// The text with the marks of a sentence from right to left: it may begin with a name in Latin
// letters, and a path within it keeps its first slash or tilde at its left.
static std::string marked_sentence(const std::string& text) {
    std::string marked = right_to_left_mark;
    for (size_t i = 0; i < text.size(); i++) {
        const bool begins_path = (text[i] == '/' || text[i] == '~') && begins_word(text, i);
        if (begins_path) marked += left_to_right_mark;
        marked += text[i];
    }
    return marked;
}

// Like visible_title(), but keeps line breaks, and marks the sentences of a mirrored panel.
static std::string visible_lines(const MenuLook& look, const std::string& text) {
    NSString* whole = [NSString stringWithUTF8String:text.c_str()] ?: @"";
    NSMutableArray* lines = [NSMutableArray array];
    for (NSString* line in [whole componentsSeparatedByString:@"\n"]) {
        const std::string visible = visible_title(line);
        const bool is_marked = look.mirrored && runs_left_somewhere(visible);
        const std::string shown = is_marked ? marked_sentence(visible) : visible;
        [lines addObject:[NSString stringWithUTF8String:shown.c_str()]];
    }
    return [[lines componentsJoinedByString:@"\n"] UTF8String];
}

static TextLayout text_layout(const MenuLook& look, const std::string& text, double size,
                              bool bold) {
    TextLayout layout(pango_layout_new(text_context()));
    PangoFontDescription* font = description(look.family, size * look.scale, bold, false);
    pango_layout_set_font_description(layout.get(), font);
    pango_font_description_free(font);
    pango_layout_set_text(layout.get(), text.data(), static_cast<int>(text.size()));
    return layout;
}

TextLayout facts_text(const MenuLook& look, const std::vector<std::string>& facts, double size) {
    std::string line = look.mirrored ? right_to_left_mark : left_to_right_mark;
    for (const std::string& fact : facts) {
        if (&fact != &facts.front()) line += between_facts;
        NSString* characters = [NSString stringWithUTF8String:fact.c_str()];
        line += first_strong_isolate + visible_title(characters) + end_of_isolate;
    }
    return text_layout(look, line, size, false);
}

TextLayout typed_text(const MenuLook& look, const std::string& text, double size) {
    TextLayout layout = text_layout(look, text, size, false);
    pango_layout_set_single_paragraph_mode(layout.get(), TRUE);
    return layout;
}

TextLayout paragraph(const MenuLook& look, const std::string& text, double size, bool bold,
                     int width) {
    TextLayout layout = text_layout(look, visible_lines(look, text), size, bold);
    if (width <= 0) return layout;
    pango_layout_set_width(layout.get(), width * PANGO_SCALE);
    pango_layout_set_wrap(layout.get(), PANGO_WRAP_WORD_CHAR);
    return layout;
}

std::vector<double> ends_of_characters(const MenuLook& look, const std::string& text) {
    const TextLayout layout = line_text(look, text);
    PangoLayoutLine* const line = pango_layout_get_line_readonly(layout.get(), 0);
    std::vector<double> ends(text.size());
    for (size_t i = 0; i < text.size(); i++) {
        int end = 0;
        pango_layout_line_index_to_x(line, static_cast<int>(i), TRUE, &end);
        ends[i] = double(end) / PANGO_SCALE;
    }
    return ends;
}

int text_width(const TextLayout& text) {
    PangoRectangle box;
    pango_layout_get_extents(text.get(), nullptr, &box);
    return PANGO_PIXELS_CEIL(box.width);
}

int text_height(const TextLayout& text) {
    PangoRectangle box;
    pango_layout_get_extents(text.get(), nullptr, &box);
    return PANGO_PIXELS_CEIL(box.height);
}

int text_left(const TextLayout& text) {
    PangoRectangle box;
    pango_layout_get_extents(text.get(), nullptr, &box);
    return PANGO_PIXELS_FLOOR(box.x);
}

void align_right(const TextLayout& text) {
    // Pango exchanges left and right for lines that run from right to left.
    PangoLayoutLine* const first = pango_layout_get_line_readonly(text.get(), 0);
    const bool runs_left = pango_layout_line_get_resolved_direction(first) == PANGO_DIRECTION_RTL;
    pango_layout_set_alignment(text.get(), runs_left ? PANGO_ALIGN_LEFT : PANGO_ALIGN_RIGHT);
}

void fit_text(const TextLayout& text, int width) {
    pango_layout_set_ellipsize(text.get(), PANGO_ELLIPSIZE_MIDDLE);
    pango_layout_set_width(text.get(), width * PANGO_SCALE);
}
