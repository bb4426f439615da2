// The items and the view with a turning disc.
#include <cairo.h>
#include <gtest/gtest.h>
#include <math.h>
#include <stdlib.h>

#include "appkit/view_pixels.h"
#include "finder/dv_finder.h"
#include "items/DVCircularProgressView.h"
#include "items/DVImageItem.h"
#include "items/DVProgressItem.h"
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
    // The brightness of the drawing at an angle and distance from its middle; -1 where the
    // background shows.
    double gray_at(double angle, double radius) { return gray_from(32, 32, angle, radius); }
    // The same around a different middle, counted from the lower left.
    double gray_from(double middle_x, double middle_y, double angle, double radius) {
        const uint32_t pixel =
            pixel_at(static_cast<int>(floor(middle_x + radius * cos(angle))),
                     static_cast<int>(floor(64 - middle_y - radius * sin(angle))));
        const int red = pixel >> 16 & 0xff, blue = pixel & 0xff;
        return abs(red - blue) < 12 ? red / 255.0 : -1;
    }
    // Of the pixel rows beside the middle line, at a distance to the right.
    double gray_above_middle(int distance) { return red_at(32 + distance, 31); }
    double gray_below_middle(int distance) { return red_at(32 + distance, 32); }
    double red_at(int x, int y) { return (pixel_at(x, y) >> 16 & 0xff) / 255.0; }
    double shade_at(double angle, double radius) {
        return red_at(static_cast<int>(floor(32 + radius * cos(angle))),
                      static_cast<int>(floor(32 - radius * sin(angle))));
    }
    uint32_t pixel_at(int x, int y) {
        cairo_surface_flush(picture_);
        const unsigned char* row =
            cairo_image_surface_get_data(picture_) + y * cairo_image_surface_get_stride(picture_);
        return reinterpret_cast<const uint32_t*>(row)[x];
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

TEST_F(Disc, TheTimerOfAProgressItemRedrawsItsDisc) {
    DVProgressItem* item = [[DVProgressItem alloc] initWithTree:elem_ target:controller_];
    [disc_of(item) setNeedsDisplay:NO];
    [timer_of(item) fire];
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
    [view setCurrentProgress:0.97];
    draw(view);
    EXPECT_EQ([view currentProgress], 1.0) << "the end itself is not past it";
    [view setLastProgressUpdate:0];
    [view setCurrentProgress:0.96];
    draw(view);
    EXPECT_NEAR([view currentProgress], 0.99, 1e-9);
}

TEST_F(Disc, ItsRimIsAMiddleGrayAndOnePointWide) {
    DVCircularProgressView* view = large_disc();
    [view setLastProgressUpdate:dv_double_time() + 1000];
    draw(view);
    // Radius 31, stroked half a point to each side. Measured along the axes, where pixels are
    // whole.
    for (const double angle : {M_PI / 2, M_PI, -M_PI / 2}) {
        EXPECT_NEAR(shade_at(angle, 29.5), 0.3, 0.03) << angle;
        EXPECT_NEAR(shade_at(angle, 30.75), 0.4, 0.06) << angle << ": half disc, half rim";
        EXPECT_EQ(gray_at(angle, 31.75), -1) << angle << ": half rim, half ground";
    }
}

TEST_F(Disc, TheWedgeIsThirtyDegreesWideWithALightGrayEdge) {
    DVCircularProgressView* view = large_disc();
    [view setLastProgressUpdate:dv_double_time() + 1000];
    draw(view);
    const double degree = M_PI / 180;
    EXPECT_NEAR(gray_at(4 * degree, 25), 1, 0.02);
    EXPECT_NEAR(gray_at(26 * degree, 25), 1, 0.02);
    EXPECT_NEAR(gray_at(34 * degree, 25), 0.3, 0.02);
    EXPECT_NEAR(gray_at(-4 * degree, 25), 0.3, 0.02);
    // Its lower edge is on the middle line between two rows of pixels: half of each is edge.
    EXPECT_NEAR(gray_below_middle(20), (0.7 + 0.3) / 2, 0.05);
    EXPECT_NEAR(gray_above_middle(20), (0.7 + 1) / 2, 0.05);
    // It reaches to the rim.
    EXPECT_NEAR(gray_at(15 * degree, 29), 1, 0.02);
}

TEST_F(Disc, ItsRadiusFollowsTheSmallerSide) {
    const NSRect frame = NSMakeRect(0, 0, 64, 40);
    DVCircularProgressView* view =
        [[[DVCircularProgressView alloc] initWithFrame:frame] autorelease];
    [view setLastProgressUpdate:dv_double_time() + 1000];
    draw(view);
    // The view is the window's lower part: its middle is 12 points below the window's.
    EXPECT_NEAR(gray_from(32, 20, M_PI, 17), 0.3, 0.03);
    EXPECT_EQ(gray_from(32, 20, M_PI, 21), -1);
    EXPECT_NEAR(gray_from(32, 20, M_PI / 2, 17), 0.3, 0.03);
}

TEST_F(Disc, ItDrawsADarkDiscWithALightWedge) {
    DVCircularProgressView* view = large_disc();
    // A time far in the future, so that the phase does not change.
    [view setLastProgressUpdate:dv_double_time() + 1000];
    draw(view);
    // Radius 31: the rim, and nothing outside.
    EXPECT_NEAR(gray_at(M_PI, 20), 0.3, 0.02);
    EXPECT_EQ(gray_at(M_PI / 4, 34), -1);
    EXPECT_NEAR(gray_at(M_PI / 12, 20), 1, 0.02);
    EXPECT_NEAR(gray_at(-M_PI / 12, 20), 0.3, 0.02);
    EXPECT_NEAR(gray_at(M_PI / 4, 20), 0.3, 0.02);
    // A quarter turn further: the wedge has turned clockwise.
    [view setCurrentProgress:0.25];
    draw(view);
    EXPECT_NEAR(gray_at(M_PI / 12, 20), 0.3, 0.02);
    EXPECT_NEAR(gray_at(M_PI / 12 - M_PI / 2, 20), 1, 0.02);
}
