// The X server's copies of pictures that are painted more than once.
#include "look/server_copy.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include <cairo-xlib.h>  // its macros come after GoogleTest

namespace {

constexpr int side = 8;

template <typename type, void release(type*)>
struct Release {
    void operator()(type* held) const { release(held); }
};
using Surface = std::unique_ptr<cairo_surface_t, Release<cairo_surface_t, cairo_surface_destroy>>;
using Context = std::unique_ptr<cairo_t, Release<cairo_t, cairo_destroy>>;

struct ServerCopy : testing::Test {
    ServerCopy() {
        Context cairo(cairo_create(picture.get()));
        cairo_set_source_rgba(cairo.get(), 1, 0.5, 0, 0.5);
        cairo_rectangle(cairo.get(), 1, 2, 3.5, 4);
        cairo_fill(cairo.get());
    }
    ~ServerCopy() override {
        picture.reset();
        to_server.reset();
        server.reset();
        XCloseDisplay(display);
    }
    std::vector<uint32_t> pixels_of(cairo_surface_t* source) {
        Surface image(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, side, side));
        {
            Context to(cairo_create(image.get()));
            cairo_set_source_surface(to.get(), source, 0, 0);
            cairo_paint(to.get());
        }
        cairo_surface_flush(image.get());
        const auto* first = reinterpret_cast<uint32_t*>(cairo_image_surface_get_data(image.get()));
        return {first, first + side * side};
    }

    Display* const display = XOpenDisplay(nullptr);
    Surface server{cairo_xlib_surface_create(display, DefaultRootWindow(display),
                                             DefaultVisual(display, DefaultScreen(display)), 100,
                                             100)};
    Context to_server{cairo_create(server.get())};
    Surface picture{cairo_image_surface_create(CAIRO_FORMAT_ARGB32, side, side)};
};

TEST_F(ServerCopy, IsMadeAtTheSecondPaintingAndThenKept) {
    EXPECT_EQ(server_copy(picture.get(), to_server.get()), picture.get());
    cairo_surface_t* const copy = server_copy(picture.get(), to_server.get());
    EXPECT_NE(copy, picture.get());
    EXPECT_EQ(cairo_surface_get_type(copy), CAIRO_SURFACE_TYPE_XLIB);
    EXPECT_EQ(server_copy(picture.get(), to_server.get()), copy);
}

TEST_F(ServerCopy, HasThePicturesPixels) {
    server_copy(picture.get(), to_server.get());
    cairo_surface_t* const copy = server_copy(picture.get(), to_server.get());
    EXPECT_EQ(pixels_of(copy), pixels_of(picture.get()));
}

TEST_F(ServerCopy, IsNotMadeForAPaintingInThisProgramsOwnMemory) {
    Surface image(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, side, side));
    Context cairo(cairo_create(image.get()));
    for (int i = 0; i < 3; i++) EXPECT_EQ(server_copy(picture.get(), cairo.get()), picture.get());
}

}  // namespace
