// The connection to a compositor, and what it offers.
#pragma once

#include <stdint.h>
#include <wayland-client.h>

#include <functional>
#include <memory>
#include <vector>

struct zwlr_layer_shell_v1;
struct zwlr_data_control_manager_v1;
struct wp_viewporter;
struct zxdg_output_manager_v1;

struct OfferedOutput {
    uint32_t name;  // the registry's number
    wl_output* output;
};

class Compositor {
  public:
    Compositor() = default;
    // Destroys the objects below, too.
    ~Compositor();
    Compositor(const Compositor&) = delete;
    Compositor& operator=(const Compositor&) = delete;

    // Connects to the compositor that the environment names and asks what it offers. False when
    // none answers in time.
    bool connect();
    bool has_layers() const { return compositor && shm && seat && layer_shell && !outputs.empty(); }

    // Waits until the compositor has answered everything that was asked. False when it does not.
    bool answer_all();
    // Reads and handles what arrives until `done`, at most until the monotonic clock shows `limit`.
    bool wait(double limit, const std::function<bool()>& done);
    // Handles what has arrived, without waiting. False once the compositor has gone.
    bool read();

    wl_display* display = nullptr;
    wl_compositor* compositor = nullptr;
    wl_shm* shm = nullptr;
    wl_seat* seat = nullptr;
    zwlr_layer_shell_v1* layer_shell = nullptr;
    wl_data_device_manager* data_devices = nullptr;        // null where not offered
    zwlr_data_control_manager_v1* data_control = nullptr;  // null where not offered
    wp_viewporter* viewporter = nullptr;                   // null where not offered
    zxdg_output_manager_v1* output_manager = nullptr;      // null where not offered
    std::vector<OfferedOutput> outputs;

  private:
    static void offer(void* data, wl_registry*, uint32_t name, const char* interface,
                      uint32_t version);
    static void withdraw(void* data, wl_registry*, uint32_t name);

    wl_registry* registry_ = nullptr;
};
