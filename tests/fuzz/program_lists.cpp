// The list of the user's programs for each type of file (mimeapps.list), which GLib reads for us.
#include <gio/gio.h>
#include <gio/gdesktopappinfo.h>

#include <algorithm>
#include <filesystem>

#include "desktop/desktop_entries.h"
#include "desktop/open_failures.h"
#include "desktop/open_file.h"
#include "desktop/program_launch.h"
#include "input.h"
#include "scratch.h"

using fuzz::require;

namespace {

// The last one is hidden.
const std::vector<std::string> programs = {"one.desktop", "two.desktop", "folder-three.desktop",
                                           "four.desktop"};
unsigned starting;  // a bit for each program that can be started
std::vector<std::string> asked;
bool was_started;

// Written before GLib looks for the first time.
void install_programs() {
    const std::string folder = std::string(getenv("XDG_DATA_HOME")) + "/applications/";
    std::filesystem::create_directories(folder + "folder");
    std::filesystem::create_directories(getenv("XDG_CONFIG_HOME"));
    setenv("XDG_DATA_DIRS", fuzz::scratch().c_str(), 1);
    const std::string entry = "[Desktop Entry]\nType=Application\nName=Tried\nExec=true %f\n";
    fuzz::write_file(folder + "one.desktop", entry);
    fuzz::write_file(folder + "two.desktop", entry);
    fuzz::write_file(folder + "folder/three.desktop", entry);
    fuzz::write_file(folder + "four.desktop", entry + "Hidden=true\n");
    fuzz::write_file(folder + "mimeinfo.cache",
                     "[MIME Cache]\ntext/plain=one.desktop;two.desktop;four.desktop;\n");
}

// GLib keeps the list; what it has written itself it reads again.
void write_list(const std::string& list) {
    g_app_info_reset_type_associations("text/x-no-such-type");
    fuzz::write_file(std::string(getenv("XDG_CONFIG_HOME")) + "/mimeapps.list", list);
}

}  // namespace

// The target starts nothing.
Start start_entry(GDesktopAppInfo* entry, const std::vector<std::string>& documents,
                  std::string* reason) {
    require(!was_started, "one program is started");
    require(documents.size() == 1, "a program gets the file");
    const char* const id = g_app_info_get_id(G_APP_INFO(entry));
    const auto found = std::find(programs.begin(), programs.end() - 1, id ? id : "");
    require(found != programs.end() - 1, "a program that is installed and not hidden");
    asked.push_back(*found);
    was_started = starting >> (found - programs.begin()) & 1;
    if (!was_started) *reason = *found;
    return was_started ? Start::done : Start::failed;
}

Start start_entry_file(const std::string&, const std::vector<std::string>&, std::string*) {
    require(false, "no entry is opened");
    return Start::failed;
}

namespace files {

std::string why_not_openable(const std::string&) { return {}; }
DesktopEntry desktop_entry_at(const std::string&) { return {Standing::document, false, "", ""}; }

}  // namespace files

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const std::string file = [] {
        install_programs();
        fuzz::write_file(fuzz::scratch() + "/a.txt", "text");
        return fuzz::scratch() + "/a.txt";
    }();
    fuzz::Input input(data, size);
    starting = input.byte();
    write_list(input.rest());
    asked.clear();
    was_started = false;
    std::string reason;
    const bool is_open = open_with_default_program(file, &reason);
    require(is_open == was_started, "it is open when a program was started");
    require(is_open || !reason.empty(), "a reason");
    // The first one is the user's choice, so what it says comes first.
    if (!is_open && !asked.empty()) {
        require(reason.find(asked[0]) != reason.npos, "the reason of the chosen program");
    }
    return 0;
}
