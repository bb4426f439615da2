// A transparent surface over each output, above windows and below the menu.
#pragma once

#include <deque>

#include "wayland/layer/compositor.h"
#include "wayland/layer/output_places.h"

struct wp_viewport;
struct zwlr_layer_surface_v1;
struct zxdg_output_v1;

// One output and the surface over it.
struct CoveredOutput {
    Compositor* compositor;
    wl_output* output;
    zxdg_output_v1* details = nullptr;
    wl_surface* surface = nullptr;
    zwlr_layer_surface_v1* layer = nullptr;
    wp_viewport* viewport = nullptr;
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
    // The output that a surface is over, or null.
    const CoveredOutput* output_of(wl_surface* surface) const;

  private:
    void cover(CoveredOutput& output);

    Compositor& compositor_;
    std::deque<CoveredOutput> outputs_;  // the compositor's events carry their addresses
};
