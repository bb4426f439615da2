// A transparent surface over each output, above everything else, the menu's windows too.
#pragma once

#include <deque>
#include <mutex>

#include "wayland/layer/compositor.h"
#include "wayland/layer/output_places.h"

struct wp_viewport;
struct zwlr_layer_surface_v1;
struct zxdg_output_v1;

// One output and the surface over it.
struct CoveredOutput {
    Compositor* compositor;
    std::mutex*
        lock;  // for `layer` and `surface`, which another thread may give up the keyboard of
    wl_output* output;
    zxdg_output_v1* details = nullptr;
    wl_surface* surface = nullptr;
    zwlr_layer_surface_v1* layer = nullptr;
    wp_viewport* viewport = nullptr;
    wl_buffer* buffer = nullptr;
    Output described = {};
    int scale = 1;
    int width = 0, height = 0;  // of the surface, 0 before the compositor has told them
    ScreenArea place = {};      // of the output on the X screen
};

class LayerSurfaces {
  public:
    explicit LayerSurfaces(Compositor& compositor) : compositor_(compositor) {}
    ~LayerSurfaces();
    LayerSurfaces(const LayerSurfaces&) = delete;
    LayerSurfaces& operator=(const LayerSurfaces&) = delete;

    // Puts a surface over each output. False when the compositor does not answer.
    bool open(const std::vector<Monitor>& monitors);
    // Takes the keyboard, which open() has done, or gives it back to the window that had it. Any
    // thread.
    void hold_keyboard(bool holds);
    // Takes all surfaces away.
    void uncover();
    // The output that a surface is over, or null.
    const CoveredOutput* output_of(wl_surface* surface) const;

  private:
    void cover(CoveredOutput& output);

    Compositor& compositor_;
    std::mutex lock_;
    std::deque<CoveredOutput> outputs_;  // the compositor's events carry their addresses
};
