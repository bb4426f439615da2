// The description of an icon theme, which anybody may have made.
#include "desktop/icon_theme.cpp"

#include <filesystem>

#include "require.h"
#include "scratch.h"

// The target needs no other setting, and no display.
struct DesktopSettings::Sources {};
DesktopSettings::DesktopSettings() {}
DesktopSettings::~DesktopSettings() {}
std::string DesktopSettings::icon_theme() { return {}; }

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const std::string folder = [] {
        const std::string data_folder = getenv("XDG_DATA_HOME");
        setenv("XDG_DATA_DIRS", data_folder.c_str(), 1);
        const std::string theme = data_folder + "/icons/Tried";
        for (const char* name : {"16", "32", "any"}) {
            std::filesystem::create_directories(theme + "/" + name);
            fuzz::write_file(theme + "/" + name + "/folder.png", "");
        }
        return theme;
    }();
    fuzz::write_file(folder + "/index.theme",
                     std::string(reinterpret_cast<const char*>(data), size));
    IconTheme theme("Tried");
    for (const int pixels : {0, 16, 48, 1 << 20}) {
        const std::string found = find_icon(theme, {"no-such-icon", "folder"}, pixels);
        fuzz::require(found.empty() || found.ends_with("/folder.png"),
                      "the icon that was asked for");
    }
    return 0;
}
