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

// The first existing path; if there is none, *sought names the places.
std::string find_in(const std::vector<fs::path>& folders, const std::string& name,
                    std::string* sought) {
    std::error_code error;
    for (const fs::path& folder : folders) {
        if (fs::is_directory(folder / name, error)) return folder / name;
        *sought += (sought->empty() ? "" : " or ") + folder.string();
    }
    return {};
}

}  // namespace

std::string find_plug_in(std::string* problem, const std::string& folder) {
    std::error_code error;
    if (const char* chosen = getenv("DELVIO_BUNDLE"); chosen && *chosen) {
        if (fs::is_directory(chosen, error)) return chosen;
        *problem = "DELVIO_BUNDLE names no bundle: " + std::string(chosen);
        return {};
    }
    const auto folders = folder.empty() ? folders_beside_program() : std::vector<fs::path>{folder};
    std::string sought;
    const std::string found = find_in(folders, "Delvio.bundle", &sought);
    if (found.empty()) {
        *problem = "the plug-in is missing: no Delvio.bundle in " + sought +
                   "; build or install it, or set DELVIO_BUNDLE";
    }
    return found;
}

std::string find_bundle(const std::string& name, std::string* problem) {
    std::string sought;
    const std::string found = find_in(folders_beside_program(), name, &sought);
    if (found.empty()) *problem = "there is no " + name + " in " + sought;
    return found;
}
