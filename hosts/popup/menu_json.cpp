#include <algorithm>

#include <nlohmann/json.hpp>

#include "command/modifier_names.h"
#include "command/printable.h"
#include "popup/menu_writer.h"

namespace {

using json = nlohmann::ordered_json;

// An item's members stand two characters behind its braces, and those of its submenu two further.
constexpr size_t step = 2, steps_a_level = 3;

const char* text_of(bool value) { return value ? "true" : "false"; }

// Most texts stand in the JSON as they are.
bool is_plain(const std::string& text) {
    return std::ranges::all_of(
        text, [](char c) { return c >= ' ' && c <= '~' && c != '"' && c != '\\'; });
}

}  // namespace

MenuJson::MenuJson(Taker take) : MenuWriter(std::move(take)), has_items_{false} { text() += '['; }

void MenuJson::begin_line(size_t indentation) {
    text() += '\n';
    text().append(indentation, ' ');
}

void MenuJson::write_key(size_t indentation, const char* key) {
    begin_line(indentation);
    text() += '"';
    text() += key;
    text() += "\": ";
}

void MenuJson::write_string(const std::string& value) {
    if (!is_plain(value)) {
        text() += printable_json(json(value).dump(-1, ' ', false, json::error_handler_t::replace));
        return;
    }
    text() += '"';
    text() += value;
    text() += '"';
}

void MenuJson::write_string_or_null(const std::string& value) {
    if (value.empty()) {
        text() += "null";
    } else {
        write_string(value);
    }
}

void MenuJson::write_modifiers(unsigned long modifiers, size_t indentation) {
    text() += '[';
    const char* joint = "";
    for (const std::string& name : modifier_names(modifiers)) {
        text() += joint;
        joint = ",";
        begin_line(indentation + step);
        write_string(name);
    }
    if (*joint) begin_line(indentation);
    text() += ']';
}

void MenuJson::write_submenu(const ItemSnapshot& item, bool is_opened, size_t indentation) {
    write_key(indentation, "submenu");
    if (!item.has_submenu) {
        text() += "null";
        return;
    }
    text() += '{';
    write_key(indentation + step, "title");
    write_string(item.details.submenu_title);
    text() += ',';
    write_key(indentation + step, "populated");
    text() += text_of(is_opened);
    text() += ',';
    write_key(indentation + step, "items");
    text() += '[';
    if (is_opened) return has_items_.push_back(false);
    text() += ']';
    begin_line(indentation);
    text() += '}';
}

void MenuJson::write_item(const ItemSnapshot& item, bool is_opened) {
    const size_t outer = step + level() * steps_a_level * step, inner = outer + step;
    if (has_items_.back()) text() += ',';
    has_items_.back() = true;
    begin_line(outer);
    text() += '{';
    write_key(inner, "type");
    text() += item.separator ? "\"separator\"," : "\"item\",";
    write_key(inner, "title");
    write_string(item.title);
    text() += ',';
    write_key(inner, "enabled");
    (text() += text_of(item.enabled)) += ',';
    write_key(inner, "alternate");
    (text() += text_of(item.alternate)) += ',';
    write_key(inner, "modifiers");
    write_modifiers(item.modifiers, inner);
    text() += ',';
    write_key(inner, "image");
    (text() += text_of(item.image)) += ',';
    write_key(inner, "color");
    write_string_or_null(item.details.color);
    text() += ',';
    write_key(inner, "tag");
    (text() += std::to_string(item.details.tag)) += ',';
    write_key(inner, "plugin");
    (text() += text_of(item.details.plugin)) += ',';
    write_key(inner, "path");
    write_string_or_null(item.details.path);
    text() += ',';
    write_submenu(item, is_opened, inner);
    if (is_opened) return;
    begin_line(outer);
    text() += '}';
}

// Ends the innermost array, whose bracket stands at `indentation` if it has items.
void MenuJson::end_array(size_t indentation) {
    if (has_items_.back()) begin_line(indentation);
    has_items_.pop_back();
    text() += ']';
}

void MenuJson::write_end_of_submenu() {
    const size_t outer = step + level() * steps_a_level * step;
    end_array(outer + 2 * step);
    begin_line(outer + step);
    text() += '}';
    begin_line(outer);
    text() += '}';
}

void MenuJson::write_end() {
    end_array(0);
    text() += '\n';
}
