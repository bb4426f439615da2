// What the settings window shows. Main thread.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "panels/panel_content.h"
#include "settings/setting_store.h"
#include "settings_ui/example_menu.h"
#include "settings_ui/setting_pages.h"

// The items of the window's widgets. The ones that begin a range have more after them: one for each
// page, setting of the page, folder, or file manager.
enum SettingsItem {
    no_settings_item,
    close_item,
    reset_item,
    path_item,
    add_item,
    choose_item,
    separator_item,
    remove_item,
    up_item,
    down_item,
    pages_item = 1000,
    settings_item = 2000,
    folders_item = 3000,
    managers_item = 4000,
};

// A file manager that is installed here.
struct ShownManager {
    std::string title;
    std::string place;  // where its entry is, or why there can be none
    bool has_delvio = false;
};

struct SettingsView {
    std::vector<SettingPage> pages;
    size_t page = 0;
    std::vector<SettingState> states;  // of the page's settings
    std::vector<ShownManager> managers;
    size_t folder = 0;  // the selected one of a list
    std::string new_path;
    std::string message;  // one line: what was wrong, or what was done
    bool is_problem = false;
    Picture example;
};

// The room for settings in a page, and for the example, in points.
double page_height();
Extent example_room(const MenuLook& look);

// The window without widgets, at a scale at which it has room on the screen.
PanelContent empty_settings();
PanelContent settings_content(const SettingsView& view);
