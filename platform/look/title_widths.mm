#include "look/title_widths.h"

#include <Foundation/Foundation.h>

#include <algorithm>
#include <memory>
#include <string>

#include "look/menu_text.h"

namespace {

// Titles as long as this are cut anyway.
constexpr NSUInteger longest_measured = 256;

bool is_combining(unsigned character) { return character >= 0x300 && character < 0x370; }

// Hangul, Chinese, Japanese, full-width forms.
bool is_square(unsigned character) {
    return (character >= 0x1100 && character < 0x1200) ||
           (character >= 0x2E80 && character < 0xD800) ||
           (character >= 0xF900 && character < 0xFB00) ||
           (character >= 0xFE30 && character < 0xFFF0);
}

}  // namespace

TitleWidths::TitleWidths(const MenuLook& look) : look_(look) {
    std::string all;
    for (char character = ' '; character < 0x7F; character++) all += character;
    const std::vector<double> ends = ends_of_characters(look, all);
    double start = 0;
    for (size_t i = 0; i < all.size(); i++) {
        widths_[static_cast<unsigned char>(all[i])] = ends[i] - start;
        start = ends[i];
    }
}

const TitleWidths& TitleWidths::of(const MenuLook& look) {
    static std::unique_ptr<TitleWidths> last;
    if (!last || !last->is_for(look)) last = std::make_unique<TitleWidths>(look);
    return *last;
}

bool TitleWidths::is_for(const MenuLook& look) const {
    return look.family == look_.family && look.font_size == look_.font_size &&
           look.scale == look_.scale && look.bold == look_.bold && look.italic == look_.italic;
}

double TitleWidths::width(unsigned character) const {
    if (character < characters) return widths_[character];
    if (is_combining(character)) return 0;
    const double em = look_.font_size * look_.scale;
    // Half of a surrogate pair, such as a picture of a face, is half of a square.
    if (character >= 0xD800 && character < 0xE000) return em / 2;
    return is_square(character) ? em : widths_[unsigned('o')];
}

double TitleWidths::estimate(NSString* title) const {
    unichar text[longest_measured];
    const NSUInteger length = std::min([title length], longest_measured);
    [title getCharacters:text range:NSMakeRange(0, length)];
    double sum = 0;
    for (NSUInteger i = 0; i < length; i++) sum += width(text[i]);
    return sum;
}
