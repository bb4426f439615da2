#include "panels/text_edit.h"

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
    text.insert(caret, plain);
    caret += plain.size();
}

void TextEdit::go_back() {
    if (caret > 0) caret--;
    while (caret > 0 && is_inside(text, caret)) caret--;
}

void TextEdit::go_on() {
    if (caret < text.size()) caret++;
    while (is_inside(text, caret)) caret++;
}

void TextEdit::remove_before() {
    const size_t end = caret;
    go_back();
    text.erase(caret, end - caret);
}

void TextEdit::remove_after() {
    const size_t begin = caret;
    go_on();
    text.erase(begin, caret - begin);
    caret = begin;
}
