#include "wayland/layer/drag_source.h"

#include <unistd.h>

#include "wayland/layer/shared_picture.h"
#include "wayland/layer/text_pipe.h"

namespace {

const char* const file_type = "text/uri-list";

// The version that knows actions, and tells the end of a drop.
constexpr uint32_t version_with_actions = 3;

DragSource& of(void* data) { return *static_cast<DragSource*>(data); }

void ignore_offer(void*, wl_data_device*, wl_data_offer*) {}
void ignore_motion(void*, wl_data_device*, uint32_t, wl_fixed_t, wl_fixed_t) {}
void ignore_drop(void*, wl_data_device*) {}
void drop_selection(void*, wl_data_device*, wl_data_offer* offer) {
    if (offer) wl_data_offer_destroy(offer);
}

}  // namespace

DragSource::~DragSource() {
    if (own_offer_) wl_data_offer_destroy(own_offer_);
    if (source_) wl_data_source_destroy(source_);
    if (device_) wl_data_device_release(device_);
    if (picture_) wl_surface_destroy(picture_);
    if (pixels_) wl_buffer_destroy(pixels_);
}

// Only copying is offered, as by the X server's drags: a program that is offered a move may expect
// that the file's old place is cleared by whoever offers it.
bool DragSource::begin(const StageDrag& drag, wl_surface* origin, uint32_t serial) {
    wl_data_device_manager* const manager = compositor_.data_devices;
    if (source_ || !manager || wl_data_device_manager_get_version(manager) < version_with_actions) {
        return false;
    }
    static const wl_data_source_listener listener = {note_type, send,     cancelled,
                                                     note_drop, finished, note_action};
    uri_list_ = drag.uri_list;
    source_ = wl_data_device_manager_create_data_source(manager);
    wl_data_source_add_listener(source_, &listener, this);
    wl_data_source_offer(source_, file_type);
    wl_data_source_set_actions(source_, WL_DATA_DEVICE_MANAGER_DND_ACTION_COPY);
    device_ = wl_data_device_manager_get_data_device(manager, compositor_.seat);
    static const wl_data_device_listener device_listener = {
        ignore_offer, enter, leave, ignore_motion, ignore_drop, drop_selection};
    wl_data_device_add_listener(device_, &device_listener, this);
    picture_ = wl_compositor_create_surface(compositor_.compositor);
    wl_data_device_start_drag(device_, source_, origin, picture_, serial);
    show_picture(drag);
    state_ = MenuStage::carried;
    return true;
}

void DragSource::show_picture(const StageDrag& drag) {
    if (drag.pixels.empty()) return;
    pixels_ = new_shared_picture(compositor_.shm, drag.width, drag.height, drag.pixels.data());
    if (!pixels_) return;
    wl_surface_attach(picture_, pixels_, -drag.held_at.x, -drag.held_at.y);
    wl_surface_damage(picture_, 0, 0, INT32_MAX, INT32_MAX);
    wl_surface_commit(picture_);
}

// The drag begins over the stage itself. A compositor takes the end of its offer there for the end
// of the drag, so the offer stays until the drag has gone on.
void DragSource::enter(void* data, wl_data_device*, uint32_t, wl_surface*, wl_fixed_t, wl_fixed_t,
                       wl_data_offer* offer) {
    of(data).own_offer_ = offer;
}

void DragSource::leave(void* data, wl_data_device*) {
    DragSource& self = of(data);
    if (self.own_offer_) wl_data_offer_destroy(self.own_offer_);
    self.own_offer_ = nullptr;
}

void DragSource::note_type(void*, wl_data_source*, const char*) {}

void DragSource::send(void* data, wl_data_source*, const char*, int32_t out) {
    DragSource& self = of(data);
    give_text(out, self.uri_list_);
    if (self.state_ == MenuStage::dropped) self.state_ = MenuStage::fetched;
}

// Some compositors say this after the end of a drop, too.
void DragSource::cancelled(void* data, wl_data_source*) {
    if (of(data).state_ != MenuStage::taken) of(data).state_ = MenuStage::given_up;
}

void DragSource::note_drop(void* data, wl_data_source*) { of(data).state_ = MenuStage::dropped; }

void DragSource::finished(void* data, wl_data_source*) { of(data).state_ = MenuStage::taken; }

void DragSource::note_action(void*, wl_data_source*, uint32_t) {}
