#include "panels/text_edit.h"

#include <algorithm>

namespace {

bool is_inside(const std::string& text, size_t at) {
    return at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80;
}

bool is_control(char byte) { return (byte >= 0 && byte < 0x20) || byte == 0x7F; }

}  // namespace

void TextEdit::insert(std::string_view added) {
    std::string plain;
    for (const char byte : added) {
        if (!is_control(byte)) plain += byte;
    }
    remove_selected();
    text.insert(caret, plain);
    go_to(caret + plain.size());
}

std::string TextEdit::selected() const {
    const size_t begin = std::min(caret, anchor);
    return text.substr(begin, std::max(caret, anchor) - begin);
}

void TextEdit::select_all() {
    anchor = 0;
    caret = text.size();
}

void TextEdit::remove_selected() {
    const size_t begin = std::min(caret, anchor);
    text.erase(begin, std::max(caret, anchor) - begin);
    go_to(begin);
}

void TextEdit::go_to(size_t place, bool selects) {
    caret = place;
    if (!selects) anchor = place;
}

void TextEdit::go_back(bool selects) {
    if (caret != anchor && !selects) return go_to(std::min(caret, anchor));
    size_t place = caret;
    if (place > 0) place--;
    while (place > 0 && is_inside(text, place)) place--;
    go_to(place, selects);
}

void TextEdit::go_on(bool selects) {
    if (caret != anchor && !selects) return go_to(std::max(caret, anchor));
    size_t place = caret;
    if (place < text.size()) place++;
    while (is_inside(text, place)) place++;
    go_to(place, selects);
}

void TextEdit::remove_before() {
    if (caret == anchor) go_back(true);
    remove_selected();
}

void TextEdit::remove_after() {
    if (caret == anchor) go_on(true);
    remove_selected();
}
