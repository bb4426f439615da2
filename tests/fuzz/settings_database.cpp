// The database of the desktop's settings, which any program of the user's may have written.
#include "desktop/settings_database.h"

#include "input.h"
#include "scratch.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Input input(data, size);
    const std::string key = input.text(input.byte() % 32);
    static const std::string path = fuzz::scratch() + "/user";
    fuzz::write_file(path, input.rest());
    files::text_in_settings_database(path, key);
    files::text_in_settings_database(path, "/org/gnome/desktop/interface/icon-theme");
    return 0;
}
