#include "wayland/wayland_module.h"

#include <dlfcn.h>
#include <stdlib.h>

#include <filesystem>

#include "x11/server_monitors.h"

namespace {

// The library is beside this one.
std::string library_path() {
    Dl_info here;
    if (!dladdr(reinterpret_cast<const void*>(&library_path), &here)) return {};
    std::error_code error;
    const auto folder = std::filesystem::canonical(here.dli_fname, error).parent_path();
    return (folder / "libdelvio-wayland.so").string();
}

}  // namespace

// The library stays loaded, as another menu of this process needs it again.
void* wayland_function(const char* name) {
    const char* compositor = getenv("WAYLAND_DISPLAY");
    if (!compositor || !*compositor || !server_is_xwayland()) return nullptr;
    static void* const library = dlopen(library_path().c_str(), RTLD_NOW | RTLD_LOCAL);
    return library ? dlsym(library, name) : nullptr;
}
