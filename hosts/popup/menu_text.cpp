#include "popup/menu_snapshot.h"

#include "command/modifier_names.h"
#include "command/printable.h"

namespace {

constexpr size_t indentation = 4;

// Text that grows in one piece would be copied each time.
constexpr size_t part_size = 1 << 20;

constexpr const char* replacement_character = "\xef\xbf\xbd";

// A preview's row has no title, only a picture.
std::string title_of(const ItemSnapshot& item) {
    if (item.title.empty() && item.image) return "(picture)";
    return printable(item.title, replacement_character);
}

std::string joined(const std::vector<std::string>& words) {
    std::string result;
    for (const std::string& word : words) result += (result.empty() ? "" : "-") + word;
    return result;
}

void append_line(const ItemSnapshot& item, std::string* text) {
    if (item.separator) {
        *text += "--------";
        return;
    }
    *text += title_of(item);
    if (item.has_submenu) *text += " >";
    if (item.alternate) *text += " [" + joined(modifier_names(item.modifiers)) + "]";
    if (!item.enabled) *text += " (disabled)";
}

}  // namespace

void MenuText::add(const ItemSnapshot& item, size_t level) {
    if (parts_.empty() || parts_.back().size() > part_size) parts_.emplace_back();
    std::string& text = parts_.back();
    text.append(level * indentation, ' ');
    append_line(item, &text);
    text += '\n';
}
