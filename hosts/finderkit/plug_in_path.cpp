#include "finderkit/plug_in.h"

#include <stdlib.h>

#include <filesystem>

namespace fs = std::filesystem;

std::string FindPlugIn(std::string* problem) {
    std::error_code error;
    if (const char* chosen = getenv("DELVIO_BUNDLE"); chosen && *chosen) {
        if (fs::is_directory(chosen, error)) return chosen;
        *problem = "DELVIO_BUNDLE names no bundle: " + std::string(chosen);
        return {};
    }
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    const fs::path library = program.parent_path().parent_path() / "lib";
    for (const char* name : {"Delvio.bundle", "delvio/Delvio.bundle"}) {
        if (fs::is_directory(library / name, error)) return library / name;
    }
    *problem = "the plug-in is missing: no Delvio.bundle in " + library.string() + " or " +
               (library / "delvio").string() + "; build or install it, or set DELVIO_BUNDLE";
    return {};
}
