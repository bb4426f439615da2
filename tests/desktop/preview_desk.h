// A folder with texts whose previews are looked at: the submenu behind Option, and the hover
// window. The pointer, the keys and the pixels are real ones. Main thread.
#pragma once

#include <AppKit/AppKit.h>
#include <cairo.h>
#include <host/menu_tracking.h>

#include "desktop/desk.h"

// The plug-in's class, which is known only by name.
@interface NSObject (HoverWindow)
+ (id)sharedDelvio;
- (BOOL)isVisible;
@end

namespace test {

class Preview : public Desk {
  protected:
    void SetUp() override {
        folder_.file("project/a.txt", "The first text\n");
        folder_.file("project/b.txt", "The second text\n");
        folder_.folder("project/inner");
        select({folder_.path("project")});
        set_preference("hoverPreviewsInterval", "300");
    }
    void TearDown() override {
        set_preference("hoverPreviewsInterval", "1000");
        set_preference("preview_size", "256");
    }

    void picture(const std::string& name, int width, int height) {
        const std::string path = folder_.file(name);
        cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height);
        cairo_t* cairo = cairo_create(surface);
        cairo_set_source_rgb(cairo, 1, 0, 0);
        cairo_paint(cairo);
        cairo_destroy(cairo);
        cairo_surface_write_to_png(surface, path.c_str());
        cairo_surface_destroy(surface);
    }

    // Opens the preview submenu of a file in the folder, then does `then`. The submenu is level 2.
    void in_preview_menu(const std::string& name, const std::function<void(Steps&)>& then) {
        pop_up([&](Steps& steps) {
            steps
                .when(
                    "the menu", [&] { return is_open(0); }, [&] { hover("project"); })
                .when(
                    "the level", [&] { return is_open(1); },
                    [&] {
                        input().key_down("Alt_R");
                        hover(name);
                    })
                .when("the preview", [&] { return is_open(2); });
            then(steps);
        });
        input().let_go();
    }
    // The only item of the preview submenu.
    static NSMenuItem* preview_item() {
        NSArray* levels = [[MenuSession current] levels];
        NSMenu* menu = [levels count] > 2 ? [levels objectAtIndex:2] : nil;
        return [menu numberOfItems] == 1 ? static_cast<NSMenuItem*>([menu itemAtIndex:0]) : nil;
    }
    static bool has_picture() { return [preview_item() image] && ![preview_item() view]; }
    // The picture that the submenu of a file shows in the end; empty when it shows a line of text.
    NSSize picture_size(const std::string& name) {
        NSSize size = NSZeroSize;
        in_preview_menu(name, [&](Steps& steps) {
            steps.when(
                "the picture", [] { return has_picture(); },
                [&] {
                    size = [[preview_item() image] size];
                    escape();
                });
        });
        return size;
    }

    // Where the rightmost level is that is larger than this.
    static NSRect picture_window_frame(double width, double height) {
        NSWindow* window = nil;
        for (NSWindow* each in [NSApp windows]) {
            if ([each isVisible] && [each level] == NSPopUpMenuWindowLevel &&
                NSWidth([each frame]) > width && NSHeight([each frame]) > height &&
                (!window || NSMinX([each frame]) > NSMinX([window frame]))) {
                window = each;
            }
        }
        return [window frame];
    }

    // The hover window and the state that decides about it.
    static id controller() { return [NSClassFromString(@"DVDelvio") sharedDelvio]; }
    static id window_controller() { return [controller() valueForKey:@"previewWindowController"]; }
    static NSWindow* hover_window() { return [window_controller() valueForKey:@"window"]; }
    static NSImageView* image_view() { return [window_controller() valueForKey:@"imgView"]; }
    static bool is_hovering() { return [window_controller() isVisible]; }
    static bool shows_picture() {
        return is_hovering() && [image_view() superview] && [image_view() image];
    }
    static std::string hovered_path() {
        return [[[window_controller() valueForKey:@"path"] path] UTF8String] ?: "";
    }
    static double last_movement() {
        return [[controller() valueForKey:@"lastMouseMovement"] doubleValue];
    }
    static NSTimer* pending_timer() { return [controller() valueForKey:@"hoverPreviewTimer"]; }
    static double now() { return [[NSDate date] timeIntervalSince1970]; }
    // The time from the last movement until the pending timer fires.
    static double pending_delay() {
        return [[pending_timer() fireDate] timeIntervalSince1970] - last_movement();
    }

    // Where the hover window is, in pixels of the screen from its upper left corner.
    struct Place {
        int left, top, width, height;
    };
    static Place hover_place() {
        const NSRect at = [hover_window() frame];
        const double top = NSHeight([[NSScreen mainScreen] frame]) - NSMaxY(at);
        return {static_cast<int>(NSMinX(at)), static_cast<int>(top), static_cast<int>(NSWidth(at)),
                static_cast<int>(NSHeight(at))};
    }

    // Rests the pointer on a row of the folder, then does `then`.
    void resting_on(const std::string& name, const std::function<void(Steps&)>& then) {
        pop_up([&](Steps& steps) {
            hover_along(steps, {"project", name});
            steps.when("the row", [this, name] { return highlighted(1) == name; });
            then(steps);
        });
    }
    // Rests the pointer on a file until its picture is there and `settled` is true. Then looks, and
    // closes the menu.
    void showing(const std::string& name, const std::function<bool()>& settled,
                 const std::function<void()>& look) {
        resting_on(name, [&](Steps& steps) {
            steps.when("the picture", [] { return shows_picture(); })
                .when("its look", settled, [&] {
                    look();
                    escape();
                });
        });
    }
};

}  // namespace test
