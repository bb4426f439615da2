#include "popup/menu_snapshot.h"

#include "command/modifier_names.h"
#include "command/printable.h"

namespace {

constexpr size_t indentation = 4;

// Text that grows in one piece would be copied each time.
constexpr size_t part_size = 1 << 20;

constexpr const char* replacement_character = "\xef\xbf\xbd";

void append_modifiers(unsigned long modifiers, std::string* text) {
    const char* joint = " [";
    for (const std::string& name : modifier_names(modifiers)) {
        *text += joint;
        *text += name;
        joint = "-";
    }
    *text += *joint == '-' ? "]" : " []";
}

void append_extras(const ItemSnapshot& item, std::string* text) {
    if (item.has_submenu) *text += " >";
    if (item.alternate) append_modifiers(item.modifiers, text);
    if (!item.enabled) *text += " (disabled)";
}

}  // namespace

// A preview's row has no title, only a picture. An alternate mostly has its file's title.
const std::string& MenuText::title_of(const ItemSnapshot& item) {
    static const std::string picture = "(picture)";
    if (item.title.empty() && item.image) return picture;
    if (item.title != last_title_) {
        last_title_ = item.title;
        last_printable_ = printable(item.title, replacement_character);
    }
    return last_printable_;
}

void MenuText::add(const ItemSnapshot& item, size_t level) {
    if (parts_.empty() || parts_.back().size() > part_size) parts_.emplace_back();
    std::string& text = parts_.back();
    text.append(level * indentation, ' ');
    if (item.separator) {
        text += "--------";
    } else {
        text += title_of(item);
        append_extras(item, &text);
    }
    text += '\n';
}
