#include "corefoundation/list_limits.h"

#include <string.h>

#include <algorithm>

namespace {

const char white[] = "\b\t\n\v\f\r ";
// These end a word that stands without quotes, as do all control bytes and all bytes above ASCII.
const char word_ends[] = " \"'(),;<=>[\\]`{}";
// The longest number or date; GNUstep copies it to its stack.
const size_t longest_value = 200;

bool is_white(unsigned char byte) { return byte && strchr(white, byte); }

bool ends_word(unsigned char byte) { return byte < 32 || byte >= 127 || strchr(word_ends, byte); }

bool is_hexadecimal(unsigned char byte) { return byte && strchr("0123456789abcdefABCDEF", byte); }

// Reads a list step by step as GNUstep's parser does, but makes no objects. It gives up where that
// parser gives up, since what follows is never read.
class TextWalk {
  public:
    explicit TextWalk(std::string_view bytes) : bytes_(bytes) {}

    // False when the list ends here or goes beyond a limit.
    bool item(int depth);
    bool is_bounded() const { return is_bounded_; }

  private:
    bool is_at(char byte) const { return at_ < bytes_.size() && bytes_[at_] == byte; }
    bool go_past(std::string_view mark, size_t from);
    bool skip_space();
    bool take(char byte);
    bool pair(int depth);
    bool dictionary(int depth);
    bool array(int depth);
    bool quoted();
    bool word();
    bool value();
    bool octets();
    bool angle();

    const std::string_view bytes_;
    size_t at_ = 0;
    int items_ = 0;
    bool is_bounded_ = true;
};

bool TextWalk::go_past(std::string_view mark, size_t from) {
    const size_t found = bytes_.find(mark, from);
    if (found == std::string_view::npos) return false;
    at_ = found + mark.size();
    return true;
}

bool TextWalk::skip_space() {
    for (; at_ < bytes_.size(); at_++) {
        if (is_white(static_cast<unsigned char>(bytes_[at_]))) continue;
        const std::string_view two = bytes_.substr(at_, 2);
        if (two != "//" && two != "/*") return true;
        if (!go_past(two == "//" ? "\n" : "*/", at_ + 2)) return false;
        at_--;
    }
    return false;
}

bool TextWalk::take(char byte) {
    if (!is_at(byte)) return false;
    at_++;
    return true;
}

bool TextWalk::pair(int depth) {
    if (!item(depth) || !skip_space() || !take('=') || !item(depth) || !skip_space()) return false;
    return take(';') || is_at('}');
}

bool TextWalk::dictionary(int depth) {
    while (skip_space() && !is_at('}')) {
        if (!pair(depth)) return false;
    }
    return take('}');
}

bool TextWalk::array(int depth) {
    while (skip_space() && !is_at(')')) {
        if (!item(depth) || !skip_space()) return false;
        if (!take(',') && !is_at(')')) return false;
    }
    return take(')');
}

bool TextWalk::quoted() {
    for (; at_ < bytes_.size() && bytes_[at_] != '"'; at_++) {
        if (bytes_[at_] == '\\') at_++;
    }
    return take('"');
}

bool TextWalk::word() {
    while (at_ < bytes_.size() && !ends_word(static_cast<unsigned char>(bytes_[at_]))) at_++;
    return true;
}

bool TextWalk::value() {
    const size_t end = std::min(bytes_.find('>', at_), bytes_.size());
    if (end - at_ > longest_value) is_bounded_ = false;
    at_ = end;
    return is_bounded_ && take('>');
}

bool TextWalk::octets() {
    while (skip_space() && is_hexadecimal(static_cast<unsigned char>(bytes_[at_]))) at_++;
    return take('>');
}

bool TextWalk::angle() {
    if (take('*')) return value();
    if (!take('[')) return octets();
    return go_past("]", at_) && take('>');
}

bool TextWalk::item(int depth) {
    if (depth > deepest_list || ++items_ > most_list_items) is_bounded_ = false;
    if (!is_bounded_ || !skip_space()) return false;
    if (take('{')) return dictionary(depth + 1);
    if (take('(')) return array(depth + 1);
    if (take('<')) return angle();
    return take('"') ? quoted() : word();
}

}  // namespace

bool is_bounded_text_list(std::string_view bytes) {
    TextWalk walk(bytes);
    walk.item(0);
    return walk.is_bounded();
}

bool is_bounded_list(std::string_view bytes) {
    if (bytes.size() > largest_list) return false;
    if (bytes.starts_with("bplist00")) return is_bounded_binary_list(bytes);
    // These are GNUstep's own archives, which nobody exchanges as files.
    if (!bytes.empty() && (bytes[0] == 0 || bytes[0] == 1)) return false;
    const size_t start = bytes.find_first_not_of(white);
    const bool is_xml = start != std::string_view::npos && bytes.substr(start, 2) == "<?";
    return is_xml ? is_bounded_xml_list(bytes) : is_bounded_text_list(bytes);
}
