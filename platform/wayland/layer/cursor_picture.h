// The user's arrow, which the compositor shows while the pointer is over a stage.
#pragma once

#include "wayland/layer/compositor.h"

class CursorPicture {
  public:
    explicit CursorPicture(const Compositor& compositor) : compositor_(compositor) {}
    ~CursorPicture();
    CursorPicture(const CursorPicture&) = delete;
    CursorPicture& operator=(const CursorPicture&) = delete;

    // For each entering of the pointer. Reads the picture at the first one.
    void show(wl_pointer* pointer, uint32_t serial, int scale);

  private:
    void make(int scale);

    const Compositor& compositor_;
    wl_surface* surface_ = nullptr;
    wl_buffer* buffer_ = nullptr;
    int hot_x_ = 0, hot_y_ = 0;
};
