// A file that says that it is an application's entry; anybody can send one.
#include "desktop/entry_file.h"

#include <host/offered_entries.h>

#include "desktop/installed_applications.h"
#include "require.h"
#include "scratch.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const std::string path = fuzz::scratch() + "/a.desktop";
    fuzz::write_file(path, std::string(reinterpret_cast<const char*>(data), size));
    std::string name;
    is_offered_entry(path, &name);
    files::InstalledApplication application = {};
    const bool is_one = files::read_application(path, &application);
    const files::EntryFile* entry = files::read_entry_file(path);
    fuzz::require(is_one == (entry != nullptr), "both readers agree");
    if (!entry) return 0;
    const std::string program = files::program_of_command(entry->command.c_str());
    fuzz::require(program.find('/') == program.npos, "a program is told by its file name");
    fuzz::require(program == application.program, "the program of the command");
    return 0;
}
