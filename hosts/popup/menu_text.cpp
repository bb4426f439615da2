#include "popup/menu_writer.h"

#include "command/modifier_names.h"
#include "command/printable.h"

namespace {

constexpr size_t indentation = 4, part_size = 1 << 20;

constexpr const char* replacement_character = "\xef\xbf\xbd";

std::string modifier_text(unsigned long modifiers) {
    std::string text;
    const char* joint = " [";
    for (const std::string& name : modifier_names(modifiers)) {
        text += joint + name;
        joint = "-";
    }
    return text.empty() ? " []" : text + "]";
}

}  // namespace

void MenuWriter::add(const ItemSnapshot& item, bool is_opened) {
    if (text_.size() > part_size) {
        take_(text_);
        text_.clear();
    }
    write_item(item, is_opened);
    if (is_opened) level_++;
}

void MenuWriter::end_submenu() {
    level_--;
    write_end_of_submenu();
}

void MenuWriter::finish() {
    write_end();
    take_(text_);
    text_.clear();
}

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

const std::string& MenuText::text_of_modifiers(unsigned long modifiers) {
    const auto known = modifier_texts_.find(modifiers);
    if (known != modifier_texts_.end()) return known->second;
    return modifier_texts_[modifiers] = modifier_text(modifiers);
}

void MenuText::write_item(const ItemSnapshot& item, bool) {
    text().append(level() * indentation, ' ');
    if (item.separator) {
        text() += "--------";
    } else {
        text() += title_of(item);
        if (item.has_submenu) text() += " >";
        if (item.alternate) text() += text_of_modifiers(item.modifiers);
        if (!item.enabled) text() += " (disabled)";
    }
    text() += '\n';
}
