#include "popup/menu_snapshot.h"

#include "command/modifier_names.h"
#include "command/printable.h"

namespace {

constexpr const char* indentation = "    ";

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

std::string line_of(const ItemSnapshot& item) {
    if (item.separator) return "--------";
    std::string line = title_of(item);
    if (item.has_submenu) line += " >";
    if (item.alternate) line += " [" + joined(modifier_names(item.modifiers)) + "]";
    if (!item.enabled) line += " (disabled)";
    return line;
}

void write(const MenuSnapshot& menu, const std::string& indent, std::string* text) {
    for (const ItemSnapshot& item : menu) {
        *text += indent + line_of(item) + "\n";
        write(item.items, indent + indentation, text);
    }
}

}  // namespace

std::string write_menu_text(const MenuSnapshot& menu) {
    std::string text;
    write(menu, "", &text);
    return text;
}
