#include <algorithm>

#include <nlohmann/json.hpp>

#include "command/modifier_names.h"
#include "command/printable.h"
#include "popup/menu_writer.h"

namespace {

using json = nlohmann::ordered_json;

// An item's members stand two characters behind its braces, and those of its submenu two further.
constexpr size_t step = 2, steps_a_level = 3;

// A file's item and its alternates, of two kinds of files.
constexpr size_t most_frames = 8;

const std::string null_text = "null";

const char* text_of(bool value) { return value ? "true" : "false"; }

// Most texts stand in the JSON as they are.
bool is_plain(const std::string& text) {
    return std::ranges::all_of(
        text, [](char c) { return c >= ' ' && c <= '~' && c != '"' && c != '\\'; });
}

void begin_line(std::string* text, size_t indentation) {
    *text += '\n';
    text->append(indentation, ' ');
}

void write_key(std::string* text, size_t indentation, const char* key) {
    begin_line(text, indentation);
    *text += '"';
    *text += key;
    *text += "\": ";
}

void write_value(std::string* text, size_t indentation, const char* key, const std::string& value) {
    write_key(text, indentation, key);
    *text += value;
    *text += ',';
}

void write_string(std::string* text, const std::string& value) {
    if (!is_plain(value)) {
        *text += printable_json(json(value).dump(-1, ' ', false, json::error_handler_t::replace));
        return;
    }
    *text += '"';
    *text += value;
    *text += '"';
}

void write_modifiers(std::string* text, size_t indentation, unsigned long modifiers) {
    write_key(text, indentation, "modifiers");
    *text += '[';
    const char* joint = "";
    for (const std::string& name : modifier_names(modifiers)) {
        *text += joint;
        joint = ",";
        begin_line(text, indentation + step);
        write_string(text, name);
    }
    if (*joint) begin_line(text, indentation);
    *text += "],";
}

// An opened submenu stays open behind the bracket of its items.
void write_submenu(std::string* text, size_t indentation, const ItemSnapshot& item,
                   bool is_opened) {
    write_key(text, indentation, "submenu");
    if (!item.has_submenu) {
        *text += null_text;
        return;
    }
    *text += '{';
    write_key(text, indentation + step, "title");
    write_string(text, item.details.submenu_title);
    *text += ',';
    write_value(text, indentation + step, "populated", text_of(is_opened));
    write_key(text, indentation + step, "items");
    *text += '[';
    if (is_opened) return;
    *text += ']';
    begin_line(text, indentation);
    *text += '}';
}

std::string text_before_title(const ItemSnapshot& item, size_t outer) {
    std::string text;
    begin_line(&text, outer);
    text += '{';
    write_value(&text, outer + step, "type", item.separator ? "\"separator\"" : "\"item\"");
    write_key(&text, outer + step, "title");
    return text;
}

std::string text_before_path(const ItemSnapshot& item, size_t inner) {
    std::string text = ",";
    write_value(&text, inner, "enabled", text_of(item.enabled));
    write_value(&text, inner, "alternate", text_of(item.alternate));
    write_modifiers(&text, inner, item.modifiers);
    write_value(&text, inner, "image", text_of(item.image));
    write_key(&text, inner, "color");
    if (item.details.color.empty()) {
        text += null_text;
    } else {
        write_string(&text, item.details.color);
    }
    text += ',';
    write_value(&text, inner, "tag", std::to_string(item.details.tag));
    write_value(&text, inner, "plugin", text_of(item.details.plugin));
    write_key(&text, inner, "path");
    return text;
}

std::string text_after_path(const ItemSnapshot& item, bool is_opened, size_t outer) {
    std::string text = ",";
    write_submenu(&text, outer + step, item, is_opened);
    if (is_opened) return text;
    begin_line(&text, outer);
    return text += '}';
}

}  // namespace

MenuJson::MenuJson(Taker take) : MenuWriter(std::move(take)), has_items_{false} { text() += '['; }

bool MenuJson::Frame::fits(const ItemSnapshot& other, bool other_is_opened,
                           size_t other_level) const {
    const ItemDetails &mine = item.details, &others = other.details;
    return item.separator == other.separator && item.enabled == other.enabled &&
           item.alternate == other.alternate && item.image == other.image &&
           item.has_submenu == other.has_submenu && item.modifiers == other.modifiers &&
           mine.tag == others.tag && mine.plugin == others.plugin && is_opened == other_is_opened &&
           level == other_level && mine.color == others.color &&
           mine.submenu_title == others.submenu_title;
}

const MenuJson::Frame& MenuJson::frame_for(const ItemSnapshot& item, bool is_opened) {
    for (const Frame& frame : frames_) {
        if (frame.fits(item, is_opened, level())) return frame;
    }
    if (frames_.size() < most_frames) frames_.emplace_back();
    Frame& frame = frames_[next_frame_];
    next_frame_ = (next_frame_ + 1) % most_frames;
    const size_t outer = step + level() * steps_a_level * step;
    frame = {.item = item,
             .is_opened = is_opened,
             .level = level(),
             .before_title = text_before_title(item, outer),
             .before_path = text_before_path(item, outer + step),
             .after_path = text_after_path(item, is_opened, outer)};
    return frame;
}

// An alternate mostly has its file's title and path.
const std::string& MenuJson::Quoted::of(const std::string& value) {
    if (text_.empty() || value != value_) {
        value_ = value;
        text_.clear();
        write_string(&text_, value);
    }
    return text_;
}

void MenuJson::write_item(const ItemSnapshot& item, bool is_opened) {
    if (has_items_.back()) text() += ',';
    has_items_.back() = true;
    const Frame& frame = frame_for(item, is_opened);
    text() += frame.before_title;
    text() += title_.of(item.title);
    text() += frame.before_path;
    text() += item.details.path.empty() ? null_text : path_.of(item.details.path);
    text() += frame.after_path;
    if (is_opened) has_items_.push_back(false);
}

// Ends the innermost array, whose bracket stands at `indentation` if it has items.
void MenuJson::end_array(size_t indentation) {
    if (has_items_.back()) begin_line(&text(), indentation);
    has_items_.pop_back();
    text() += ']';
}

void MenuJson::write_end_of_submenu() {
    const size_t outer = step + level() * steps_a_level * step;
    end_array(outer + 2 * step);
    begin_line(&text(), outer + step);
    text() += '}';
    begin_line(&text(), outer);
    text() += '}';
}

void MenuJson::write_end() {
    end_array(0);
    text() += '\n';
}
