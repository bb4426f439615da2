// The desktop's list of recent documents, to which every program of the user's may add.
#include "desktop/recent_documents.h"

#include <glib.h>

#include "require.h"
#include "scratch.h"

namespace {

void say_nothing(const char*, GLogLevelFlags, const char*, void*) {}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const std::string path = std::string(getenv("XDG_DATA_HOME")) + "/recently-used.xbel";
    // GLib warns of each text between elements.
    g_log_set_default_handler(say_nothing, nullptr);
    // A new file each time, since one that looks unchanged is not read again.
    unlink(path.c_str());
    fuzz::write_file(path, std::string(reinterpret_cast<const char*>(data), size));
    for (const char* identifier : {"gedit", "org.gnome.gedit", ""}) {
        const auto documents = files::recent_documents(identifier, 3);
        fuzz::require(documents.size() <= 3, "no more than were asked for");
        for (const std::string& address : documents) {
            fuzz::require(address.starts_with("file:"), "only files");
        }
    }
    return 0;
}
