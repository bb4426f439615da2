#include "look/server_copy.h"

namespace {

// What a picture is given at the first call, and at the second one.
constexpr cairo_user_data_key_t painted_key = {}, copy_key = {};

void destroy(void* copy) { cairo_surface_destroy(static_cast<cairo_surface_t*>(copy)); }

cairo_surface_t* copy_to_server(cairo_surface_t* picture, cairo_surface_t* target) {
    cairo_surface_t* copy = cairo_surface_create_similar(target, cairo_surface_get_content(picture),
                                                         cairo_image_surface_get_width(picture),
                                                         cairo_image_surface_get_height(picture));
    cairo_t* cairo = cairo_create(copy);
    cairo_set_operator(cairo, CAIRO_OPERATOR_SOURCE);
    cairo_set_source_surface(cairo, picture, 0, 0);
    cairo_paint(cairo);
    const bool is_made = cairo_status(cairo) == CAIRO_STATUS_SUCCESS;
    cairo_destroy(cairo);
    if (is_made &&
        cairo_surface_set_user_data(picture, &copy_key, copy, destroy) == CAIRO_STATUS_SUCCESS) {
        return copy;
    }
    cairo_surface_destroy(copy);
    return nullptr;
}

}  // namespace

cairo_surface_t* server_copy(cairo_surface_t* picture, cairo_t* cairo) {
    cairo_surface_t* target = cairo_get_target(cairo);
    if (cairo_surface_get_type(target) != CAIRO_SURFACE_TYPE_XLIB) return picture;
    if (void* copy = cairo_surface_get_user_data(picture, &copy_key)) {
        return static_cast<cairo_surface_t*>(copy);
    }
    if (!cairo_surface_get_user_data(picture, &painted_key)) {
        cairo_surface_set_user_data(picture, &painted_key, picture, nullptr);
        return picture;
    }
    cairo_surface_t* copy = copy_to_server(picture, target);
    return copy ? copy : picture;
}
