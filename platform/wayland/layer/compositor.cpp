#include "wayland/layer/compositor.h"

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <string.h>

#include <algorithm>

#include "data-control.h"
#include "events/deadline.h"
#include "layer-shell.h"
#include "viewporter.h"
#include "xdg-output.h"

namespace {

constexpr double longest_answer = 2;  // seconds

// Binds an interface in the newest version that both sides know.
template <typename Type>
void bind(wl_registry* registry, uint32_t name, const wl_interface& interface, uint32_t offered,
          uint32_t known, Type** object) {
    *object =
        static_cast<Type*>(wl_registry_bind(registry, name, &interface, std::min(offered, known)));
}

// The interface's own request for that is newer than some compositors. The connection ends anyway.
void destroy_object(zwlr_layer_shell_v1* layer_shell) {
    wl_proxy_destroy(reinterpret_cast<wl_proxy*>(layer_shell));
}

void note_answer(void* answered, wl_callback*, uint32_t) { *static_cast<bool*>(answered) = true; }

}  // namespace

Compositor::~Compositor() {
    if (!display) return;
    for (const OfferedOutput& offered : outputs) wl_output_destroy(offered.output);
    if (output_manager) zxdg_output_manager_v1_destroy(output_manager);
    if (viewporter) wp_viewporter_destroy(viewporter);
    if (data_devices) wl_data_device_manager_destroy(data_devices);
    if (data_control) zwlr_data_control_manager_v1_destroy(data_control);
    if (layer_shell) destroy_object(layer_shell);
    if (seat) wl_seat_destroy(seat);
    if (shm) wl_shm_destroy(shm);
    if (compositor) wl_compositor_destroy(compositor);
    if (registry_) wl_registry_destroy(registry_);
    wl_display_flush(display);
    wl_display_disconnect(display);
}

bool Compositor::connect() {
    display = wl_display_connect(nullptr);
    if (!display) return false;
    fcntl(wl_display_get_fd(display), F_SETFD, FD_CLOEXEC);
    static const wl_registry_listener listener = {offer, withdraw};
    registry_ = wl_display_get_registry(display);
    wl_registry_add_listener(registry_, &listener, this);
    return answer_all();
}

void Compositor::offer(void* data, wl_registry* registry, uint32_t name, const char* interface,
                       uint32_t version) {
    auto& self = *static_cast<Compositor*>(data);
    const auto is = [interface](const wl_interface& known) {
        return strcmp(interface, known.name) == 0;
    };
    if (is(wl_compositor_interface)) {
        bind(registry, name, wl_compositor_interface, version, 4, &self.compositor);
    } else if (is(wl_shm_interface)) {
        bind(registry, name, wl_shm_interface, version, 1, &self.shm);
    } else if (is(wl_seat_interface) && !self.seat) {
        bind(registry, name, wl_seat_interface, version, 5, &self.seat);
    } else if (is(zwlr_layer_shell_v1_interface)) {
        bind(registry, name, zwlr_layer_shell_v1_interface, version, 2, &self.layer_shell);
    } else if (is(wl_data_device_manager_interface)) {
        bind(registry, name, wl_data_device_manager_interface, version, 3, &self.data_devices);
    } else if (is(zwlr_data_control_manager_v1_interface)) {
        bind(registry, name, zwlr_data_control_manager_v1_interface, version, 1,
             &self.data_control);
    } else if (is(wp_viewporter_interface)) {
        bind(registry, name, wp_viewporter_interface, version, 1, &self.viewporter);
    } else if (is(zxdg_output_manager_v1_interface)) {
        bind(registry, name, zxdg_output_manager_v1_interface, version, 3, &self.output_manager);
    } else if (is(wl_output_interface)) {
        self.outputs.push_back({name, nullptr});
        bind(registry, name, wl_output_interface, version, 4, &self.outputs.back().output);
    }
}

// An output that goes takes its surface with it: the surface is told by itself.
void Compositor::withdraw(void*, wl_registry*, uint32_t) {}

bool Compositor::answer_all() {
    static const wl_callback_listener listener = {note_answer};
    bool answered = false;
    wl_callback* callback = wl_display_sync(display);
    wl_callback_add_listener(callback, &listener, &answered);
    const bool in_time = wait(seconds_now() + longest_answer, [&] { return answered; });
    wl_callback_destroy(callback);
    return in_time;
}

bool Compositor::wait(double limit, const std::function<bool()>& done) {
    while (!done()) {
        if (wl_display_prepare_read(display) != 0) {
            if (wl_display_dispatch_pending(display) < 0) return false;
            continue;
        }
        wl_display_flush(display);
        pollfd waiting = {wl_display_get_fd(display), POLLIN, 0};
        const int left = static_cast<int>((limit - seconds_now()) * 1000) + 1;
        const int ready = left > 0 ? poll(&waiting, 1, left) : 0;
        if (ready <= 0) {
            wl_display_cancel_read(display);
            if (ready < 0 && errno == EINTR) continue;
            return false;
        }
        if (wl_display_read_events(display) < 0) return false;
        if (wl_display_dispatch_pending(display) < 0) return false;
    }
    return true;
}

bool Compositor::read() {
    while (wl_display_prepare_read(display) != 0) {
        if (wl_display_dispatch_pending(display) < 0) return false;
    }
    wl_display_flush(display);
    pollfd waiting = {wl_display_get_fd(display), POLLIN, 0};
    if (poll(&waiting, 1, 0) > 0) {
        if (wl_display_read_events(display) < 0) return false;
    } else {
        wl_display_cancel_read(display);
    }
    if (wl_display_dispatch_pending(display) < 0) return false;
    wl_display_flush(display);
    return true;
}
