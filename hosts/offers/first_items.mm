#include "offers/first_items.h"

#include <host/text.h>

#include <glib.h>

#include <algorithm>

#include "corefoundation/patient_stat.h"
#include "file_steps/visible_text.h"
#include "operations/last_done.h"
#include "settings/list_edits.h"
#include "settings/setting_store.h"

using operations::Kind;
using operations::quoted_name;

namespace {

using Paths = std::vector<std::string>;

constexpr double seconds_to_answer = 0.2;
constexpr const char* folders_setting = "folders";
constexpr long most_letters = 40, letters_at_end = 14;

// Settings are text, so a name that is not UTF-8 cannot be one of the user's folders.
bool is_folder(const std::string& path) {
    if (!g_utf8_validate(path.data(), static_cast<gssize>(path.size()), nullptr)) return false;
    const auto status = files::patient_stat(path, seconds_to_answer);
    return status && S_ISDIR(status->st_mode);
}

Paths users_folders() { return read_setting(*find_setting(folders_setting)).value.strings; }

std::string store_folders(const Paths& folders) {
    store_setting(*find_setting(folders_setting), {0, folders});
    return save_settings() ? "" : saving_problem();
}

std::string add_to_folders(const Paths& files) {
    refresh_settings();
    Paths folders = users_folders();
    for (const std::string& file : files) add_entry(&folders, file);
    return store_folders(folders);
}

std::string remove_from_folders(const Paths& files) {
    refresh_settings();
    Paths folders = users_folders();
    for (const std::string& file : files) remove_entry(&folders, file);
    return store_folders(folders);
}

// An item's title, which stays English when it is for programs.
std::string title_of(bool for_people, const char* english,
                     std::initializer_list<std::string> words = {}) {
    return filled(for_people ? translated(english) : english, words);
}

void add_folder_item(const Paths& files, bool for_people, std::vector<HostItem>* items) {
    if (!std::ranges::all_of(files, is_folder)) return;
    const Paths known = users_folders();
    const bool are_known =
        std::ranges::all_of(files, [&](const std::string& file) { return list_has(known, file); });
    if (are_known) {
        items->push_back(
            {title_of(for_people, to_translate("Remove from my folders")), remove_from_folders});
    } else {
        items->push_back({title_of(for_people, to_translate("Add to my folders")), add_to_folders});
    }
}

// With a place for the name of what was moved, or for how many items were.
const char* undo_format(Kind kind) {
    switch (kind) {
        case Kind::Move:
            return to_translate("Undo Move of %s");
        case Kind::Copy:
            return to_translate("Undo Copy of %s");
        case Kind::Alias:
            return to_translate("Undo Alias of %s");
        case Kind::Trash:
            break;
    }
    return to_translate("Undo Move to Trash of %s");
}

// A long name is shortened in its middle.
std::string short_name(const std::string& name) {
    const std::string quoted = quoted_name(name);
    const long letters = g_utf8_strlen(quoted.c_str(), -1);
    if (letters <= most_letters) return quoted;
    const char* const text = quoted.c_str();
    const char* const head_end = g_utf8_offset_to_pointer(text, most_letters - letters_at_end - 1);
    return std::string(text, head_end) + "…" +
           g_utf8_offset_to_pointer(text, letters - letters_at_end);
}

std::string undone_files(const operations::LastDone& done, bool for_people) {
    if (done.count == 0) return title_of(for_people, to_translate("many items"));
    if (done.count == 1) return short_name(done.name);
    const std::string count = std::to_string(done.count);
    if (!for_people) return count + " items";
    return translated_count("%s item", "%s items", done.count, {count});
}

std::string undo_title(const operations::LastDone& done, bool for_people) {
    return title_of(for_people, undo_format(done.kind), {undone_files(done, for_people)});
}

}  // namespace

std::vector<HostItem> first_items(const Paths& files, bool for_people,
                                  const FirstActions& actions) {
    std::vector<HostItem> items;
    add_folder_item(files, for_people, &items);
    if (const auto done = operations::last_done()) {
        items.push_back(
            {undo_title(*done, for_people), [actions](const Paths&) { return actions.undo(); }});
    }
    items.push_back({title_of(for_people, to_translate("Settings...")),
                     [actions](const Paths&) { return actions.open_settings(); }});
    return items;
}
