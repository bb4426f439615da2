#include "popup/menu_snapshot.h"

namespace {

constexpr const char* indentation = "    ";

// Control characters would break the tree apart.
std::string on_one_line(const std::string& title) {
    std::string result;
    for (const char byte : title) {
        const auto value = static_cast<unsigned char>(byte);
        const bool control = value < 0x20 || value == 0x7f;
        result += control ? std::string("\xef\xbf\xbd") : std::string(1, byte);
    }
    return result;
}

std::string joined(const std::vector<std::string>& words) {
    std::string result;
    for (const std::string& word : words) result += (result.empty() ? "" : "-") + word;
    return result;
}

std::string line_of(const ItemSnapshot& item) {
    if (item.separator) return "--------";
    std::string line = on_one_line(item.title);
    if (item.has_submenu) line += " >";
    if (item.alternate) line += " [" + joined(item.modifiers) + "]";
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

std::string WriteMenuText(const MenuSnapshot& menu) {
    std::string text;
    write(menu, "", &text);
    return text;
}
