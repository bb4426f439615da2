// The results of the Mac's call for ordinary files.
#include <QuickLook/QuickLook.h>

#include <Foundation/Foundation.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <fstream>
#include <string>
#include <vector>

#include "children.h"
#include "coregraphics/image.h"
#include "sample_files.h"
#include "support/temp_folder.h"

namespace {

// The bytes of a picture: red, green, blue, alpha, colours multiplied by alpha.
struct Shown {
    size_t width = 0, height = 0;
    std::vector<uint8_t> bytes;

    // The colour at a place given as fractions of the whole: "rgba" with 0 or 1 for each value, and
    // ? for a value in between.
    std::string at(double x, double y) const {
        if (bytes.empty()) return "none";
        const auto column = static_cast<size_t>(x * static_cast<double>(width));
        const auto row = static_cast<size_t>(y * static_cast<double>(height));
        std::string name;
        for (size_t i = 0; i < 4; i++) {
            const uint8_t value = bytes[(row * width + column) * 4 + i];
            name += value > 200 ? '1' : value < 55 ? '0' : '?';
        }
        return name;
    }
};

const char red[] = "1001", blue[] = "0011", clear[] = "0000";

class ThumbnailImage : public testing::Test {
  protected:
    // No picture: width 0.
    Shown show(const std::string& path, double side) {
        @autoreleasepool {
            NSURL* url = [NSURL fileURLWithPath:[NSString stringWithUTF8String:path.c_str()]];
            CGImageRef image = QLThumbnailImageCreate(kCFAllocatorDefault, (CFURLRef)url,
                                                      CGSizeMake(side, side), nullptr);
            if (!image) return {};
            Shown shown = {CGImageGetWidth(image), CGImageGetHeight(image), {}};
            shown.bytes.resize(shown.width * shown.height * 4);
            copy_image_pixels(image, shown.bytes.data(), shown.width * 4);
            CGImageRelease(image);
            return shown;
        }
    }

    void expect_red_and_blue(const Shown& shown, size_t width, size_t height) {
        EXPECT_EQ(shown.width, width);
        EXPECT_EQ(shown.height, height);
        EXPECT_EQ(shown.at(0.25, 0.25), red);
        EXPECT_EQ(shown.at(0.75, 0.25), blue);
    }

    const test::TempFolder folder;
    test::TempFolder& files = const_cast<test::TempFolder&>(folder);
};

TEST_F(ThumbnailImage, AJpegFitsTheBox) {
    const std::string path = files.file("a.jpg", test::image_bytes(800, 600, "jpeg"));
    expect_red_and_blue(show(path, 256), 256, 192);
    expect_red_and_blue(show(path, 512), 512, 384);
}

TEST_F(ThumbnailImage, TheAlphaOfAPngIsKept) {
    const Shown shown = show(files.file("a.png", test::image_bytes(400, 400, "png", true)), 256);
    expect_red_and_blue(shown, 256, 256);
    EXPECT_EQ(shown.at(0.5, 0.75), clear);
}

TEST_F(ThumbnailImage, APhotographIsShownAsTheCameraWasHeld) {
    std::string bytes = test::image_bytes(400, 200, "jpeg");
    // After the start of the file: orientation 6, the camera turned a quarter to the left.
    bytes.insert(2, std::string("\xff\xe1\0\x22"
                                "Exif\0\0MM\0\x2a\0\0\0\x08\0\x01\x01\x12\0\x03"
                                "\0\0\0\x01\0\x06\0\0\0\0\0\0",
                                36));
    const Shown shown = show(files.file("a.jpg", bytes), 100);
    EXPECT_EQ(shown.width, 50u);
    EXPECT_EQ(shown.height, 100u);
    EXPECT_EQ(shown.at(0.5, 0.25), red);
    EXPECT_EQ(shown.at(0.5, 0.75), blue);
}

TEST_F(ThumbnailImage, AnSvgIsDrawn) {
    expect_red_and_blue(show(files.file("a.svg", test::svg_bytes(1000, 500)), 256), 256, 128);
}

TEST_F(ThumbnailImage, TheFirstPageOfAPdfIsDrawnOnWhite) {
    const std::string operators = "1 0 0 rg 0 421 298 421 re f 0 0 1 rg 298 421 297 421 re f";
    const Shown shown = show(files.file("a.pdf", test::pdf_bytes(595, 842, operators)), 512);
    expect_red_and_blue(shown, 362, 512);
    EXPECT_EQ(shown.at(0.5, 0.75), "1111");
}

TEST_F(ThumbnailImage, AFilmIsShownByItsThumbnailer) {
    ASSERT_EQ(system("command -v ffmpegthumbnailer >/dev/null"), 0);
    const Shown shown = show(files.file("a.avi", test::film_bytes(640, 480, 20)), 256);
    expect_red_and_blue(shown, 256, 192);
}

TEST_F(ThumbnailImage, ASmallImageIsNotEnlarged) {
    const std::string path = files.file("a.png", test::image_bytes(20, 10, "png"));
    expect_red_and_blue(show(path, 512), 20, 10);
}

TEST_F(ThumbnailImage, TheNameMayHaveAnyBytes) {
    expect_red_and_blue(
        show(files.file("a b%20#?\xc3\xa9.jpg", test::image_bytes(300, 300, "jpeg")), 128), 128,
        128);
}

TEST_F(ThumbnailImage, ANameThatLiesIsSeenThrough) {
    const std::string operators = "1 0 0 rg 0 200 200 200 re f 0 0 1 rg 200 200 200 200 re f";
    expect_red_and_blue(show(files.file("a.jpg", test::pdf_bytes(400, 400, operators)), 128), 128,
                        128);
    expect_red_and_blue(show(files.file("picture", test::image_bytes(300, 300, "png")), 128), 128,
                        128);
}

TEST_F(ThumbnailImage, ATextIsDrawnAsWideAsTheBox) {
    const std::pair<const char*, const char*> texts[] = {
        {"a.txt", "words\n"},    {"a.cpp", "int main() {}\n"}, {"a.sh", "#!/bin/sh\n"},
        {"a.json", "{}\n"},      {"README", "Read me.\n"},     {"script", "#!/bin/sh\nexit\n"},
        {"a.jpg", "no image\n"},
    };
    for (const auto& [name, content] : texts) {
        EXPECT_EQ(show(files.file(name, content), 256).width, 256u) << name;
    }
}

TEST_F(ThumbnailImage, ATextHasAsManyPixelsAsTheScreenAndItsGround) {
    const std::string path = files.file("a.txt", "words\n");
    EXPECT_EQ(show(path, 256).at(0.5, 0.9), "1111");
    set_display_scale(2);
    set_display_is_dark(true);
    const Shown shown = show(path, 256);
    set_display_scale(1);
    set_display_is_dark(false);
    EXPECT_EQ(shown.width, 512u);
    EXPECT_EQ(shown.at(0.5, 0.9), "0001");
}

TEST_F(ThumbnailImage, FilesWithoutAPictureHaveNone) {
    EXPECT_EQ(show(files.file("empty.jpg", ""), 256).width, 0u);
    EXPECT_EQ(show(files.file("empty", ""), 256).width, 0u);
    EXPECT_EQ(show(files.file("bytes", std::string("\0\1\2\3\0\0", 6)), 256).width, 0u);
}

TEST_F(ThumbnailImage, FoldersAndMissingFilesHaveNone) {
    EXPECT_EQ(show(files.folder("a.jpg"), 256).width, 0u);
    EXPECT_EQ(show(folder.path("missing.jpg"), 256).width, 0u);
    EXPECT_EQ(QLThumbnailImageCreate(nullptr, nullptr, CGSizeMake(256, 256), nullptr), nullptr);
}

TEST_F(ThumbnailImage, ALinkShowsWhatItLeadsTo) {
    files.file("a.jpg", test::image_bytes(300, 300, "jpeg"));
    expect_red_and_blue(show(files.link("link.jpg", folder.path("a.jpg")), 128), 128, 128);
}

TEST_F(ThumbnailImage, ABoxWithoutRoomHasNone) {
    const std::string path = files.file("a.jpg", test::image_bytes(300, 300, "jpeg"));
    EXPECT_EQ(show(path, 0).width, 0u);
    EXPECT_EQ(show(path, -5).width, 0u);
    EXPECT_EQ(show(path, 0.0 / 0.0).width, 0u);
    EXPECT_EQ(show(path, 1).width, 1u);
    expect_red_and_blue(show(path, 1e300), 300, 300);
}

TEST_F(ThumbnailImage, NoChildIsLeft) {
    show(files.file("a.jpg", test::image_bytes(300, 300, "jpeg")), 128);
    EXPECT_TRUE(test::no_child_is_left());
}

}  // namespace
