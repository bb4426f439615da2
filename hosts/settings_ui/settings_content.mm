#include "settings_ui/settings_content.h"

#include <host/text.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>

#include <algorithm>

#include "corefoundation/patient_stat.h"
#include "file_steps/visible_text.h"
#include "look/menu_text.h"
#include "settings/list_edits.h"

using operations::visible_text;

namespace {

// Measures in points.
constexpr double width = 1008, height = 560, margin = 24;
constexpr double tabs_width = 156, tab_height = 30;
constexpr double left = margin + tabs_width + 28, column = 404;
constexpr double example_left = left + column + 20;
constexpr double example_width = width - example_left - 8;
constexpr double page_top = 66, button_height = 30, footer_top = height - margin - button_height;
constexpr double small_text = 11, text = 13;
constexpr double row_height = 25, list_rows = 7, list_width = 286, side_button = 108;
constexpr double manager_height = 51;

enum Group { no_group, pages_group, folders_group };

// A disk that does not answer holds the window no longer than this, and its folders are not
// missing.
constexpr double disk_patience = 0.2;

bool is_missing(const std::string& entry) {
    struct stat ignored;
    return entry != separator_entry &&
           files::ask_patiently(entry, disk_patience, &ignored) == files::Answer::missing;
}

// A path below the home folder begins with a tilde.
std::string short_path(const std::string& path) {
    const char* const home = getenv("HOME");
    if (!home || !*home || !path.starts_with(home)) return path;
    const std::string rest = path.substr(strlen(home));
    return rest.empty() || rest[0] == '/' ? "~" + rest : path;
}

class Builder {
  public:
    explicit Builder(const SettingsView& view) : view_(view), content_(empty_settings()) {
        content_.size = {content_.pixels(width), content_.pixels(height)};
        content_.cancel_item = close_item;
    }
    PanelContent build();

  private:
    Widget& add(WidgetKind kind, double x, double y, double wide, double high,
                const std::string& words = "", int item = 0);
    void add_label(const Setting& setting, double y);
    void add_reason(const std::string& reason, double x, double y);
    void add_setting(const SettingState& state, int item, double y);
    void add_flag(const SettingState& state, int item, double y);
    void add_choice(const SettingState& state, int item, double y);
    void add_number(const SettingState& state, int item, double y);
    void add_path(const SettingState& state, int item, double y);
    void add_list(const SettingState& state, double y);
    void add_managers();
    void add_rows(const std::vector<std::string>& list, double y);
    void add_side_buttons(const std::vector<std::string>& list, double y);
    void add_tabs();
    void add_example();
    void add_footer();
    void add_message(double x, double wide);

    const SettingsView& view_;
    PanelContent content_;
};

Widget& Builder::add(WidgetKind kind, double x, double y, double wide, double high,
                     const std::string& words, int item) {
    Widget widget = {kind, content_.area(x, y, wide, high), words, item, text};
    content_.widgets.push_back(widget);
    return content_.widgets.back();
}

void Builder::add_label(const Setting& setting, double y) {
    add(WidgetKind::text, left, y, column, 20, label_of(setting));
}

void Builder::add_reason(const std::string& reason, double x, double y) {
    Widget& widget = add(WidgetKind::text, x, y, left + column - x, 16, visible_text(reason));
    widget.size = small_text;
    widget.alpha = dimmed_text_alpha;
}

void Builder::add_flag(const SettingState& state, int item, double y) {
    add(WidgetKind::check, left, y, column, 22, label_of(*state.setting), item).on =
        state.value.number != 0;
    add_reason(reason_of(*state.setting), left + 24, y + 22);
}

void Builder::add_choice(const SettingState& state, int item, double y) {
    const std::vector<std::string> choices = choices_of(*state.setting);
    const auto at = static_cast<size_t>(choice_of(*state.setting, state.value));
    add_label(*state.setting, y);
    add_reason(reason_of(*state.setting), left, y + 20);
    add(WidgetKind::choice, left, y + 40, 300, 28, at < choices.size() ? choices[at] : "", item)
        .label = label_of(*state.setting);
}

void Builder::add_number(const SettingState& state, int item, double y) {
    constexpr double field = 96;
    add(WidgetKind::text, left, y + 4, column - field - 12, 20, label_of(*state.setting));
    add(WidgetKind::field, left + column - field, y, field, 28, std::to_string(state.value.number),
        item)
        .label = label_of(*state.setting);
    add_reason(reason_of(*state.setting), left, y + 27);
}

void Builder::add_path(const SettingState& state, int item, double y) {
    const bool is_set = state.stored && !state.value.strings.empty();
    add_label(*state.setting, y);
    add_reason(reason_of(*state.setting), left, y + 20);
    add(WidgetKind::field, left, y + 42, column, 28, is_set ? state.value.strings.front() : "",
        item)
        .label = label_of(*state.setting);
}

// The part of a long list around the selected folder.
void Builder::add_rows(const std::vector<std::string>& list, double y) {
    const auto most = static_cast<size_t>(list_rows);
    const size_t first =
        view_.folder < most ? 0 : std::min(view_.folder - most + 1, list.size() - most);
    const size_t end = std::min(list.size(), first + most);
    for (size_t i = first; i < end; i++) {
        std::string words = visible_text(short_path(list[i]));
        if (list[i] == separator_entry) words = std::string("———  ") + translated("line") + "  ———";
        if (is_missing(list[i])) words = translated("%s  (missing)", {words});
        Widget& row =
            add(WidgetKind::row, left + 5, y + 5 + row_height * static_cast<double>(i - first),
                list_width - 10, row_height, words, folders_item + static_cast<int>(i));
        row.group = folders_group;
        row.on = i == view_.folder;
        if (is_missing(list[i]) || list[i] == separator_entry) row.alpha = 0.6;
    }
    if (!list.empty()) return;
    Widget& hint =
        add(WidgetKind::paragraph, left + 16, y + 24, list_width - 32, 80,
            translated("No folders yet. Choose one, type its path below, or drop it here."));
    hint.alpha = dimmed_text_alpha;
}

void Builder::add_side_buttons(const std::vector<std::string>& list, double y) {
    const bool has_any = view_.folder < list.size();
    const struct {
        int item;
        const char* title;
        bool enabled;
    } buttons[] = {
        {choose_item, translated("Choose…"), true},
        {separator_item, translated("Add Line"), !list.empty()},
        {remove_item, translated("Remove"), has_any},
        {up_item, translated("Move Up"), has_any && view_.folder > 0},
        {down_item, translated("Move Down"), has_any && view_.folder + 1 < list.size()},
    };
    for (const auto& button : buttons) {
        add(WidgetKind::button, left + column - side_button, y, side_button, button_height,
            button.title, button.item)
            .disabled = !button.enabled;
        y += button_height + 7;
    }
}

void Builder::add_list(const SettingState& state, double y) {
    constexpr double frame_height = list_rows * row_height + 10;
    const std::vector<std::string>& list = state.value.strings;
    add_reason(reason_of(*state.setting), left, y);
    y += 24;
    add(WidgetKind::frame, left, y, list_width, frame_height);
    add_rows(list, y);
    add_side_buttons(list, y);
    y += frame_height + 10;
    add(WidgetKind::field, left, y, list_width, 30, view_.new_path, path_item).hint =
        translated("The path of another folder");
    add(WidgetKind::button, left + column - side_button, y, side_button, button_height,
        translated("Add"), add_item);
}

void Builder::add_setting(const SettingState& state, int item, double y) {
    switch (state.setting->type) {
        case SettingType::flag:
            return add_flag(state, item, y);
        case SettingType::integer:
        case SettingType::word:
            return choices_of(*state.setting).empty() ? add_number(state, item, y)
                                                      : add_choice(state, item, y);
        case SettingType::path:
            return add_path(state, item, y);
        case SettingType::paths:
            return add_list(state, y);
    }
}

void Builder::add_managers() {
    double y = page_top;
    if (!view_.managers.empty()) {
        add_reason(translated("Switch on those that are to have Delvio in their menus."), left, y);
        y += 28;
    }
    for (size_t i = 0; i < view_.managers.size(); i++) {
        const ShownManager& manager = view_.managers[i];
        add(WidgetKind::check, left, y, column, 22, manager.title,
            managers_item + static_cast<int>(i))
            .on = manager.has_delvio;
        add_reason(manager.place, left + 24, y + 22);
        y += manager_height;
    }
    if (!view_.managers.empty()) return;
    add(WidgetKind::paragraph, left, y, column, 120,
        translated("No file manager was found whose menu can have Delvio. Any other program can "
                   "show the menu too: let a key of your desktop run \"delvio menu\"."))
        .alpha = dimmed_text_alpha;
}

void Builder::add_tabs() {
    constexpr double beyond = 12;  // the corners of the frame are outside the window
    add(WidgetKind::frame, -beyond, -beyond, margin + tabs_width + beyond, height + 2 * beyond);
    double y = margin - 4;
    for (size_t i = 0; i < view_.pages.size(); i++) {
        Widget& tab = add(WidgetKind::row, margin - 12, y, tabs_width, tab_height,
                          view_.pages[i].title, pages_item + static_cast<int>(i));
        tab.group = pages_group;
        tab.on = i == view_.page;
        y += tab_height + 2;
    }
}

void Builder::add_example() {
    Widget& title = add(WidgetKind::text, example_left + 16, margin, example_width - 16, 22,
                        translated("Your menu"));
    title.bold = true;
    title.alpha = dimmed_text_alpha;
    add(WidgetKind::picture, example_left, page_top - 14, example_width, footer_top - page_top)
        .picture = view_.example;
}

void Builder::add_footer() {
    add(WidgetKind::button, left, footer_top, 120, button_height, translated("Reset This Page"),
        reset_item)
        .disabled = view_.pages[view_.page].has_managers;
    add(WidgetKind::button, width - margin - 96, footer_top, 96, button_height, translated("Close"),
        close_item);
    if (view_.message.empty()) return;
    double x = left + 132;
    if (view_.is_problem) {
        add(WidgetKind::sign, x, footer_top + 6, 18, 18).sign = Sign::caution;
        x += 26;
    }
    add_message(x, width - margin - 110 - x);
}

// A long message wraps, and its lines stand beside the middle of the buttons.
void Builder::add_message(double x, double wide) {
    Widget& message =
        add(WidgetKind::paragraph, x, footer_top, wide, 0, visible_text(view_.message));
    Area& area = message.area;
    area.height =
        text_height(paragraph(content_.look, message.text, message.size, false, area.width));
    area.top += (content_.pixels(button_height) - area.height) / 2;
}

PanelContent Builder::build() {
    add_tabs();
    Widget& title = add(WidgetKind::text, left, margin, column, 24, view_.pages[view_.page].title);
    title.size = 17;
    title.bold = true;
    double y = page_top;
    for (size_t i = 0; i < view_.states.size(); i++) {
        add_setting(view_.states[i], settings_item + static_cast<int>(i), y);
        y += height_of(*view_.states[i].setting);
    }
    if (view_.pages[view_.page].has_managers) add_managers();
    add_footer();
    add_example();
    return content_;
}

}  // namespace

PanelContent empty_settings() {
    PanelContent content;
    content.fit(width, height);
    return content;
}

double page_height() { return footer_top - page_top; }

Extent example_room(const MenuLook& look) {
    return {static_cast<int>(example_width * look.scale),
            static_cast<int>((footer_top - page_top) * look.scale)};
}

PanelContent settings_content(const SettingsView& view) { return Builder(view).build(); }
