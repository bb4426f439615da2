// A stage of layer-shell surfaces.
#pragma once

#include <deque>

#include "wayland/layer/compositor.h"
#include "wayland/layer/drag_source.h"
#include "wayland/layer/keyboard_limit.h"
#include "wayland/layer/layer_surfaces.h"
#include "wayland/layer/stage_keyboard.h"
#include "wayland/stage_module.h"
#include "wayland/layer/stage_pointer.h"

class LayerStage : public MenuStage {
  public:
    explicit LayerStage(const StageSettings& settings);
    ~LayerStage() override;

    bool connect() { return compositor_.connect(); }
    bool has_layers() const { return compositor_.has_layers(); }
    // Covers the outputs; false when the compositor does not answer.
    bool open();

    int descriptor() const override { return descriptor_; }
    bool read() override;
    std::optional<StageEvent> next_event() override;
    std::optional<StagePlace> pointer() const override { return pointer_.place(); }
    void menu_is_open() override;
    bool has_pointer() const override { return pointer_.is_here(); }
    unsigned buttons() const override { return pointer_.buttons(); }
    bool begin_drag(const StageDrag& drag) override;
    DragState drag_state() const override { return drag_.state(); }

  private:
    static void tell_devices(void* data, wl_seat* seat, uint32_t devices);
    void watch(int descriptor) const;

    const StageSettings settings_;
    std::deque<StageEvent> events_;
    Compositor compositor_;
    LayerSurfaces surfaces_;
    StagePointer pointer_;
    StageKeyboard keyboard_;
    DragSource drag_;
    KeyboardLimit limit_;
    bool gave_back_ = false;  // the keyboard; written before limit_ stops
    int descriptor_;          // of an epoll: it is readable when a part of the stage is
};
