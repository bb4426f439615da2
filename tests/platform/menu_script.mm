#include "platform/menu_script.h"

#include <host/menu_tracking.h>

#include "support/right_click.h"
#include "x11/screens.h"

void MenuScript::when(const std::string& what, Condition condition, Action action) {
    const auto holds = [condition] {
        MenuSession* session = [MenuSession current];
        return session && ![session isEnding] && condition();
    };
    steps_.when(what, holds, action);
}

void MenuScript::run(NSMenu* menu, int x, int y) {
    steps_.run_beside([&] {
        [NSMenu popUpContextMenu:menu
                       withEvent:test::right_click(screen_point({x, y}))
                         forView:nil];
    });
}

size_t shown_levels() {
    size_t count = 0;
    while (level_is_shown(count)) count++;
    return count;
}

bool level_is_shown(size_t index) {
    const MenuRun* run = MenuRun::current();
    return run && index < run->levels().size() && run->levels()[index]->is_shown();
}

MenuLevel& shown_level(size_t index) { return *MenuRun::current()->levels()[index]; }

MenuPoint row_point(size_t index, NSString* title) {
    if (!level_is_shown(index)) return {-1, -1};
    const MenuLevel& level = shown_level(index);
    const std::vector<MenuRow>& rows = level.layout().rows();
    for (size_t i = 0; i < rows.size(); i++) {
        if (![[rows[i].item title] isEqualToString:title]) continue;
        const Area area = level.row_area(static_cast<int>(i));
        return {area.left + area.width / 2, area.top + area.height / 2};
    }
    return {-1, -1};
}

std::string highlighted_title(size_t index) {
    if (!level_is_shown(index)) return "";
    NSMenuItem* item = [[MenuSession current] highlightedItemOfMenu:shown_level(index).menu()];
    return [[item title] UTF8String] ?: "";
}
