#include "wayland/prepared_stage.h"

#include <host/menu_stage.h>

namespace {

std::unique_ptr<MenuStage>& prepared() {
    static std::unique_ptr<MenuStage> stage;
    return stage;
}

}  // namespace

PreparedMenuStage::PreparedMenuStage() { prepared() = open_menu_stage(); }

PreparedMenuStage::~PreparedMenuStage() { prepared().reset(); }

bool PreparedMenuStage::pointer(int* x, int* y) const {
    if (!prepared()) return false;
    const std::optional<StagePlace> place =
        prepared()->wait_for_pointer(prepared()->longest_wait());
    if (!place) return false;
    *x = place->x;
    *y = place->y;
    return true;
}

std::unique_ptr<MenuStage> take_prepared_stage() { return std::move(prepared()); }
