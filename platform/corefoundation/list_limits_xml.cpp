#include <algorithm>
#include <vector>

#include "corefoundation/list_limits.h"

namespace {

const char letters[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";

// Quotes must be whole, so that no parser sees a '>' of the tag within quotes.
bool has_whole_quotes(std::string_view tag) {
    const auto doubles = std::count(tag.begin(), tag.end(), '"');
    const auto singles = std::count(tag.begin(), tag.end(), '\'');
    return (doubles == 0 || singles == 0) && doubles % 2 == 0 && singles % 2 == 0;
}

// Takes only what every parser reads in the same way: property lists need no more.
class XmlWalk {
  public:
    explicit XmlWalk(std::string_view bytes) : bytes_(bytes) {}
    bool is_bounded();

  private:
    bool go_past(std::string_view mark);
    bool mark_up();
    bool declaration();
    bool element(std::string_view tag);

    const std::string_view bytes_;
    size_t at_ = 0;
    int items_ = 0;
    std::vector<std::string_view> open_;
};

// Goes to the end of the bytes when the mark is missing.
bool XmlWalk::go_past(std::string_view mark) {
    const size_t found = bytes_.find(mark, at_);
    at_ = found == std::string_view::npos ? bytes_.size() : found + mark.size();
    return true;
}

// Refuses brackets, between which entities would be declared.
bool XmlWalk::declaration() {
    const std::string_view tag = bytes_.substr(at_, bytes_.find('>', at_) - at_);
    at_ += tag.size();
    return tag.starts_with("<!DOCTYPE") && tag.find('[') == std::string_view::npos &&
           tag.find('<', 1) == std::string_view::npos && has_whole_quotes(tag);
}

// `tag` without its angle brackets.
bool XmlWalk::element(std::string_view tag) {
    const bool closes = tag.starts_with('/'), is_empty = tag.ends_with('/');
    if (closes) tag.remove_prefix(1);
    if (is_empty && !tag.empty()) tag.remove_suffix(1);
    const std::string_view name = tag.substr(0, tag.find_first_not_of(letters));
    const std::string_view rest = tag.substr(name.size());
    const bool is_plain = rest.find_first_not_of(" \t\r\n") == std::string_view::npos;
    if (name.empty() || !(is_plain || (name == "plist" && has_whole_quotes(rest)))) return false;
    if (closes) {
        if (is_empty || open_.empty() || open_.back() != name) return false;
        open_.pop_back();
        return true;
    }
    if (!is_empty) open_.push_back(name);
    return open_.size() <= deepest_list && ++items_ <= most_list_items;
}

bool XmlWalk::mark_up() {
    const std::string_view rest = bytes_.substr(at_);
    if (rest.starts_with("<!--")) {
        at_ += 4;
        return go_past("-->");
    }
    if (rest.starts_with("<![CDATA[")) {
        at_ += 9;
        return go_past("]]>");
    }
    if (rest.starts_with("<!")) return declaration();
    const std::string_view tag = rest.substr(1, rest.find('>') - 1);
    at_ += 1 + tag.size();
    if (tag.find('<') != std::string_view::npos) return false;
    return tag.starts_with('?') ? has_whole_quotes(tag) && tag.ends_with('?') : element(tag);
}

bool XmlWalk::is_bounded() {
    while ((at_ = bytes_.find('<', at_)) != std::string_view::npos) {
        if (!mark_up()) return false;
    }
    return true;
}

}  // namespace

bool is_bounded_xml_list(std::string_view bytes) { return XmlWalk(bytes).is_bounded(); }
