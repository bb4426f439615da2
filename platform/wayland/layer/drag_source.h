// Files that the compositor carries to the program on which they are dropped.
#pragma once

#include "wayland/layer/compositor.h"
#include "wayland/menu_stage.h"

class DragSource {
  public:
    explicit DragSource(const Compositor& compositor) : compositor_(compositor) {}
    ~DragSource();
    DragSource(const DragSource&) = delete;
    DragSource& operator=(const DragSource&) = delete;

    // Asks the compositor to drag with the button that was pressed on `origin`. False when it
    // offers no drags. A compositor that refuses says so later, or not at all.
    bool begin(const StageDrag& drag, wl_surface* origin, uint32_t serial);
    MenuStage::DragState state() const { return state_; }

  private:
    static void enter(void* data, wl_data_device*, uint32_t serial, wl_surface*, wl_fixed_t x,
                      wl_fixed_t y, wl_data_offer* offer);
    static void leave(void* data, wl_data_device*);
    static void note_type(void* data, wl_data_source*, const char* type);
    static void send(void* data, wl_data_source*, const char* type, int32_t out);
    static void cancelled(void* data, wl_data_source*);
    static void note_drop(void* data, wl_data_source*);
    static void finished(void* data, wl_data_source*);
    static void note_action(void* data, wl_data_source*, uint32_t action);
    void show_picture(const StageDrag& drag);

    const Compositor& compositor_;
    wl_data_source* source_ = nullptr;
    wl_data_device* device_ = nullptr;
    wl_data_offer* own_offer_ = nullptr;  // of the drag, to the stage
    wl_surface* picture_ = nullptr;
    wl_buffer* pixels_ = nullptr;
    std::string uri_list_;
    MenuStage::DragState state_ = MenuStage::no_drag;
};
