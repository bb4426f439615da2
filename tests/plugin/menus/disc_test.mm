// The items and the view with a turning disc.
#include <cairo.h>
#include <gtest/gtest.h>
#include <math.h>
#include <stdlib.h>

#include "appkit/view_pixels.h"
#include "finder/dv_finder.h"
#include "menus/DVCircularProgressView.h"
#include "menus/DVImageItem.h"
#include "menus/DVProgressItem.h"
#include "plugin/menu_fixture.h"
#include "tree/dv_tree.h"

namespace {

class Disc : public test::MenuTest {
  protected:
    Disc() {
        const std::string path = folder_.file("file");
        elem_ = dv_create_elem(dv_create_single_dir(path.c_str()), nullptr, 0, 0);
    }
    ~Disc() override {
        dv_free_elem(elem_);
        cairo_surface_destroy(picture_);
    }

    static NSView* view_of(id item) { return [item valueForKey:@"view"]; }
    static DVCircularProgressView* disc_of(id item) { return [item valueForKey:@"progress"]; }
    static NSTimer* timer_of(id item) { return [item valueForKey:@"theTimer"]; }
    static NSImage* image() {
        return [[[NSImage alloc] initWithSize:NSMakeSize(10, 10)] autorelease];
    }
    static void track(NSTimeInterval seconds) {
        [[NSRunLoop currentRunLoop] runMode:NSEventTrackingRunLoopMode
                                 beforeDate:[NSDate dateWithTimeIntervalSinceNow:seconds]];
    }

    // Draws the view, 64 by 64, over blue.
    void draw(DVCircularProgressView* view) {
        NSWindow* window = [[NSWindow alloc] initWithContentRect:NSMakeRect(0, 0, 64, 64)
                                                       styleMask:NSBorderlessWindowMask
                                                         backing:NSBackingStoreBuffered
                                                           defer:NO];
        [window setReleasedWhenClosed:NO];
        [window setBackgroundColor:[NSColor colorWithDeviceRed:0 green:0 blue:1 alpha:1]];
        [[window contentView] addSubview:view];
        [window orderFront:nil];
        [window display];
        cairo_surface_destroy(picture_);
        picture_ = copy_view_pixels([window contentView]);
        [view removeFromSuperview];
        [window close];
        [window release];
    }
    // How light the drawing is at an angle and distance from its middle; -1 where the ground shows.
    double gray_at(double angle, double radius) {
        const int x = static_cast<int>(32 + radius * cos(angle));
        const int y = static_cast<int>(32 - radius * sin(angle));
        cairo_surface_flush(picture_);
        const unsigned char* row =
            cairo_image_surface_get_data(picture_) + y * cairo_image_surface_get_stride(picture_);
        const uint32_t pixel = reinterpret_cast<const uint32_t*>(row)[x];
        const int red = pixel >> 16 & 0xff, blue = pixel & 0xff;
        return abs(red - blue) < 12 ? red / 255.0 : -1;
    }
    DVCircularProgressView* large_disc() {
        const NSRect frame = NSMakeRect(0, 0, 64, 64);
        return [[[DVCircularProgressView alloc] initWithFrame:frame] autorelease];
    }

    dv_tree_t* elem_;
    cairo_surface_t* picture_ = nullptr;
};

}  // namespace

TEST_F(Disc, AnImageItemBeginsWithATurningDiscInItsMiddle) {
    DVImageItem* item = [[DVImageItem alloc] initWithTree:elem_ target:controller_];
    EXPECT_STREQ([[item title] UTF8String], "");
    EXPECT_EQ([item image], nil);
    EXPECT_EQ([item tree], elem_);
    EXPECT_EQ([item target], controller_);
    EXPECT_EQ([item view], view_of(item));
    EXPECT_TRUE(NSEqualRects([[item view] frame], NSMakeRect(0, 0, 32, 32)));
    EXPECT_TRUE(NSEqualRects([disc_of(item) frame], NSMakeRect(8, 8, 16, 16)));
    EXPECT_EQ([disc_of(item) superview], [item view]);
    EXPECT_NEAR([timer_of(item) timeInterval], 1.0 / 30, 1e-6);
    EXPECT_FALSE([[item valueForKey:@"hasImage"] boolValue]);
    [item release];
}

TEST_F(Disc, AnImageTakesTheDiscsPlace) {
    DVImageItem* item = [[DVImageItem alloc] initWithTree:elem_ target:controller_];
    NSTimer* timer = [[timer_of(item) retain] autorelease];
    NSImage* picture = image();
    [item setImage:picture];
    EXPECT_EQ([item view], nil);
    EXPECT_EQ([item image], picture);
    EXPECT_EQ(timer_of(item), nil);
    EXPECT_FALSE([timer isValid]);
    [item release];
}

TEST_F(Disc, WithoutItsImageAnImageItemsDiscStandsStill) {
    DVImageItem* item = [[DVImageItem alloc] initWithTree:elem_ target:controller_];
    [item setImage:image()];
    [item setImage:nil];
    EXPECT_EQ([item view], view_of(item));
    EXPECT_EQ([item image], nil);
    EXPECT_EQ(timer_of(item), nil);
    [item release];
}

TEST_F(Disc, WithoutItsImageAProgressItemsDiscTurnsAgain) {
    DVProgressItem* item = [[DVProgressItem alloc] initWithTree:elem_ target:controller_];
    EXPECT_TRUE([timer_of(item) isValid]);
    [item setImage:image()];
    EXPECT_EQ([item view], nil);
    EXPECT_EQ(timer_of(item), nil);
    [item setImage:nil];
    EXPECT_EQ([item view], view_of(item));
    EXPECT_TRUE([timer_of(item) isValid]);
    [item release];
}

TEST_F(Disc, StartAndStopDoNothingTwice) {
    DVProgressItem* item = [[DVProgressItem alloc] initWithTree:elem_ target:controller_];
    NSTimer* timer = timer_of(item);
    [item start];
    EXPECT_EQ(timer_of(item), timer);
    [item stop];
    [item stop];
    EXPECT_EQ(timer_of(item), nil);
    [item release];
}

TEST_F(Disc, ItemsDieWhileTheirDiscsTurn) {
    for (Class kind in @[ [DVImageItem class], [DVProgressItem class] ]) {
        id item = [[kind alloc] initWithTree:elem_ target:controller_];
        NSTimer* timer = [timer_of(item) retain];
        NSView* view = [view_of(item) retain];
        [item release];
        EXPECT_FALSE([timer isValid]);
        EXPECT_EQ([view superview], nil);
        track(0.05);
        [timer release];
        [view release];
    }
}

TEST_F(Disc, TheTimerRedrawsTheDiscWhileMenusTrack) {
    DVImageItem* item = [[DVImageItem alloc] initWithTree:elem_ target:controller_];
    [disc_of(item) setNeedsDisplay:NO];
    for (int i = 0; i < 1000 && ![disc_of(item) needsDisplay]; i++) track(0.01);
    EXPECT_TRUE([disc_of(item) needsDisplay]);
    [item release];
}

TEST_F(Disc, ItIsNotOpaqueAndBeginsAtZero) {
    DVCircularProgressView* view = large_disc();
    EXPECT_FALSE([view isOpaque]);
    EXPECT_EQ([view currentProgress], 0);
    EXPECT_EQ([view lastProgressUpdate], 0);
}

TEST_F(Disc, EachDrawingAdvancesItByAStep) {
    DVCircularProgressView* view = large_disc();
    const double before = dv_double_time();
    draw(view);
    EXPECT_DOUBLE_EQ([view currentProgress], 0.03);
    EXPECT_GE([view lastProgressUpdate], before);
}

TEST_F(Disc, ItAdvancesThirtyTimesASecondAtMost) {
    DVCircularProgressView* view = large_disc();
    [view setCurrentProgress:0.5];
    [view setLastProgressUpdate:dv_double_time() + 100];
    draw(view);
    EXPECT_DOUBLE_EQ([view currentProgress], 0.5);
}

TEST_F(Disc, ThePhaseWrapsOnceItExceedsOne) {
    DVCircularProgressView* view = large_disc();
    [view setCurrentProgress:0.99];
    draw(view);
    EXPECT_EQ([view currentProgress], 0) << "1.02 is past the end";
    [view setLastProgressUpdate:0];
    [view setCurrentProgress:0.96];
    draw(view);
    EXPECT_NEAR([view currentProgress], 0.99, 1e-9);
}

TEST_F(Disc, ItDrawsADarkDiscWithALightWedge) {
    DVCircularProgressView* view = large_disc();
    // Far ahead, so that the phase stays.
    [view setLastProgressUpdate:dv_double_time() + 1000];
    draw(view);
    // Radius 31: the rim, and nothing outside.
    EXPECT_NEAR(gray_at(M_PI, 20), 0.3, 0.02);
    EXPECT_EQ(gray_at(M_PI / 4, 34), -1);
    EXPECT_NEAR(gray_at(M_PI / 12, 20), 1, 0.02);
    EXPECT_NEAR(gray_at(-M_PI / 12, 20), 0.3, 0.02);
    EXPECT_NEAR(gray_at(M_PI / 4, 20), 0.3, 0.02);
    // A quarter on: the wedge has turned clockwise.
    [view setCurrentProgress:0.25];
    draw(view);
    EXPECT_NEAR(gray_at(M_PI / 12, 20), 0.3, 0.02);
    EXPECT_NEAR(gray_at(M_PI / 12 - M_PI / 2, 20), 1, 0.02);
}
