#include "desktop/open_file.h"

#include <host/text.h>
#include <host/glib_owners.h>
#include <gio/gdesktopappinfo.h>
#include <gio/gio.h>
#include <stdlib.h>
#include <sys/stat.h>

#include "desktop/desktop_entries.h"
#include "desktop/open_failures.h"
#include "desktop/program_launch.h"

namespace {

using files::ObjectOwner;

std::string content_type(const std::string& path) {
    const ObjectOwner<GFile> file(g_file_new_for_path(path.c_str()));
    const ObjectOwner<GFileInfo> info(g_file_query_info(file.get(),
                                                        G_FILE_ATTRIBUTE_STANDARD_CONTENT_TYPE,
                                                        G_FILE_QUERY_INFO_NONE, nullptr, nullptr));
    const char* type = info ? g_file_info_get_content_type(info.get()) : nullptr;
    return type ? type : "";
}

bool is_of_entry_type(const std::string& type) {
    const files::TextOwner entry(g_content_type_from_mime_type("application/x-desktop"));
    return entry && g_content_type_is_a(type.c_str(), entry.get());
}

// Told by the file's type, or by the name of a link's target.
bool is_desktop_entry(const std::string& path, const std::string& type) {
    const files::TextOwner real(realpath(path.c_str(), nullptr));
    return is_of_entry_type(type) || (real && g_str_has_suffix(real.get(), ".desktop"));
}

// Keeps the first reason: it is about the program that the user has chosen. A hidden program is one
// that the user has removed; GLib finds it all the same where a list of programs still names it.
bool launch(void* program, const std::string& path, std::string* reason) {
    if (!program || !G_IS_DESKTOP_APP_INFO(program)) return false;
    GDesktopAppInfo* const entry = G_DESKTOP_APP_INFO(program);
    if (g_desktop_app_info_get_is_hidden(entry)) return false;
    std::string problem;
    if (start_entry(entry, {path}, &problem) == Start::done) return true;
    if (reason->empty()) {
        *reason = translated("%s does not start: %s",
                             {g_app_info_get_name(G_APP_INFO(program)), problem});
    }
    return false;
}

std::string no_program_for(const std::string& type) {
    const files::TextOwner name(g_content_type_get_mime_type(type.c_str()));
    return translated("no installed program is set for files of its type, %s",
                      {name ? name.get() : type});
}

void release_programs(GList* programs) { g_list_free_full(programs, g_object_unref); }
using ProgramsOwner = std::unique_ptr<GList, files::Release<release_programs>>;

bool launch_for_type(const std::string& type, const std::string& path, std::string* reason) {
    const ObjectOwner<GAppInfo> chosen(g_app_info_get_default_for_type(type.c_str(), FALSE));
    if (launch(chosen.get(), path, reason)) return true;
    // The default may need something that is missing here, such as a terminal. The next program
    // that starts will do.
    const ProgramsOwner programs(g_app_info_get_all_for_type(type.c_str()));
    bool started = false;
    for (GList* i = programs.get(); i && !started; i = i->next) {
        started = launch(i->data, path, reason);
    }
    if (!started && reason->empty()) *reason = no_program_for(type);
    return started;
}

// Starts what the entry names, if the entry is believed. Any other entry is opened as a text,
// because nobody knows what a program for such files would do with it.
bool open_entry(const std::string& path, std::string* reason) {
    if (files::desktop_entry_at(path).standing == files::Standing::document) {
        return launch_for_type("text/plain", path, reason);
    }
    const Start start = start_entry_file(path, {}, reason);
    if (start != Start::done && start != Start::not_installed) {
        *reason = translated("it does not start: %s", {*reason});
    }
    return start == Start::done;
}

}  // namespace

bool open_with_default_program(const std::string& path, std::string* reason) {
    *reason = files::why_not_openable(path);
    if (!reason->empty()) return false;
    const std::string type = content_type(path);
    struct stat entry;
    if (type.empty() || stat(path.c_str(), &entry) != 0) {
        *reason = translated("its file type is unknown");
        return false;
    }
    if (S_ISREG(entry.st_mode) && is_desktop_entry(path, type)) return open_entry(path, reason);
    return launch_for_type(type, path, reason);
}
