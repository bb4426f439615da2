#include "wayland/menu_stage.h"

#include <dlfcn.h>
#include <errno.h>
#include <poll.h>
#include <stdlib.h>

#include <filesystem>
#include <mutex>

#include "events/deadline.h"
#include "wayland/cover_stage.h"
#include "wayland/layer/stage_module.h"

namespace {

std::mutex symbols_lock;
std::vector<uint32_t> held_symbols;

// The module is beside this library.
std::string module_path() {
    Dl_info library;
    if (!dladdr(reinterpret_cast<const void*>(&module_path), &library)) return {};
    std::error_code error;
    const auto folder = std::filesystem::canonical(library.dli_fname, error).parent_path();
    return (folder / "libdelvio-wayland.so").string();
}

// The module stays loaded, as another menu of this process needs it again.
OpenLayerStage layer_stage_opener() {
    static const auto opener = [] {
        void* module = dlopen(module_path().c_str(), RTLD_NOW | RTLD_LOCAL);
        return module ? reinterpret_cast<OpenLayerStage>(dlsym(module, open_layer_stage_name))
                      : nullptr;
    }();
    return opener;
}

}  // namespace

std::optional<StagePlace> MenuStage::wait_for_pointer(double seconds) {
    Deadline limit;
    limit.start(seconds);
    while (read() && !pointer()) {
        const int left = static_cast<int>((limit.due - seconds_now()) * 1000) + 1;
        pollfd waiting = {descriptor(), POLLIN, 0};
        if (limit.is_due()) break;
        if (poll(&waiting, 1, left) < 0 && errno != EINTR) break;
    }
    return pointer();
}

std::unique_ptr<MenuStage> open_menu_stage() {
    const char* name = getenv("WAYLAND_DISPLAY");
    if (!name || !*name || !server_is_xwayland()) return nullptr;
    bool has_layers = false;
    if (const OpenLayerStage opener = layer_stage_opener()) {
        std::unique_ptr<MenuStage> stage(
            opener({server_monitors(), set_stage_symbols}, &has_layers));
        if (stage) return stage;
    }
    return open_cover_stage();
}

std::vector<uint32_t> stage_symbols() {
    const std::lock_guard lock(symbols_lock);
    return held_symbols;
}

void set_stage_symbols(std::vector<uint32_t> symbols) {
    const std::lock_guard lock(symbols_lock);
    held_symbols = std::move(symbols);
}
