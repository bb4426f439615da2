#include "settings_ui/settings_window.h"

#include <AppKit/AppKit.h>
#include <host/process.h>
#include <host/text.h>

#include <stdlib.h>
#include <sys/stat.h>

#include <algorithm>

#include "command/command_line.h"
#include "command/exit_signals.h"
#include "command/private_display.h"
#include "command/standard_streams.h"
#include "corefoundation/patient_stat.h"
#include "file_steps/visible_text.h"
#include "finderkit/settings_file.h"
#include "panels/widget_panel.h"
#include "popup/menu_command.h"
#include "popup/shown_menu.h"
#include "settings/list_edits.h"
#include "settings_ui/example_folder.h"
#include "settings_ui/folder_chooser.h"
#include "settings_ui/manager_switches.h"
#include "settings_ui/settings_content.h"
#include "x11/named_window.h"
#include "x11/screens.h"

using operations::in_quotes;

namespace {

constexpr NSInteger closed = 1;
constexpr const char* window_name = "settings";
constexpr double patience = 1;  // seconds that a disk may hold the window

std::string not_saved() {
    return translated(
        "Not saved. Check that you may write in the folder %s and that its disk has room.",
        {in_quotes(settings_folder())});
}

// A path below the home folder may begin with a tilde.
std::string without_tilde(const std::string& path) {
    const char* const home = getenv("HOME");
    const bool has_tilde = home && (path == "~" || path.starts_with("~/"));
    return has_tilde ? home + path.substr(1) : path;
}

class SettingsWindow {
  public:
    SettingsWindow();
    ~SettingsWindow() { [panel_ release]; }
    SettingsWindow(const SettingsWindow&) = delete;
    SettingsWindow& operator=(const SettingsWindow&) = delete;

    // False, without showing it, when the user has such a window on this display.
    bool run();
    void add_dropped(const std::vector<std::string>& paths);

  private:
    void read();
    void show();
    void hit(int item);
    void hit_list(int item);
    void choose_page(size_t page);
    void tell(const std::string& problem);
    void change(const Setting& setting, const std::vector<std::string>& words);
    void change_setting(size_t index);
    void choose(size_t index);
    void change_list(const std::vector<std::string>& list);
    void add_path(const std::string& path);
    void switch_manager_at(size_t index);
    void move_folder(int step);
    void reset_page();
    const std::vector<std::string>& list() const;
    const Setting* list_setting() const;
    NSPoint corner_of(int item);

    SettingsView view_;
    WidgetPanel* panel_ = nil;
};

SettingsWindow::SettingsWindow() {
    view_.pages = setting_pages(page_height());
    // Whoever has just installed Delvio needs this page first.
    if (lacks_managers(shown_managers())) {
        const auto page = std::ranges::find_if(view_.pages, &SettingPage::has_managers);
        view_.page = static_cast<size_t>(page - view_.pages.begin());
    }
    read();
    panel_ = [[WidgetPanel alloc] initWithTitle:@(translated("Delvio Settings"))
                                        content:settings_content(view_)
                                            hit:[this](int item) { hit(item); }];
    [panel_ setDropListener:[this](const std::vector<std::string>& paths) { add_dropped(paths); }];
    [panel_ focusItem:pages_item + static_cast<int>(view_.page)];
}

bool SettingsWindow::run() {
    if (!take_window_name(panel_, window_name)) return false;
    [panel_ runModal];
    return true;
}

void SettingsWindow::read() {
    refresh_settings();
    view_.states.clear();
    for (const Setting* setting : view_.pages[view_.page].settings) {
        view_.states.push_back(read_setting(*setting));
    }
    view_.managers.clear();
    if (view_.pages[view_.page].has_managers) view_.managers = shown_managers();
    view_.folder = std::min(view_.folder, list().empty() ? 0 : list().size() - 1);
    const PanelContent content = empty_settings();
    // Only now: a window that is killed or loses its display leaves no folder behind.
    const ExampleFolder folder;
    if (!folder.path().empty()) {
        view_.example = example_menu(folder.path(), content.look, example_room(content.look));
    }
}

void SettingsWindow::show() {
    read();
    [panel_ setContent:settings_content(view_)];
}

const Setting* SettingsWindow::list_setting() const {
    for (const SettingState& state : view_.states) {
        if (state.setting->type == SettingType::paths) return state.setting;
    }
    return nullptr;
}

const std::vector<std::string>& SettingsWindow::list() const {
    static const std::vector<std::string> none;
    for (const SettingState& state : view_.states) {
        if (state.setting->type == SettingType::paths) return state.value.strings;
    }
    return none;
}

void SettingsWindow::tell(const std::string& problem) {
    view_.message = problem;
    view_.is_problem = !problem.empty();
}

void SettingsWindow::choose_page(size_t page) {
    view_.page = page;
    view_.folder = 0;
    view_.new_path.clear();
    tell("");
    show();
}

// No words reset the setting.
void SettingsWindow::change(const Setting& setting, const std::vector<std::string>& words) {
    SettingValue value;
    std::string problem;
    if (words.empty()) {
        reset_setting(setting);
    } else if (parse_setting(setting, words, &value, &problem)) {
        store_setting(setting, value);
    }
    if (problem.empty() && !save_settings()) problem = not_saved();
    tell(problem);
    show();
}

void SettingsWindow::choose(size_t index) {
    const SettingState state = view_.states[index];
    const int item = settings_item + static_cast<int>(index);
    const int picked = choose_from(choices_of(*state.setting),
                                   choice_of(*state.setting, state.value), corner_of(item));
    if (picked >= 0) change(*state.setting, {word_of_choice(*state.setting, picked)});
}

void SettingsWindow::change_setting(size_t index) {
    const SettingState state = view_.states[index];
    const Widget* widget = [panel_ content].widget(settings_item + static_cast<int>(index));
    const std::string written = widget ? widget->text : "";
    switch (state.setting->type) {
        case SettingType::flag:
            return change(*state.setting, {state.value.number ? "0" : "1"});
        case SettingType::word:
        case SettingType::integer:
            if (!choices_of(*state.setting).empty()) return choose(index);
            return written.empty() ? change(*state.setting, {}) : change(*state.setting, {written});
        case SettingType::path:
            return written.empty() ? change(*state.setting, {}) : change(*state.setting, {written});
        case SettingType::paths:
            return;
    }
}

void SettingsWindow::change_list(const std::vector<std::string>& list) {
    if (const Setting* setting = list_setting()) change(*setting, list);
}

void SettingsWindow::add_path(const std::string& path) {
    if (path.empty()) return;
    view_.new_path = path;
    const std::string whole = entry_of_path(without_tilde(path));
    struct stat what;
    const files::Answer answer = files::ask_patiently(whole, patience, &what);
    std::string problem;
    if (whole[0] != '/') {
        problem = translated("A path begins with / or ~.");
    } else if (answer == files::Answer::silent) {
        problem = translated("The disk of %s does not answer.", {in_quotes(whole)});
    } else if (answer == files::Answer::missing) {
        problem = translated("There is no folder %s.", {in_quotes(whole)});
    } else if (!S_ISDIR(what.st_mode)) {
        problem = translated("%s is a file, not a folder.", {in_quotes(whole)});
    } else if (list_has(list(), whole)) {
        problem = translated("%s is in the list already.", {in_quotes(whole)});
    }
    if (!problem.empty()) {
        tell(problem);
        return show();
    }
    std::vector<std::string> entries = list();
    add_entry(&entries, whole);
    view_.new_path.clear();
    view_.folder = entries.size() - 1;
    change_list(entries);
}

void SettingsWindow::add_dropped(const std::vector<std::string>& paths) {
    for (size_t page = 0; !list_setting() && page < view_.pages.size(); page++) choose_page(page);
    for (const std::string& path : paths) add_path(path);
}

void SettingsWindow::switch_manager_at(size_t index) {
    if (index >= view_.managers.size()) return;
    const SwitchedManager done = switch_manager(view_.managers[index]);
    view_.message = done.message;
    view_.is_problem = done.is_problem;
    show();
}

void SettingsWindow::move_folder(int step) {
    std::vector<std::string> entries = list();
    const size_t other = view_.folder + static_cast<size_t>(step);
    if (view_.folder >= entries.size() || other >= entries.size()) return;
    std::swap(entries[view_.folder], entries[other]);
    view_.folder = other;
    change_list(entries);
}

void SettingsWindow::reset_page() {
    for (const SettingState& state : view_.states) reset_setting(*state.setting);
    tell(save_settings() ? "" : not_saved());
    if (view_.message.empty()) view_.message = translated("This page has its defaults again.");
    show();
}

// The lower corner of a widget on the screen, on the side where lines begin: there a menu opens.
NSPoint SettingsWindow::corner_of(int item) {
    const Widget* widget = [panel_ content].widget(item);
    const Area area = widget ? widget->area : Area{};
    const int left = [panel_ content].look.mirrored ? area.right() : area.left;
    NSView* view = [panel_ contentView];
    const NSPoint base = [view convertPoint:NSMakePoint(left, area.bottom()) toView:nil];
    return [panel_ convertBaseToScreen:base];
}

void SettingsWindow::hit_list(int item) {
    std::vector<std::string> entries = list();
    const auto at = entries.begin() + static_cast<ptrdiff_t>(view_.folder);
    switch (item) {
        case path_item:
        case add_item:
            return add_path([panel_ content].widget(path_item)->text);
        case choose_item:
            return add_path(choose_folder(corner_of(choose_item)));
        case separator_item:
            entries.insert(at + 1, separator_entry);
            view_.folder++;
            return change_list(entries);
        case remove_item:
            entries.erase(at);
            return change_list(entries);
        case up_item:
            return move_folder(-1);
        case down_item:
            return move_folder(1);
    }
}

void SettingsWindow::hit(int item) {
    if (item == close_item) return [NSApp stopModalWithCode:closed];
    if (item == reset_item) return reset_page();
    if (item >= managers_item) return switch_manager_at(static_cast<size_t>(item - managers_item));
    if (item >= folders_item) {
        view_.folder = static_cast<size_t>(item - folders_item);
        return show();
    }
    if (item >= settings_item) return change_setting(static_cast<size_t>(item - settings_item));
    if (item >= pages_item) return choose_page(static_cast<size_t>(item - pages_item));
    hit_list(item);
}

int tell_it_is_open() {
    fprintf(output_stream(), "%s\n",
            translated("The settings window is open already; it is in front now."));
    return exit_done;
}

}  // namespace

int run_settings_window() {
    std::string problem;
    const bool has_display = display_answers(&problem);
    if (has_display && bring_named_window_forward(window_name)) return tell_it_is_open();
    if (!has_display || !prepare_menus(&problem)) {
        if (problem.empty()) {
            problem = translated(
                "there is no display for the settings window; use delvio settings list, get, set, "
                "add, remove and reset");
        }
        complain_about_usage(problem);
        return exit_failed;
    }
    @autoreleasepool {
        MenuEnder* ender = [[MenuEnder new] autorelease];
        [ender watchForSignals];
        const bool is_shown = SettingsWindow().run();
        [ender stop];
        // Another one was opened at the same moment.
        if (!is_shown && bring_named_window_forward(window_name)) return tell_it_is_open();
    }
    return signal_caught() ? 128 + signal_caught() : exit_done;
}
