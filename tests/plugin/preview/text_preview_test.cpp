#include "preview/dv_preview.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "preview/dv_text_lines.h"
#include "support/dv_log.h"
#include "support/temp_folder.h"
#include "tree/dv_state.h"
#include "tree/dv_tree.h"

namespace {

constexpr uint32_t white = 0xffffffff, black = 0xff000000;

class TextPreview : public testing::Test {
  protected:
    void SetUp() override { size(128); }
    void TearDown() override { dv_dispose_preview_context(&state_); }
    void size(uint32_t side) {
        state_.preview_size = side;
        dv_create_preview_context(&state_);
    }
    // Draws a text and returns the image.
    void draw(const std::string& text) {
        std::vector<char> buffer(DV_PREVIEW_TEXT_CAPACITY);
        std::copy(text.begin(), text.end(), buffer.begin());
        CGImageRef image =
            dv_render_text_preview(&state_, buffer.data(), static_cast<int32_t>(text.size()));
        ASSERT_NE(image, nullptr);
        EXPECT_EQ(CGImageGetWidth(image), state_.preview_size);
        EXPECT_EQ(CGImageGetHeight(image), state_.preview_size);
        CGImageRelease(image);
    }
    // As alpha, red, green, blue; y counts from the top.
    uint32_t pixel(uint32_t x, uint32_t y) const {
        const auto* bytes =
            static_cast<const uint8_t*>(state_.preview_bitmap) + (y * state_.preview_size + x) * 4;
        return uint32_t{bytes[0]} << 24 | bytes[1] << 16 | bytes[2] << 8 | bytes[3];
    }
    int black_pixels(uint32_t left, uint32_t top, uint32_t width, uint32_t height) const {
        int count = 0;
        for (uint32_t y = top; y < top + height; y++) {
            for (uint32_t x = left; x < left + width; x++) count += pixel(x, y) == black;
        }
        return count;
    }
    // The cell of a character: its line's baseline is 14 below the top, and 12 more a line.
    int ink(uint32_t column, uint32_t line) const {
        return black_pixels(2 + column * 6, 4 + line * 12, 6, 12);
    }
    bool anything_drawn() const {
        const uint32_t inner = state_.preview_size - 2;
        for (uint32_t y = 1; y <= inner; y++) {
            for (uint32_t x = 1; x <= inner; x++) {
                if (pixel(x, y) != white) return true;
            }
        }
        return false;
    }
    CGImageRef from_path(const std::string& path) {
        return dv_create_text_preview_from_path(&state_, path.c_str());
    }

    delvio_t state_ = {};
    test::TempFolder folder_;
};

// What this process has read so far, by any call, in bytes.
long bytes_read() {
    char text[200] = {};
    const int file = open("/proc/self/io", O_RDONLY | O_CLOEXEC);
    EXPECT_GT(read(file, text, sizeof text - 1), 0);
    close(file);
    long count = -1;
    EXPECT_EQ(sscanf(text, "rchar: %ld", &count), 1);
    return count;
}

// The bytes read during the action; the first measurement counts itself only when it is over.
template <typename Deed>
long bytes_read_by(Deed deed) {
    const long first = bytes_read(), second = bytes_read();
    deed();
    return bytes_read() - second - (second - first);
}

}  // namespace

TEST_F(TextPreview, AnEmptyFileIsAWhiteSquareWithABlackFrame) {
    CGImageRef image = from_path(folder_.file("empty"));
    ASSERT_NE(image, nullptr);
    CGImageRelease(image);
    EXPECT_FALSE(anything_drawn());
    // Half of the line lies within the square.
    for (const uint32_t side : {0u, 127u}) {
        EXPECT_EQ(pixel(64, side) >> 24, 0xffu);
        EXPECT_NEAR(pixel(64, side) & 0xff, 0x80, 1);
        EXPECT_NEAR(pixel(side, 64) & 0xff, 0x80, 1);
    }
}

TEST_F(TextPreview, CharactersStandInTheirCells) {
    draw("A B\n\nC\n");
    EXPECT_GT(ink(0, 0), 0);
    EXPECT_EQ(ink(1, 0), 0);
    EXPECT_GT(ink(2, 0), 0);
    EXPECT_EQ(black_pixels(2, 16, 120, 12), 0) << "an empty line moves the next one down";
    EXPECT_GT(ink(0, 2), 0);
    EXPECT_EQ(black_pixels(14 + 6, 4, 100, 12), 0);
}

TEST_F(TextPreview, TheFirstBaselineIs114OfASquareOf128) {
    draw("EEEE\n");
    // The feet of an E stand on the baseline; nothing is below.
    EXPECT_GT(black_pixels(2, 128 - 114 - 1, 24, 1), 0);
    EXPECT_EQ(black_pixels(2, 128 - 114, 24, 12), 0);
}

TEST_F(TextPreview, EveryCharacterKeepsToItsColumnToTheEndOfTheLine) {
    draw(std::string(20, '|'));
    for (uint32_t column = 0; column < 20; column++) {
        EXPECT_EQ(ink(column, 0), ink(0, 0)) << column;
        EXPECT_GT(ink(column, 0), 0) << column;
    }
}

TEST_F(TextPreview, TheWidestLineOfALargeSquareFits) {
    size(1024);
    draw(std::string(170, '|'));
    for (const uint32_t column : {0u, 100u, 169u}) EXPECT_EQ(ink(column, 0), ink(0, 0)) << column;
}

TEST_F(TextPreview, NoPixelIsGrey) {
    draw("The quick brown fox\njumps over the lazy\ndog 0123456789 @#%&\n");
    for (uint32_t y = 1; y < 127; y++) {
        for (uint32_t x = 1; x < 127; x++) {
            EXPECT_TRUE(pixel(x, y) == white || pixel(x, y) == black) << x << " " << y;
        }
    }
}

TEST_F(TextPreview, BytesAreMacRomanEachOneGlyph) {
    // In UTF-8 a u with dieresis has two bytes, so it has two glyphs.
    draw("\xc3\xbc\n");
    EXPECT_GT(ink(0, 0), 0);
    EXPECT_GT(ink(1, 0), 0);
    const int two_bytes = black_pixels(2, 4, 12, 12);
    draw("\x9f\n");  // u with dieresis in MacRoman
    EXPECT_GT(ink(0, 0), 0);
    EXPECT_EQ(ink(1, 0), 0);
    EXPECT_NE(black_pixels(2, 4, 12, 12), two_bytes);
}

TEST_F(TextPreview, ControlBytesTakeTheirPlaceAndShowNothing) {
    draw(
        std::string("A\0\x01\x7f"
                    "B\n",
                    6));
    EXPECT_GT(ink(0, 0), 0);
    EXPECT_EQ(ink(1, 0) + ink(2, 0) + ink(3, 0), 0);
    EXPECT_GT(ink(4, 0), 0);
}

TEST_F(TextPreview, ATextWithoutABreakIsDrawnOnce) {
    draw("AB");
    EXPECT_GT(ink(1, 0), 0);
    EXPECT_EQ(black_pixels(14, 4, 112, 12), 0) << "the zero bytes after it show nothing";
}

TEST_F(TextPreview, ANewTextReplacesTheOneBefore) {
    draw("MMMMMMMM\nMMMMMMMM\n");
    draw(".\n");
    EXPECT_EQ(black_pixels(8, 4, 110, 110), 0);
    EXPECT_GT(ink(0, 0), 0);
}

TEST_F(TextPreview, AnImageReadsTheBitmapAsItIs) {
    char text[DV_PREVIEW_TEXT_CAPACITY] = "A\n";
    CGImageRef first = dv_render_text_preview(&state_, text, 2);
    void* const bitmap = state_.preview_bitmap;
    CGImageRef second = dv_render_text_preview(&state_, text, 2);
    EXPECT_EQ(state_.preview_bitmap, bitmap);
    CGImageRelease(first);
    CGImageRelease(second);
}

TEST_F(TextPreview, AContextOfTheSameSizeIsKept) {
    CGContextRef const context = state_.preview_context;
    dv_create_preview_context(&state_);
    EXPECT_EQ(state_.preview_context, context);
}

TEST_F(TextPreview, AnotherSizeRemakesTheContext) {
    void* const bitmap = state_.preview_bitmap;
    size(256);
    EXPECT_NE(state_.preview_bitmap, bitmap);
    EXPECT_EQ(state_.preview_context_size, 256u);
    EXPECT_EQ(state_.preview_rect.size.width, 256);
    draw(std::string(42, 'x') + "\n");
    EXPECT_GT(ink(41, 0), 0);
    free(bitmap);  // left allocated on purpose
}

TEST_F(TextPreview, ASizeThatChangesAfterTheContextWasMadeDoesNoHarm) {
    state_.preview_size = 512;
    char text[DV_PREVIEW_TEXT_CAPACITY] = "A\n";
    CGImageRef image = dv_render_text_preview(&state_, text, 2);
    EXPECT_EQ(CGImageGetWidth(image), 128u);
    CGImageRelease(image);
}

TEST_F(TextPreview, OddSizesGiveASmallPreviewOrNone) {
    for (const uint32_t side : {0u, 1u, 3u, 15u, 100000u, 0xffffffffu}) {
        void* const bitmap = state_.preview_bitmap;
        size(side);
        free(bitmap);
        char text[DV_PREVIEW_TEXT_CAPACITY] = "A\n";
        CGImageRef image = dv_render_text_preview(&state_, text, 2);
        EXPECT_EQ(image != nullptr, side > 0 && side < 100) << side;
        CGImageRelease(image);
    }
}

TEST_F(TextPreview, WithoutAContextThereIsNoPreview) {
    dv_dispose_preview_context(&state_);
    EXPECT_EQ(state_.preview_context, nullptr);
    EXPECT_EQ(state_.preview_bitmap, nullptr);
    char text[DV_PREVIEW_TEXT_CAPACITY] = "A\n";
    testing::internal::CaptureStdout();
    EXPECT_EQ(dv_render_text_preview(&state_, text, 2), nullptr);
    dvEnableDebugOutput = 1;
    EXPECT_EQ(dv_render_text_preview(&state_, text, 2), nullptr);
    dvEnableDebugOutput = 0;
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Delvio: Can't render text preview - no context!\n");
}

TEST_F(TextPreview, DisposingReleasesTheImageThatTheRecordHolds) {
    char text[DV_PREVIEW_TEXT_CAPACITY] = "A\n";
    state_.preview_image = dv_render_text_preview(&state_, text, 2);
    dv_dispose_preview_context(&state_);
    EXPECT_EQ(state_.preview_image, nullptr);
    dv_dispose_preview_context(&state_);  // nothing is left to do
}

TEST_F(TextPreview, ThePlaceholderIsNull) { EXPECT_EQ(dv_create_preview(), nullptr); }

TEST_F(TextPreview, AFileThatCannotBeOpenedIsToldOf) {
    testing::internal::CaptureStdout();
    EXPECT_EQ(from_path("/nowhere/at/all"), nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Delvio: Failed to open file for preview generation: /nowhere/at/all\n");
}

TEST_F(TextPreview, ANullPathGivesNothing) {
    EXPECT_EQ(dv_create_text_preview_from_path(&state_, nullptr), nullptr);
    testing::internal::CaptureStdout();
    EXPECT_EQ(dv_create_text_preview(&state_, nullptr), nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Delvio: Failed to get path for element during text preview generation.\n");
}

TEST_F(TextPreview, APipeIsNotOpened) {
    const std::string pipe = folder_.path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    testing::internal::CaptureStdout();
    EXPECT_EQ(from_path(pipe), nullptr);
    EXPECT_NE(testing::internal::GetCapturedStdout().find("Failed to open"), std::string::npos);
}

TEST_F(TextPreview, AFolderReadsAsNoText) {
    CGImageRef image = from_path(folder_.folder("dir"));
    EXPECT_NE(image, nullptr);
    CGImageRelease(image);
    EXPECT_FALSE(anything_drawn());
}

TEST_F(TextPreview, OfALongFileTheFirst10240BytesAreRead) {
    // The last byte that is read, and the first that is not: the line is 1031 wide.
    std::string text(DV_PREVIEW_TEXT_CAPACITY + 10, ' ');
    text[DV_PREVIEW_TEXT_CAPACITY - 1] = 'M';
    text[DV_PREVIEW_TEXT_CAPACITY] = 'M';
    size(4098);  // 682 columns, so the last byte is column 10 of line 15
    CGImageRef image = from_path(folder_.file("long", text));
    ASSERT_NE(image, nullptr);
    CGImageRelease(image);
    EXPECT_GT(ink(9, 15), 0);
    EXPECT_EQ(ink(10, 15), 0);
}

TEST_F(TextPreview, TheFileIsClosedAgain) {
    const std::string path = folder_.file("text", "A\n");
    const auto open_files = [] {
        const std::filesystem::directory_iterator files("/proc/self/fd");
        return std::distance(begin(files), end(files));
    };
    CGImageRelease(from_path(path));
    const auto before = open_files();
    for (int i = 0; i < 5; i++) CGImageRelease(from_path(path));
    EXPECT_EQ(open_files(), before);
}

TEST_F(TextPreview, AnElementIsReadFromItsPath) {
    const std::string path = folder_.file("text", "A\n");
    dv_tree_t* elem = dv_create_elem(dv_create_single_dir(path.c_str()), nullptr, 0, 0);
    CGImageRef image = dv_create_text_preview(&state_, elem);
    ASSERT_NE(image, nullptr);
    CGImageRelease(image);
    EXPECT_GT(ink(0, 0), 0);
    dv_free_elem(elem);
}

TEST_F(TextPreview, SeveralThreadsAtOnceDoNoHarm) {
    const std::string path = folder_.file("text", std::string(5000, 'x'));
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; i++) {
        threads.emplace_back([this, &path] {
            for (int round = 0; round < 20; round++) {
                dv_create_preview_context(&state_);
                CGImageRelease(from_path(path));
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_GT(ink(0, 0), 0);
}

TEST_F(TextPreview, OfALongFileNotAByteMoreIsReadThanAPreviewHolds) {
    const std::string path = folder_.file("long", std::string(100000, 'a'));
    CGImageRelease(from_path(path));  // loads what is read only once, such as the font
    // The counts are themselves texts, whose length differs by some digits.
    const int digits = 20;
    EXPECT_NEAR(bytes_read_by([] {}), 0, digits);
    EXPECT_NEAR(bytes_read_by([&] { CGImageRelease(from_path(path)); }), DV_PREVIEW_TEXT_CAPACITY,
                digits);
    const std::string brief = folder_.file("short", "abc");
    EXPECT_NEAR(bytes_read_by([&] { CGImageRelease(from_path(brief)); }), 3, digits);
}
