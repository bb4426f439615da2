#include "finderkit/plug_in.h"

#include <host/text.h>

#include <dlfcn.h>
#include <stdlib.h>
#include <unistd.h>

#include <filesystem>

namespace fs = std::filesystem;

namespace {

// The folder of this library, which is also the folder of the bundles.
fs::path library_folder() {
    Dl_info library;
    if (!dladdr(reinterpret_cast<const void*>(&find_bundle), &library)) return {};
    std::error_code error;
    return fs::canonical(library.dli_fname, error).parent_path();
}

}  // namespace

std::string find_plug_in(std::string* problem, const std::string& folder) {
    std::error_code error;
    if (const char* chosen = getenv("DELVIO_BUNDLE"); chosen && *chosen) {
        if (fs::is_directory(chosen, error)) return chosen;
        *problem = translated("DELVIO_BUNDLE names no bundle: %s", {chosen});
        return {};
    }
    const fs::path place = folder.empty() ? library_folder() : fs::path(folder);
    if (fs::is_directory(place / "Delvio.bundle", error)) return place / "Delvio.bundle";
    *problem = translated(
        "the plug-in is missing: no Delvio.bundle in %s; build or install it, or set DELVIO_BUNDLE",
        {place.string()});
    return {};
}

std::string find_bundle(const std::string& name, std::string* problem) {
    std::error_code error;
    const fs::path bundle = library_folder() / name;
    if (fs::is_directory(bundle, error)) return bundle;
    *problem = translated("there is no %s in %s", {name, library_folder().string()});
    return {};
}

std::string find_command(std::string* problem) {
    const fs::path library = library_folder();
    std::error_code error;
    for (const char* way : {"../bin/delvio", DELVIO_COMMAND_FROM_LIBRARY}) {
        const fs::path command = fs::canonical(library / way, error);
        if (!error && access(command.c_str(), X_OK) == 0) return command;
    }
    *problem = translated("there is no delvio command beside %s", {library.string()});
    return {};
}
