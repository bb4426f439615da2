#include "popup/menu_snapshot.h"

#include <nlohmann/json.hpp>

#include "command/modifier_names.h"
#include "command/printable.h"

namespace {

using json = nlohmann::ordered_json;

json menu_json(const MenuSnapshot& menu);

json text_or_null(const std::string& text) { return text.empty() ? json(nullptr) : json(text); }

json submenu_json(const ItemSnapshot& item) {
    if (!item.has_submenu) return nullptr;
    return {{"title", item.details->submenu_title},
            {"populated", item.populated},
            {"items", menu_json(item.items)}};
}

json item_json(const ItemSnapshot& item) {
    return {{"type", item.separator ? "separator" : "item"},
            {"title", item.title},
            {"enabled", item.enabled},
            {"alternate", item.alternate},
            {"modifiers", modifier_names(item.modifiers)},
            {"image", item.image},
            {"color", text_or_null(item.details->color)},
            {"tag", item.details->tag},
            {"plugin", item.details->plugin},
            {"path", text_or_null(item.details->path)},
            {"submenu", submenu_json(item)}};
}

json menu_json(const MenuSnapshot& menu) {
    json items = json::array();
    for (const ItemSnapshot& item : menu) items.push_back(item_json(item));
    return items;
}

}  // namespace

std::string write_menu_json(const MenuSnapshot& menu) {
    return printable_json(menu_json(menu).dump(2, ' ', false, json::error_handler_t::replace)) +
           "\n";
}
