#include <CoreGraphics/CoreGraphics.h>
#include <gtest/gtest.h>
#include <math.h>
#include <string.h>

#include <vector>

#include "coregraphics/image.h"

namespace {

constexpr size_t side = 32;

// A transparent square and a context over it.
class BitmapContext : public testing::Test {
  protected:
    void SetUp() override {
        context_ = create(bytes_.data(), side, side * 4, kCGImageAlphaPremultipliedFirst);
        ASSERT_NE(context_, nullptr);
    }
    void TearDown() override { CGContextRelease(context_); }

    static CGContextRef create(void* data, size_t width, size_t row, CGBitmapInfo info,
                               size_t bits = 8) {
        CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
        CGContextRef context = CGBitmapContextCreate(data, width, side, bits, row, space, info);
        CGColorSpaceRelease(space);
        return context;
    }
    // Alpha, red, green, blue; y counts from the top.
    uint32_t pixel(size_t x, size_t y) const {
        const uint8_t* bytes = bytes_.data() + (y * side + x) * 4;
        return uint32_t{bytes[0]} << 24 | bytes[1] << 16 | bytes[2] << 8 | bytes[3];
    }
    int drawn_pixels() const {
        int count = 0;
        for (size_t i = 0; i < side * side; i++) count += bytes_[i * 4] != 0;
        return count;
    }

    std::vector<uint8_t> bytes_ = std::vector<uint8_t>(side * side * 4);
    CGContextRef context_ = nullptr;
};

}  // namespace

TEST_F(BitmapContext, PixelsAreBytesInTheOrderAlphaRedGreenBlue) {
    CGContextSetRGBFillColor(context_, 1, 0.6, 0.2, 1);
    CGContextFillRect(context_, CGRectMake(0, 0, side, side));
    EXPECT_EQ(pixel(5, 5), 0xffff9933u);
}

TEST_F(BitmapContext, ColoursAreMultipliedByAlpha) {
    CGContextSetRGBFillColor(context_, 1, 0, 0, 0.5);
    CGContextFillRect(context_, CGRectMake(0, 0, side, side));
    EXPECT_EQ(pixel(5, 5), 0x80800000u);
}

TEST_F(BitmapContext, YGoesUpFromTheLowerLeftCorner) {
    CGContextFillRect(context_, CGRectMake(2, 3, 1, 1));
    EXPECT_EQ(drawn_pixels(), 1);
    EXPECT_EQ(pixel(2, side - 1 - 3), 0xff000000u);
}

TEST_F(BitmapContext, WhatWasInTheMemoryIsDrawnOver) {
    memset(bytes_.data(), 0xff, bytes_.size());
    CGContextRelease(context_);
    SetUp();
    CGContextSetRGBFillColor(context_, 0, 0, 0, 0.5);
    CGContextFillRect(context_, CGRectMake(0, 0, 1, 1));
    EXPECT_EQ(pixel(1, 0), 0xffffffffu);
    EXPECT_NEAR(pixel(0, side - 1) & 0xff, 0x80, 1);
}

TEST_F(BitmapContext, AStrokedRectangleIsOneUnitWide) {
    CGContextStrokeRect(context_, CGRectMake(4.5, 4.5, 20, 10));
    EXPECT_EQ(pixel(10, side - 1 - 4), 0xff000000u);
    EXPECT_EQ(pixel(10, side - 1 - 5), 0u);
    EXPECT_EQ(drawn_pixels(), 2 * 21 + 2 * 9);
}

TEST_F(BitmapContext, TheStateIsGivenBack) {
    CGContextSetRGBFillColor(context_, 1, 0, 0, 1);
    CGContextSaveGState(context_);
    CGContextSetRGBFillColor(context_, 0, 1, 0, 1);
    CGContextTranslateCTM(context_, 10, 10);
    CGContextRestoreGState(context_);
    CGContextRestoreGState(context_);  // one too many does nothing
    CGContextFillRect(context_, CGRectMake(0, 0, 1, 1));
    EXPECT_EQ(pixel(0, side - 1), 0xffff0000u);
    EXPECT_EQ(drawn_pixels(), 1);
}

TEST_F(BitmapContext, WhatIsDrawnWithASavedStateIsThereAfterTheRestore) {
    CGContextSaveGState(context_);
    CGContextSaveGState(context_);
    CGContextFillRect(context_, CGRectMake(1, 1, 1, 1));
    CGContextRestoreGState(context_);
    CGContextFillRect(context_, CGRectMake(20, 20, 1, 1));
    CGContextRestoreGState(context_);
    EXPECT_EQ(drawn_pixels(), 2);
    CGContextSaveGState(context_);
    CGContextFillRect(context_, CGRectMake(10, 10, 1, 1));
    CGContextRelease(context_);
    context_ = nullptr;
    EXPECT_EQ(drawn_pixels(), 3);
}

TEST_F(BitmapContext, PositiveAnglesTurnCounterClockwise) {
    CGContextTranslateCTM(context_, 16, 16);
    CGContextRotateCTM(context_, M_PI / 2);
    CGContextFillRect(context_, CGRectMake(4, 0, 1, 1));
    EXPECT_EQ(drawn_pixels(), 1);
    EXPECT_EQ(pixel(15, side - 1 - 20), 0xff000000u);
}

TEST_F(BitmapContext, AnArcGoesCounterClockwiseUnlessAskedOtherwise) {
    for (const int clockwise : {0, 1}) {
        memset(bytes_.data(), 0, bytes_.size());
        CGContextRelease(context_);
        SetUp();
        CGContextBeginPath(context_);
        CGContextMoveToPoint(context_, 16, 16);
        CGContextAddArc(context_, 16, 16, 12, 0, M_PI / 2, clockwise);
        CGContextDrawPath(context_, kCGPathFill);
        // The upper right quarter, or the three others.
        EXPECT_EQ(pixel(20, 10) != 0, clockwise == 0);
        EXPECT_EQ(pixel(10, 22) != 0, clockwise == 1);
    }
}

TEST_F(BitmapContext, APathIsFilledAndStrokedInTheirColours) {
    CGContextSetGrayFillColor(context_, 1, 1);
    CGContextSetRGBStrokeColor(context_, 1, 0, 0, 1);
    CGContextBeginPath(context_);
    CGContextMoveToPoint(context_, 16, 16);
    CGContextAddArc(context_, 16, 16, 12, 0, M_PI / 2, 0);
    CGContextDrawPath(context_, kCGPathFillStroke);
    EXPECT_EQ(pixel(20, 11), 0xffffffffu);
    EXPECT_EQ(pixel(16, 3), 0xffff0000u & pixel(16, 3)) << "only red at the arc's end";
    const int drawn = drawn_pixels();
    CGContextDrawPath(context_, kCGPathFill);  // the path is used up
    EXPECT_EQ(drawn_pixels(), drawn);
}

TEST_F(BitmapContext, AnEllipseFillsItsRectangle) {
    CGContextFillEllipseInRect(context_, CGRectMake(4, 8, 24, 16));
    EXPECT_EQ(pixel(16, 16), 0xff000000u);
    EXPECT_EQ(pixel(5, 9), 0u) << "no corner";
    EXPECT_NE(pixel(4, 16), 0u);
    EXPECT_EQ(pixel(3, 16), 0u);
    EXPECT_EQ(pixel(16, 7), 0u);
}

TEST_F(BitmapContext, WithoutAntialiasingNothingIsHalfDrawn) {
    CGContextSetShouldAntialias(context_, false);
    CGContextFillEllipseInRect(context_, CGRectMake(4, 8, 24, 16));
    for (size_t y = 0; y < side; y++) {
        for (size_t x = 0; x < side; x++) {
            EXPECT_TRUE(pixel(x, y) == 0 || pixel(x, y) == 0xff000000u);
        }
    }
}

TEST_F(BitmapContext, TextStandsOnItsBaseline) {
    CGContextSelectFont(context_, "Monaco", 9, kCGEncodingMacRoman);
    CGContextSetShouldAntialias(context_, false);
    CGContextShowTextAtPoint(context_, 2, 20, "E", 1);
    EXPECT_GT(drawn_pixels(), 5);
    for (size_t x = 0; x < side; x++) EXPECT_EQ(pixel(x, side - 20), 0u) << "below the baseline";
    int on_baseline = 0;
    for (size_t x = 0; x < side; x++) on_baseline += pixel(x, side - 1 - 20) != 0;
    EXPECT_GT(on_baseline, 2);
}

TEST_F(BitmapContext, CharacterSpacingIsAddedToEachAdvance) {
    CGContextSelectFont(context_, "Monaco", 9, kCGEncodingMacRoman);
    CGContextSetShouldAntialias(context_, false);
    CGContextSetCharacterSpacing(context_, 10.6);  // 16 in all
    CGContextShowTextAtPoint(context_, 0, 20, "||", 2);
    for (size_t y = 0; y < side; y++) {
        for (size_t x = 0; x < 16; x++) EXPECT_EQ(pixel(x, y), pixel(x + 16, y));
    }
}

TEST_F(BitmapContext, WithoutAFontOrWithInvisibleTextNothingIsDrawn) {
    CGContextShowTextAtPoint(context_, 2, 20, "E", 1);
    CGContextSelectFont(context_, "Monaco", 9, kCGEncodingMacRoman);
    CGContextSetTextDrawingMode(context_, kCGTextInvisible);
    CGContextShowTextAtPoint(context_, 2, 20, "E", 1);
    EXPECT_EQ(drawn_pixels(), 0);
}

TEST_F(BitmapContext, LongTextsAreDrawnToTheirEnd) {
    CGContextSelectFont(context_, "Monaco", 9, kCGEncodingMacRoman);
    const std::vector<char> text(2000, '|');
    CGContextShowTextAtPoint(context_, -1990 * 5.4, 20, text.data(), text.size());
    EXPECT_GT(drawn_pixels(), 0);
}

TEST_F(BitmapContext, OnlyWhatCanBeDrawnGetsAContext) {
    EXPECT_EQ(create(nullptr, side, side * 4, kCGImageAlphaPremultipliedFirst), nullptr);
    EXPECT_EQ(create(bytes_.data(), 0, side * 4, kCGImageAlphaPremultipliedFirst), nullptr);
    EXPECT_EQ(create(bytes_.data(), side, side * 4 - 1, kCGImageAlphaPremultipliedFirst), nullptr);
    EXPECT_EQ(create(bytes_.data(), 40000, 160000, kCGImageAlphaPremultipliedFirst), nullptr);
    EXPECT_EQ(create(bytes_.data(), side, side * 4, kCGImageAlphaPremultipliedLast), nullptr);
    EXPECT_EQ(create(bytes_.data(), side, side * 4, kCGImageAlphaPremultipliedFirst, 16), nullptr);
}

TEST(NullContext, IsIgnored) {
    CGContextRelease(nullptr);
    CGContextSaveGState(nullptr);
    CGContextFillRect(nullptr, CGRectMake(0, 0, 1, 1));
    CGContextDrawPath(nullptr, kCGPathFill);
    CGContextShowTextAtPoint(nullptr, 0, 0, "a", 1);
}

TEST(WindowLevels, AreOrderedAsTheyStand) {
    EXPECT_LT(CGWindowLevelForKey(kCGDesktopWindowLevelKey),
              CGWindowLevelForKey(kCGNormalWindowLevelKey));
    EXPECT_EQ(CGWindowLevelForKey(kCGNormalWindowLevelKey), 0);
    EXPECT_EQ(CGWindowLevelForKey(9), 21);
    EXPECT_EQ(CGWindowLevelForKey(11), 101);
    EXPECT_EQ(CGWindowLevelForKey(-1), 0);
    EXPECT_EQ(CGWindowLevelForKey(1000), 0);
}

TEST(Rectangles, TheUpperAndRightEdgesLieOutside) {
    const CGRect rect = CGRectMake(10, 20, 30, 40);
    EXPECT_TRUE(CGRectContainsPoint(rect, CGPointMake(10, 20)));
    EXPECT_TRUE(CGRectContainsPoint(rect, CGPointMake(39.9, 59.9)));
    EXPECT_FALSE(CGRectContainsPoint(rect, CGPointMake(40, 30)));
    EXPECT_FALSE(CGRectContainsPoint(rect, CGPointMake(20, 60)));
    EXPECT_FALSE(CGRectContainsPoint(rect, CGPointMake(9, 30)));
}

// Tests for a screen of 200 %.
class FinerBitmapContext : public BitmapContext {
  protected:
    void SetUp() override {
        set_display_scale(2);
        BitmapContext::SetUp();
    }
    void TearDown() override {
        BitmapContext::TearDown();
        set_display_scale(1);
    }
    CGImageRef image() {
        CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
        CGDataProviderRef provider =
            CGDataProviderCreateWithData(nullptr, bytes_.data(), bytes_.size(), nullptr);
        CGImageRef image =
            CGImageCreate(side, side, 8, 32, side * 4, space, kCGImageAlphaPremultipliedFirst,
                          provider, nullptr, false, kCGRenderingIntentDefault);
        CGDataProviderRelease(provider);
        CGColorSpaceRelease(space);
        return image;
    }
    // Red, green, blue, alpha of the image's pixels.
    std::vector<uint8_t> pixels_of(CGImageRef image) {
        std::vector<uint8_t> pixels(CGImageGetWidth(image) * CGImageGetHeight(image) * 4);
        copy_image_pixels(image, pixels.data(), CGImageGetWidth(image) * 4);
        return pixels;
    }
};

TEST_F(FinerBitmapContext, AnImageOfItHasThePixelsOfTheScreen) {
    CGContextSetRGBFillColor(context_, 1, 0, 0, 1);
    CGContextFillRect(context_, CGRectMake(0.5, 0, 1, side));
    CGImageRef shown = image();
    ASSERT_EQ(CGImageGetWidth(shown), 2 * side);
    ASSERT_EQ(CGImageGetHeight(shown), 2 * side);
    EXPECT_EQ(image_scale(shown), 2);
    const std::vector<uint8_t> pixels = pixels_of(shown);
    const int alphas[] = {0, 255, 255, 0};
    for (int x = 0; x < 4; x++) EXPECT_EQ(pixels[x * 4 + 3], alphas[x]) << x;
    EXPECT_EQ(pixels[4], 255);
    EXPECT_EQ(pixel(0, 5) >> 24, 128u) << "the caller's memory has its own pixels";
    CGImageRelease(shown);
}

TEST_F(FinerBitmapContext, TextIsDrawnInTwiceAsManyPixelsNotInDoubledOnes) {
    CGContextSetShouldAntialias(context_, false);
    CGContextSaveGState(context_);
    CGContextSetRGBFillColor(context_, 0, 0, 0, 1);
    CGContextSelectFont(context_, "Monaco", 9, kCGEncodingMacRoman);
    CGContextSetCharacterSpacing(context_, 0.6);
    CGContextSetTextDrawingMode(context_, kCGTextFill);
    CGContextShowTextAtPoint(context_, 2, 10, "S8&", 3);
    CGContextRestoreGState(context_);
    CGImageRef shown = image();
    const std::vector<uint8_t> pixels = pixels_of(shown);
    int drawn = 0, odd = 0;
    for (size_t y = 0; y < 2 * side; y++) {
        for (size_t x = 0; x < 2 * side; x += 2) {
            const size_t left = (y * 2 * side + x) * 4 + 3;
            drawn += pixels[left] != 0 || pixels[left + 4] != 0;
            odd += pixels[left] != pixels[left + 4];
        }
    }
    EXPECT_GT(drawn, 30);
    EXPECT_GT(odd, 5) << "each pixel is there twice";
    CGImageRelease(shown);
}

TEST_F(FinerBitmapContext, AnImageOfAContextThatHasGoneHasTheMemorysPixels) {
    CGContextRelease(context_);
    context_ = nullptr;
    CGImageRef shown = image();
    EXPECT_EQ(CGImageGetWidth(shown), side);
    EXPECT_EQ(image_scale(shown), 1);
    CGImageRelease(shown);
}
