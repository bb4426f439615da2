#include "file_managers/managers.h"

#include <host/text.h>

#include <glib.h>

#include "file_managers/thunar_actions.h"

namespace {

constexpr mode_t plain = 0644, executable = 0755;

std::string config_folder() { return g_get_user_config_dir(); }
std::string data_folder() { return g_get_user_data_dir(); }

using Text = std::string (*)(const Invocation& invocation, const std::string& line);

EntryFile whole(const std::string& path, mode_t mode, Text text, const Invocation& invocation) {
    return whole_file(path, mode, [=](const std::string& line) { return text(invocation, line); });
}

// The first file of actions that the system brings.
FileText system_actions() {
    for (const char* const* folder = g_get_system_config_dirs(); *folder; folder++) {
        FileText text;
        std::string unused;
        if (read_user_file(*folder + std::string("/Thunar/uca.xml"), &text, &unused) && text) {
            return text;
        }
    }
    return {};
}

std::vector<EntryFile> thunar(const Invocation& invocation) {
    std::string command;
    for (const char byte : shell_word(invocation.command)) {
        command += byte == '%' ? "%%" : std::string(1, byte);
    }
    return {thunar_actions(config_folder() + "/Thunar/uca.xml", command + " menu -- %F",
                           invocation.icon, system_actions())};
}

std::vector<EntryFile> nemo(const Invocation& invocation) {
    const std::string folder = data_folder() + "/nemo/actions";
    return {whole(folder + "/delvio.nemo_action", plain, nemo_files_text, invocation),
            whole(folder + "/delvio-folder.nemo_action", plain, nemo_folder_text, invocation)};
}

std::vector<EntryFile> caja(const Invocation& invocation) {
    return {whole(config_folder() + "/caja/scripts/Delvio", executable, script_text, invocation)};
}

std::vector<EntryFile> nautilus(const Invocation& invocation) {
    return {whole(data_folder() + "/nautilus/scripts/Delvio", executable, script_text, invocation)};
}

std::vector<EntryFile> pcmanfm(const Invocation& invocation) {
    return {whole(data_folder() + "/file-manager/actions/delvio.desktop", plain, action_entry_text,
                  invocation)};
}

// Dolphin runs a user's service menu only if its file may be executed.
std::vector<EntryFile> dolphin(const Invocation& invocation) {
    return {whole(data_folder() + "/kio/servicemenus/delvio.desktop", executable, service_menu_text,
                  invocation)};
}

constexpr const char* in_menu =
    to_translate("Right-click files or an empty place, then choose Delvio.");
constexpr const char* under_scripts =
    to_translate("Right-click files, then choose Scripts, then Delvio.");

const std::vector<FileManager> managers = {
    {"caja", "Caja", "caja", caja, to_translate("%s has Delvio under Scripts in its menus:"),
     under_scripts},
    {"dolphin", "Dolphin", "dolphin", dolphin, to_translate("%s has Delvio in its menus:"),
     in_menu},
    {"gworkspace", "GWorkspace", "GWorkspace", nullptr, "",
     to_translate("Right-click files: their menus have Delvio's items.")},
    {"nautilus", "Nautilus", "nautilus", nautilus,
     to_translate("%s has Delvio under Scripts in its menus:"), under_scripts},
    {"nemo", "Nemo", "nemo", nemo, to_translate("%s has Delvio in its menus:"), in_menu},
    {"pcmanfm", "PCManFM", "pcmanfm", pcmanfm,
     to_translate(
         "%s has Delvio in its menus, and in those of PCManFM-Qt, which reads the same file:"),
     in_menu},
    {"pcmanfm-qt", "PCManFM-Qt", "pcmanfm-qt", pcmanfm,
     to_translate(
         "%s has Delvio in its menus, and in those of PCManFM, which reads the same file:"),
     in_menu},
    {"thunar", "Thunar", "thunar", thunar, to_translate("%s has Delvio in its menus:"), in_menu},
};

}  // namespace

const std::vector<FileManager>& file_managers() { return managers; }

const FileManager* find_file_manager(const std::string& name) {
    for (const FileManager& manager : managers) {
        if (name == manager.name) return &manager;
    }
    return nullptr;
}

bool is_found(const FileManager& manager) {
    char* path = g_find_program_in_path(manager.program);
    const bool found = path != nullptr;
    g_free(path);
    return found;
}
