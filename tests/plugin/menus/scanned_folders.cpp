#include "plugin/menus/scanned_folders.h"

#include <dirent.h>
#include <dlfcn.h>

namespace {

std::vector<std::string> scanned;

}  // namespace

std::vector<std::string> test::take_scanned_folders() {
    std::vector<std::string> taken;
    taken.swap(scanned);
    return taken;
}

extern "C" int scandir(const char* path, dirent*** list, int (*filter)(const dirent*),
                       int (*compare)(const dirent**, const dirent**)) {
    scanned.push_back(path);
    static auto* next = reinterpret_cast<decltype(&scandir)>(dlsym(RTLD_NEXT, "ScanFolder"));
    return next(path, list, filter, compare);
}
