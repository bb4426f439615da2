// The pointer over the surfaces of a stage, in pixels of the X screen. A finger is a pointer with
// the left button, from its touch to its lifting.
#pragma once

#include <deque>
#include <optional>

#include "wayland/layer/cursor_picture.h"
#include "wayland/layer/layer_surfaces.h"
#include "wayland/menu_stage.h"

// The press of the button that is held.
struct StagePress {
    wl_surface* surface = nullptr;  // null when none is held
    uint32_t serial = 0;            // the compositor's number of it
};

class StagePointer {
  public:
    StagePointer(const Compositor& compositor, const LayerSurfaces& surfaces,
                 std::deque<StageEvent>& events)
        : cursor_(compositor), surfaces_(surfaces), events_(events) {}
    ~StagePointer();
    StagePointer(const StagePointer&) = delete;
    StagePointer& operator=(const StagePointer&) = delete;

    void listen(wl_seat* seat);
    void listen_to_touches(wl_seat* seat);
    std::optional<StagePlace> place() const { return place_; }
    // The outputs have their places on the X screen now: a pointer that came earlier has its own.
    void outputs_are_placed();
    // Whether it is over the stage, or was when the button was pressed that is held.
    bool is_here() const { return output_ != nullptr; }
    // The buttons that are held, as XQueryPointer tells them.
    unsigned buttons() const { return buttons_; }
    StagePress press() const;

  private:
    static void enter(void* data, wl_pointer*, uint32_t serial, wl_surface*, wl_fixed_t x,
                      wl_fixed_t y);
    static void leave(void* data, wl_pointer*, uint32_t serial, wl_surface*);
    static void motion(void* data, wl_pointer*, uint32_t time, wl_fixed_t x, wl_fixed_t y);
    static void button(void* data, wl_pointer*, uint32_t serial, uint32_t time, uint32_t code,
                       uint32_t state);
    static void axis(void* data, wl_pointer*, uint32_t time, uint32_t axis, wl_fixed_t value);
    static void axis_steps(void* data, wl_pointer*, uint32_t axis, int32_t steps);
    static void frame(void* data, wl_pointer*);
    static void touch_down(void* data, wl_touch*, uint32_t serial, uint32_t time, wl_surface*,
                           int32_t finger, wl_fixed_t x, wl_fixed_t y);
    static void touch_up(void* data, wl_touch*, uint32_t serial, uint32_t time, int32_t finger);
    static void touch_motion(void* data, wl_touch*, uint32_t time, int32_t finger, wl_fixed_t x,
                             wl_fixed_t y);
    static void touch_cancel(void* data, wl_touch*);
    void change_button(int button, bool down, uint32_t serial);
    void move_to(double x, double y);

    CursorPicture cursor_;
    const LayerSurfaces& surfaces_;
    std::deque<StageEvent>& events_;
    wl_pointer* pointer_ = nullptr;
    wl_touch* touch_ = nullptr;
    const CoveredOutput* output_ = nullptr;  // that the pointer is over
    double across_ = 0, down_ = 0;           // on that output, in parts of its size
    std::optional<StagePlace> place_;
    unsigned buttons_ = 0;
    uint32_t serial_ = 0;       // of the last press
    int32_t finger_ = -1;       // that is the pointer; -1 for none
    double turned_ = 0;         // by the wheel since the last frame, downwards
    std::optional<int> steps_;  // the same, as a wheel with steps tells it
};
