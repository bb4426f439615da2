#include "wayland/menu_stage.h"

#include <errno.h>
#include <poll.h>

#include <mutex>

#include "events/deadline.h"
#include "wayland/cover_stage.h"
#include "wayland/stage_module.h"
#include "wayland/wayland_module.h"

namespace {

std::mutex symbols_lock;
std::vector<uint32_t> held_symbols;

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
    const auto open = reinterpret_cast<OpenLayerStage>(wayland_function(open_layer_stage_name));
    if (!open) return nullptr;
    std::unique_ptr<MenuStage> stage(open({server_monitors(), set_stage_symbols}));
    return stage ? std::move(stage) : open_cover_stage();
}

std::vector<uint32_t> stage_symbols() {
    const std::lock_guard lock(symbols_lock);
    return held_symbols;
}

void set_stage_symbols(std::vector<uint32_t> symbols) {
    const std::lock_guard lock(symbols_lock);
    held_symbols = std::move(symbols);
}
