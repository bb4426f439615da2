#include "finderkit/plug_in.h"

#include <stdlib.h>

#include <filesystem>
#include <vector>

namespace fs = std::filesystem;

namespace {

std::vector<fs::path> folders_beside_program() {
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    const fs::path library = program.parent_path().parent_path() / "lib";
    return {library, library / "delvio"};
}

}  // namespace

std::string FindPlugIn(std::string* problem, const std::string& folder) {
    std::error_code error;
    if (const char* chosen = getenv("DELVIO_BUNDLE"); chosen && *chosen) {
        if (fs::is_directory(chosen, error)) return chosen;
        *problem = "DELVIO_BUNDLE names no bundle: " + std::string(chosen);
        return {};
    }
    std::string sought;
    for (const fs::path& each :
         folder.empty() ? folders_beside_program() : std::vector<fs::path>{folder}) {
        const fs::path bundle = each / "Delvio.bundle";
        if (fs::is_directory(bundle, error)) return bundle;
        sought += (sought.empty() ? "" : " or ") + each.string();
    }
    *problem = "the plug-in is missing: no Delvio.bundle in " + sought +
               "; build or install it, or set DELVIO_BUNDLE";
    return {};
}
