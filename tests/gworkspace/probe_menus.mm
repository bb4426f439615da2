// The probe's questions about contextual menus.
//
//   menus            how many levels are open
//   rows LEVEL       the level's rows, from 0: "left top width height enabled submenu title"
//   highlight LEVEL  the title of the highlighted row
//   button ITEM      where the button of the plug-in's alert is: "x y", once it has the keys
//   told             what the plug-in's alert says
//   part TEXT        where the button or check box of the operations' windows is: "x y on"; of the
//                    conflict question once it has the keys
//   panel            the texts of the operations' window, a line each
//   elements         how many of the plug-in's elements have been made, and freed
#include <host/menu_tracking.h>

#include <sstream>

#include "gworkspace/local_symbols.h"
#include "gworkspace/settled_windows.h"
#include "menus/menu_run.h"
#include "panels/alert_panel.h"

namespace {

const MenuLevel* shown_level(size_t level) {
    MenuRun* run = MenuRun::current();
    if (!run || level >= run->levels().size()) return nullptr;
    const MenuLevel* shown = run->levels()[level].get();
    return shown->is_shown() && !shown->layout().rows().empty() ? shown : nullptr;
}

std::string title_of(NSMenuItem* item) {
    if (!item) return "";
    return [item isSeparatorItem] ? "-" : std::string([[item title] UTF8String] ?: "");
}

std::string rows_of(size_t level) {
    std::ostringstream text;
    const MenuLevel* shown = shown_level(level);
    if (!shown) return "";
    int index = 0;
    for (const MenuRow& row : shown->layout().rows()) {
        const Area area = shown->row_area(index++);
        text << area.left << " " << area.top << " " << area.width << " " << area.height << " "
             << ([row.item isEnabled] ? 1 : 0) << " " << ([row.item hasSubmenu] ? 1 : 0) << " "
             << title_of(row.item) << "\n";
    }
    return text.str();
}

std::string highlight_of(size_t level) {
    const MenuLevel* shown = shown_level(level);
    if (!shown) return "";
    return title_of([[MenuSession current] highlightedItemOfMenu:shown->menu()]) + "\n";
}

AlertPanel* shown_alert() {
    NSWindow* window = [NSApp modalWindow];
    const BOOL is_alert = [window isKindOfClass:objc_lookUpClass("AlertPanel")];
    return is_alert && is_settled(window) && keyboard_is_in(window) ? (AlertPanel*)window : nil;
}

std::string button_of(int item) {
    if (!shown_alert()) return "";
    const MenuPoint at = [shown_alert() middleOfItem:item];
    return std::to_string(at.x) + " " + std::to_string(at.y);
}

// The operations' window in front, or nil.
WidgetPanel* shown_panel() {
    Class wanted = objc_lookUpClass("WidgetPanel");
    if ([[NSApp modalWindow] isMemberOfClass:wanted]) return (WidgetPanel*)[NSApp modalWindow];
    for (NSWindow* window in [NSApp windows]) {
        if ([window isVisible] && [window isMemberOfClass:wanted]) return (WidgetPanel*)window;
    }
    return nil;
}

std::string part_of(const std::string& text) {
    WidgetPanel* panel = shown_panel();
    if (!panel || !is_settled(panel)) return "";
    if ([NSApp modalWindow] == panel && !keyboard_is_in(panel)) return "";
    for (const Widget& widget : [panel content].widgets) {
        if (widget.kind == WidgetKind::text || widget.text != text) continue;
        const MenuPoint at = [panel middleOfItem:widget.item];
        return std::to_string(at.x) + " " + std::to_string(at.y) + (widget.on ? " 1" : " 0");
    }
    return "";
}

std::string panel_texts() {
    std::string text;
    WidgetPanel* panel = shown_panel();
    if (!panel) return "";
    for (const Widget& widget : [panel content].widgets) {
        if (widget.kind == WidgetKind::text) text += widget.text + "\n";
    }
    return text;
}

std::string element_counts() {
    std::ostringstream text;
    for (const char* name : {"alloc_count", "free_count"}) {
        const void* counter = find_local_symbol("Delvio.bundle/Delvio", name);
        text << (counter ? *static_cast<const uint32_t*>(counter) : 0) << " ";
    }
    return text.str();
}

}  // namespace

extern "C" __attribute__((visibility("default"))) void answer_about_menus(const char* line,
                                                                          std::string* answer) {
    std::istringstream words(line);
    std::string question;
    size_t level = 0;
    words >> question >> level;
    if (question == "menus") {
        size_t open = 0;
        while (shown_level(open)) ++open;
        *answer = std::to_string(open);
    } else if (question == "rows") {
        *answer = rows_of(level);
    } else if (question == "highlight") {
        *answer = highlight_of(level);
    } else if (question == "button") {
        *answer = button_of(static_cast<int>(level));
    } else if (question == "told") {
        *answer = [[shown_alert() text] UTF8String] ?: "";
    } else if (question == "part") {
        *answer = part_of(std::string(line).substr(question.size() + 1));
    } else if (question == "panel") {
        *answer = panel_texts();
    } else if (question == "elements") {
        *answer = element_counts();
    } else {
        *answer = "error no such question";
    }
}
