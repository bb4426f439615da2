// Offers a text to Wayland programs for as long as nobody else offers anything.
#include "data-control.h"
#include "wayland/layer/compositor.h"
#include "wayland/layer/text_pipe.h"
#include "wayland/stage_module.h"

namespace {

const char* const text_types[] = {"text/plain;charset=utf-8", "text/plain", "UTF8_STRING", "STRING",
                                  "TEXT"};

struct Offer {
    const std::string& text;
    bool replaced = false;
};

void send_text(void* data, zwlr_data_control_source_v1*, const char*, int32_t out) {
    give_text(out, static_cast<Offer*>(data)->text);
}

void note_replaced(void* data, zwlr_data_control_source_v1*) {
    static_cast<Offer*>(data)->replaced = true;
}

void drop_offer(void*, zwlr_data_control_device_v1*, zwlr_data_control_offer_v1* offer) {
    zwlr_data_control_offer_v1_destroy(offer);
}
void ignore_selection(void*, zwlr_data_control_device_v1*, zwlr_data_control_offer_v1*) {}
void ignore_finished(void*, zwlr_data_control_device_v1*) {}

}  // namespace

extern "C" __attribute__((visibility("default"))) bool delvio_keep_clipboard(
    const std::string& text, const std::function<void()>& owned) {
    static const zwlr_data_control_source_v1_listener source_listener = {send_text, note_replaced};
    static const zwlr_data_control_device_v1_listener device_listener = {
        drop_offer, ignore_selection, ignore_finished};
    Compositor compositor;
    if (!compositor.connect() || !compositor.data_control || !compositor.seat) return false;
    Offer offer = {text};
    auto* source = zwlr_data_control_manager_v1_create_data_source(compositor.data_control);
    zwlr_data_control_source_v1_add_listener(source, &source_listener, &offer);
    for (const char* type : text_types) zwlr_data_control_source_v1_offer(source, type);
    auto* device =
        zwlr_data_control_manager_v1_get_data_device(compositor.data_control, compositor.seat);
    zwlr_data_control_device_v1_add_listener(device, &device_listener, nullptr);
    zwlr_data_control_device_v1_set_selection(device, source);
    const bool is_kept = compositor.answer_all();
    if (is_kept) owned();
    while (is_kept && !offer.replaced && wl_display_dispatch(compositor.display) >= 0) {
    }
    zwlr_data_control_device_v1_destroy(device);
    zwlr_data_control_source_v1_destroy(source);
    return is_kept;
}
