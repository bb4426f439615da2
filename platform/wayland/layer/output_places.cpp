#include "wayland/layer/output_places.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <tuple>

namespace {

const Monitor* named(const std::vector<Monitor>& monitors, const std::string& name) {
    const auto found = std::find_if(monitors.begin(), monitors.end(),
                                    [&](const Monitor& monitor) { return monitor.name == name; });
    return found == monitors.end() ? nullptr : &*found;
}

bool stands_before(const ScreenArea& one, const ScreenArea& other) {
    return std::tie(one.x, one.y) < std::tie(other.x, other.y);
}

// The indices from left to right, then from top to bottom.
template <typename Screen>
std::vector<size_t> in_order(const std::vector<Screen>& screens) {
    std::vector<size_t> order(screens.size());
    std::iota(order.begin(), order.end(), size_t{0});
    std::sort(order.begin(), order.end(), [&](size_t one, size_t other) {
        return stands_before(screens[one].area, screens[other].area);
    });
    return order;
}

}  // namespace

StagePlace place_in(const ScreenArea& area, double across, double down) {
    const auto pixel = [](double part, int size) {
        return std::clamp(static_cast<int>(part * size), 0, std::max(0, size - 1));
    };
    return {area.x + pixel(across, area.width), area.y + pixel(down, area.height)};
}

StagePlace place_beside(const ScreenArea& area, double across, double down) {
    return {area.x + static_cast<int>(std::floor(across * area.width)),
            area.y + static_cast<int>(std::floor(down * area.height))};
}

std::vector<ScreenArea> places_of_outputs(const std::vector<Output>& outputs,
                                          const std::vector<Monitor>& monitors) {
    std::vector<ScreenArea> places;
    for (const Output& output : outputs) places.push_back(output.area);
    const bool all_named = std::all_of(outputs.begin(), outputs.end(), [&](const Output& output) {
        return named(monitors, output.name) != nullptr;
    });
    if (all_named) {
        for (size_t i = 0; i < outputs.size(); i++) {
            places[i] = named(monitors, outputs[i].name)->area;
        }
    } else if (outputs.size() == monitors.size()) {
        // Older X servers number their monitors, whatever the compositor's outputs are called.
        const std::vector<size_t> mine = in_order(outputs), theirs = in_order(monitors);
        for (size_t i = 0; i < mine.size(); i++) places[mine[i]] = monitors[theirs[i]].area;
    }
    return places;
}
