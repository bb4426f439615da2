// The pointer over the surfaces of a stage, in pixels of the X screen.
#pragma once

#include <deque>
#include <optional>

#include "wayland/layer/cursor_picture.h"
#include "wayland/layer/layer_surfaces.h"
#include "wayland/menu_stage.h"

class StagePointer {
  public:
    StagePointer(const Compositor& compositor, const LayerSurfaces& surfaces,
                 std::deque<StageEvent>& events)
        : cursor_(compositor), surfaces_(surfaces), events_(events) {}
    ~StagePointer();
    StagePointer(const StagePointer&) = delete;
    StagePointer& operator=(const StagePointer&) = delete;

    void listen(wl_seat* seat);
    std::optional<StagePlace> place() const { return place_; }
    // The outputs have their places on the X screen now: a pointer that came earlier has its own.
    void outputs_are_placed();
    bool is_button_down() const { return buttons_ > 0; }

  private:
    static void enter(void* data, wl_pointer*, uint32_t serial, wl_surface*, wl_fixed_t x,
                      wl_fixed_t y);
    static void leave(void* data, wl_pointer*, uint32_t serial, wl_surface*);
    static void motion(void* data, wl_pointer*, uint32_t time, wl_fixed_t x, wl_fixed_t y);
    static void button(void* data, wl_pointer*, uint32_t serial, uint32_t time, uint32_t code,
                       uint32_t state);
    void move_to(double x, double y);

    CursorPicture cursor_;
    const LayerSurfaces& surfaces_;
    std::deque<StageEvent>& events_;
    wl_pointer* pointer_ = nullptr;
    const CoveredOutput* output_ = nullptr;  // that the pointer is over
    double across_ = 0, down_ = 0;           // on that output, in parts of its size
    std::optional<StagePlace> place_;
    int buttons_ = 0;  // that are held
};
