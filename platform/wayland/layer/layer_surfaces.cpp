#include "wayland/layer/layer_surfaces.h"

#include "layer-shell.h"
#include "viewporter.h"
#include "wayland/layer/shared_picture.h"
#include "xdg-output.h"

namespace {

constexpr uint32_t no_keys = 0, all_keys = 1;

CoveredOutput& covered(void* data) { return *static_cast<CoveredOutput*>(data); }

// What is known where the compositor tells no more: the place, and the pixels of the mode.
void tell_geometry(void* data, wl_output*, int32_t x, int32_t y, int32_t, int32_t, int32_t,
                   const char*, const char*, int32_t) {
    covered(data).described.area.x = x;
    covered(data).described.area.y = y;
}
void tell_mode(void* data, wl_output*, uint32_t flags, int32_t width, int32_t height, int32_t) {
    if (!(flags & WL_OUTPUT_MODE_CURRENT)) return;
    covered(data).described.area.width = width;
    covered(data).described.area.height = height;
}
void tell_scale(void* data, wl_output*, int32_t scale) { covered(data).scale = scale; }
void tell_name(void* data, wl_output*, const char* name) { covered(data).described.name = name; }
void tell_description(void*, wl_output*, const char*) {}
void tell_done(void*, wl_output*) {}
const wl_output_listener output_listener = {tell_geometry, tell_mode, tell_done,
                                            tell_scale,    tell_name, tell_description};

void tell_position(void* data, zxdg_output_v1*, int32_t x, int32_t y) {
    covered(data).described.area.x = x;
    covered(data).described.area.y = y;
}
void tell_size(void* data, zxdg_output_v1*, int32_t width, int32_t height) {
    covered(data).described.area.width = width;
    covered(data).described.area.height = height;
}
void tell_details_done(void*, zxdg_output_v1*) {}
void tell_details_name(void* data, zxdg_output_v1*, const char* name) {
    covered(data).described.name = name;
}
void tell_details_description(void*, zxdg_output_v1*, const char*) {}
const zxdg_output_v1_listener details_listener = {tell_position, tell_size, tell_details_done,
                                                  tell_details_name, tell_details_description};

// Gives the surface its transparent pixels: one pixel that the compositor stretches, where it can.
void fill(CoveredOutput& output) {
    Compositor& compositor = *output.compositor;
    const bool stretches = compositor.viewporter != nullptr;
    wl_buffer* const old = output.buffer;
    output.buffer = new_shared_picture(compositor.shm, stretches ? 1 : output.width,
                                       stretches ? 1 : output.height, nullptr);
    if (old) wl_buffer_destroy(old);
    if (!output.buffer) return;
    if (stretches && !output.viewport) {
        output.viewport = wp_viewporter_get_viewport(compositor.viewporter, output.surface);
    }
    if (stretches) wp_viewport_set_destination(output.viewport, output.width, output.height);
    wl_surface_attach(output.surface, output.buffer, 0, 0);
    wl_surface_damage(output.surface, 0, 0, INT32_MAX, INT32_MAX);
}

void configure(void* data, zwlr_layer_surface_v1* layer, uint32_t serial, uint32_t width,
               uint32_t height) {
    CoveredOutput& output = covered(data);
    zwlr_layer_surface_v1_ack_configure(layer, serial);
    output.width = static_cast<int>(width);
    output.height = static_cast<int>(height);
    if (width && height) fill(output);
    wl_surface_commit(output.surface);
}

void take_away(CoveredOutput& output) {
    const std::lock_guard lock(*output.lock);
    if (output.viewport) wp_viewport_destroy(output.viewport);
    if (output.layer) zwlr_layer_surface_v1_destroy(output.layer);
    if (output.surface) wl_surface_destroy(output.surface);
    output.viewport = nullptr;
    output.layer = nullptr;
    output.surface = nullptr;
}

// The output has gone.
void close_surface(void* data, zwlr_layer_surface_v1*) { take_away(covered(data)); }
const zwlr_layer_surface_v1_listener layer_listener = {configure, close_surface};

}  // namespace

LayerSurfaces::~LayerSurfaces() {
    for (CoveredOutput& output : outputs_) {
        take_away(output);
        if (output.buffer) wl_buffer_destroy(output.buffer);
        if (output.details) zxdg_output_v1_destroy(output.details);
    }
}

bool LayerSurfaces::open(const std::vector<Monitor>& monitors) {
    for (const OfferedOutput& offered : compositor_.outputs) {
        outputs_.push_back({&compositor_, &lock_, offered.output});
        CoveredOutput& output = outputs_.back();
        wl_output_add_listener(output.output, &output_listener, &output);
        if (!compositor_.output_manager) continue;
        output.details =
            zxdg_output_manager_v1_get_xdg_output(compositor_.output_manager, output.output);
        zxdg_output_v1_add_listener(output.details, &details_listener, &output);
    }
    for (CoveredOutput& output : outputs_) cover(output);
    if (!compositor_.answer_all()) return false;
    std::vector<Output> described;
    for (const CoveredOutput& output : outputs_) described.push_back(output.described);
    const std::vector<ScreenArea> places = places_of_outputs(described, monitors);
    for (size_t i = 0; i < outputs_.size(); i++) outputs_[i].place = places[i];
    return true;
}

void LayerSurfaces::cover(CoveredOutput& output) {
    constexpr uint32_t all_edges =
        ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP | ZWLR_LAYER_SURFACE_V1_ANCHOR_BOTTOM |
        ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT | ZWLR_LAYER_SURFACE_V1_ANCHOR_RIGHT;
    constexpr int over_panels = -1;
    output.surface = wl_compositor_create_surface(compositor_.compositor);
    // Windows that fill the screen hide the other layers.
    output.layer = zwlr_layer_shell_v1_get_layer_surface(compositor_.layer_shell, output.surface,
                                                         output.output,
                                                         ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY, "menu");
    zwlr_layer_surface_v1_add_listener(output.layer, &layer_listener, &output);
    zwlr_layer_surface_v1_set_anchor(output.layer, all_edges);
    zwlr_layer_surface_v1_set_exclusive_zone(output.layer, over_panels);
    zwlr_layer_surface_v1_set_keyboard_interactivity(output.layer, all_keys);
    wl_surface_commit(output.surface);
}

void LayerSurfaces::hold_keyboard(bool holds) {
    const std::lock_guard lock(lock_);
    for (const CoveredOutput& output : outputs_) {
        if (!output.layer) continue;
        zwlr_layer_surface_v1_set_keyboard_interactivity(output.layer, holds ? all_keys : no_keys);
        wl_surface_commit(output.surface);
    }
    wl_display_flush(compositor_.display);
}

void LayerSurfaces::uncover() {
    for (CoveredOutput& output : outputs_) take_away(output);
    wl_display_flush(compositor_.display);
}

const CoveredOutput* LayerSurfaces::output_of(wl_surface* surface) const {
    for (const CoveredOutput& output : outputs_) {
        if (surface && output.surface == surface) return &output;
    }
    return nullptr;
}
