#include "wayland/cover_stage.h"

#include "x11/screen_cover.h"

namespace {

// Keys and clicks reach the menu by its grabs: the cover is a window of the X server like any
// other.
class CoverStage : public MenuStage {
  public:
    bool open() { return cover_.open(); }
    int descriptor() const override { return cover_.descriptor(); }
    bool read() override { return cover_.read(); }
    std::optional<StageEvent> next_event() override { return std::nullopt; }
    std::optional<StagePlace> pointer() const override {
        StagePlace place = {};
        if (!cover_.knows_pointer(&place.x, &place.y)) return std::nullopt;
        return place;
    }
    // The compositor first has to show the cover, which takes longer where it draws without a GPU.
    double longest_wait() const override { return 3; }
    void menu_is_open() override { cover_.take_keyboard(); }

  private:
    ScreenCover cover_;
};

}  // namespace

std::unique_ptr<MenuStage> open_cover_stage() {
    auto stage = std::make_unique<CoverStage>();
    if (!stage->open()) return nullptr;
    return stage;
}
