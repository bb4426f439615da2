// Files whose pictures are drawn for the screen: texts, archives, fonts, sounds. Each with both
// ways to run the helper: inside bubblewrap, where that works, and restricted only by itself.
#include <archive.h>
#include <archive_entry.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

#include "children.h"
#include "quicklook/background.h"
#include "quicklook/thumbnail_maker.h"
#include "sample_files.h"
#include "support/temp_folder.h"

namespace {

using namespace thumbnails;
namespace fs = std::filesystem;

struct Pixel {
    int red, green, blue;

    int brightness() const { return (red + green + blue) / 3; }
    bool is_coloured() const {
        return std::max({red, green, blue}) - std::min({red, green, blue}) > 60;
    }
};

Pixel pixel(const Picture& picture, int x, int y) {
    const uint8_t* at = &picture.pixels[static_cast<size_t>(y * picture.width + x) * 4];
    return {at[0], at[1], at[2]};
}

// How many pixels inside the frame are so.
template <typename Question>
int count(const Picture& picture, Question is_so) {
    int found = 0;
    for (int y = 3; y < picture.height - 3; y++) {
        for (int x = 3; x < picture.width - 3; x++) found += is_so(pixel(picture, x, y));
    }
    return found;
}

int dark_pixels(const Picture& picture) {
    return count(picture, [](const Pixel& pixel) { return pixel.brightness() < 100; });
}

int coloured_pixels(const Picture& picture) {
    return count(picture, [](const Pixel& pixel) { return pixel.is_coloured(); });
}

bool are_equal(const Picture& one, const Picture& other) {
    return one && one.width == other.width && one.height == other.height &&
           one.pixels == other.pixels;
}

struct Member {
    std::string path, content;
};

std::string archive_bytes(const char* format, const char* filter,
                          const std::vector<Member>& members) {
    std::string bytes(32 * 1024 * 1024, '\0');
    size_t used = 0;
    archive* writer = archive_write_new();
    archive_write_set_format_by_name(writer, format);
    if (*filter) archive_write_add_filter_by_name(writer, filter);
    archive_write_open_memory(writer, bytes.data(), bytes.size(), &used);
    for (const Member& member : members) {
        archive_entry* entry = archive_entry_new();
        archive_entry_set_pathname(entry, member.path.c_str());
        archive_entry_set_size(entry, static_cast<la_int64_t>(member.content.size()));
        archive_entry_set_filetype(entry, AE_IFREG);
        archive_entry_set_perm(entry, 0644);
        archive_write_header(writer, entry);
        archive_write_data(writer, member.content.data(), member.content.size());
        archive_entry_free(entry);
    }
    EXPECT_EQ(archive_write_close(writer), ARCHIVE_OK);
    archive_write_free(writer);
    bytes.resize(used);
    return bytes;
}

std::string content_of(const std::string& path) {
    std::ostringstream bytes;
    bytes << std::ifstream(path, std::ios::binary).rdbuf();
    return bytes.str();
}

std::string big(uint32_t number) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(number >> shift);
    return bytes;
}

std::string tag_frame(const std::string& name, const std::string& content) {
    return name + big(static_cast<uint32_t>(content.size())) + std::string(2, '\0') + content;
}

// Silence, after a tag of these frames.
std::string mp3_bytes(const std::string& frames) {
    std::string size;
    for (int shift = 21; shift >= 0; shift -= 7) {
        size += static_cast<char>(frames.size() >> shift & 127);
    }
    std::string bytes = std::string("ID3\3\0\0", 6) + size + frames;
    for (int i = 0; i < 100; i++) bytes += "\xff\xfb\x90" + std::string(414, '\0');
    return bytes;
}

const char font[] = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";

class DrawnFiles : public testing::TestWithParam<bool> {
  protected:
    static Settings settings() {
        Settings settings;
        settings.helper_folder = helper_folder();
        settings.use_bubblewrap = GetParam();
        settings.decoder_seconds = 60;  // for a busy machine
        settings.processor_seconds = 30;
        return settings;
    }
    DrawnFiles() : maker(settings()) {}
    ~DrawnFiles() override { wait_for_background(); }

    Picture picture(const std::string& name, const std::string& content,
                    const Screen& screen = {}) {
        const int side = static_cast<int>(256 * screen.scale);
        return maker.make(files.file(name, content), {side, side}, screen);
    }

    test::TempFolder files;
    ThumbnailMaker maker;
};

TEST_P(DrawnFiles, ATextIsDarkOnLightPaperAndLightOnDarkPaper) {
    const Picture light = picture("a.txt", "The first line\nand another\n");
    ASSERT_TRUE(light);
    EXPECT_EQ(light.width, 256);
    EXPECT_LT(light.height, 256) << "a short text has a short sheet";
    EXPECT_GT(pixel(light, 3, 3).brightness(), 250);
    EXPECT_GT(dark_pixels(light), 50);
    const Picture dark = picture("a.txt", "The first line\nand another\n", {1, true});
    ASSERT_TRUE(dark);
    EXPECT_LT(pixel(dark, 3, 3).brightness(), 50);
    EXPECT_GT(count(dark, [](const Pixel& pixel) { return pixel.brightness() > 150; }), 50);
}

TEST_P(DrawnFiles, AtTwiceTheScaleATextIsTheSameTextWithTwiceThePixels) {
    const std::string text = "Some words to be read.\n";
    const Picture usual = picture("a.txt", text), fine = picture("a.txt", text, {2, false});
    ASSERT_TRUE(usual && fine);
    EXPECT_EQ(fine.width, 512);
    EXPECT_NEAR(fine.height, usual.height * 2, 8);
    const double growth = static_cast<double>(dark_pixels(fine)) / dark_pixels(usual);
    EXPECT_GT(growth, 2);
    EXPECT_LT(growth, 12);
}

TEST_P(DrawnFiles, ATextLooksTheSameInEachEncoding) {
    const Picture wanted = picture("a.txt",
                                   "Gr\xc3\xbc\xc3\x9f"
                                   "e aus K\xc3\xb6ln\n");
    std::string little = "\xff\xfe", big = "\xfe\xff";
    for (const char16_t unit : std::u16string(u"Gr\u00fc\u00dfe aus K\u00f6ln\n")) {
        const char low = static_cast<char>(unit & 255), high = static_cast<char>(unit >> 8);
        little += {low, high};
        big += {high, low};
    }
    EXPECT_TRUE(are_equal(wanted, picture("little.txt", little)));
    EXPECT_TRUE(are_equal(wanted, picture("big.txt", big)));
    EXPECT_TRUE(are_equal(wanted, picture("m.txt",
                                          "\xef\xbb\xbfGr\xc3\xbc\xc3\x9f"
                                          "e aus K\xc3\xb6ln\n")));
    EXPECT_TRUE(are_equal(wanted, picture("latin.txt",
                                          "Gr\xfc\xdf"
                                          "e aus K\xf6ln\n")));
    EXPECT_FALSE(are_equal(wanted, picture("other.txt", "Grusse aus Koln\n")));
}

TEST_P(DrawnFiles, TabsAndAllKindsOfLineEndsAreFollowed) {
    const Picture wanted = picture("a.txt", "one\n\ntwo\n");
    EXPECT_TRUE(are_equal(wanted, picture("b.txt", "one\r\n\r\ntwo\r\n")));
    EXPECT_TRUE(are_equal(wanted, picture("c.txt", "one\r\rtwo\r")));
    const auto first_ink = [](const Picture& picture) {
        for (int x = 3; x < picture.width - 3; x++) {
            for (int y = 3; y < picture.height - 3; y++) {
                if (pixel(picture, x, y).brightness() < 150) return x;
            }
        }
        return 0;
    };
    const int tab = first_ink(picture("d.txt", "\tx\n"));
    EXPECT_NEAR(tab, first_ink(picture("e.txt", "    x\n")), 1);
    EXPECT_GT(tab, first_ink(picture("f.txt", "x\n")) + 10);
}

TEST_P(DrawnFiles, SourceCodeHasColoursAndPlainTextHasNone) {
    const std::string code = "// A comment\nint main() { return \"text\"[0]; }\n";
    EXPECT_GT(coloured_pixels(picture("a.cpp", code)), 30);
    EXPECT_EQ(coloured_pixels(picture("a.txt", code)), 0);
    EXPECT_GT(coloured_pixels(picture("script", "#!/bin/sh\nif true; then echo 'x'; fi\n")), 10);
}

TEST_P(DrawnFiles, MarkdownAndTablesAreTexts) {
    for (const char* name : {"a.md", "a.csv", "a.json", "a.xml", "README"}) {
        EXPECT_GT(dark_pixels(picture(name, "some, words, here\n1, 2, 3\n")), 15) << name;
    }
}

TEST_P(DrawnFiles, BytesThatAreNoTextHaveNone) {
    EXPECT_FALSE(picture("a.txt", std::string("\0\1\2\3binary\0\0", 12)));
    EXPECT_FALSE(picture("empty.txt", ""));
}

TEST_P(DrawnFiles, ATextOfOneEndlessLineFillsTheSheet) {
    const Picture words = picture("a.txt", std::string(3'000'000, 'x'));
    ASSERT_TRUE(words);
    EXPECT_EQ(words.height, 256);
    EXPECT_GT(dark_pixels(words), 1000);
    // One bracket within the other is the worst for rules of a language.
    EXPECT_TRUE(picture("a.cpp", std::string(3'000'000, '(')));
    EXPECT_TRUE(picture("b.html", std::string(3'000'000, '<')));
    EXPECT_TRUE(test::no_child_is_left());
}

TEST_P(DrawnFiles, AnArchivesSizesAreWrittenAsTheWordsSay) {
    const std::string bytes = archive_bytes("zip", "", {{"a", std::string(1500, 'a')}});
    const auto drawn_with = [&](const char* one_and_a_half) {
        Settings with_words = settings();
        with_words.size_words =
            "%s bytes\n%s byte\n%s bytes\n%s bytes\n%s bytes\n%s bytes\n%s KB\n%s MB\n%s GB\n%s "
            "TB\n";
        with_words.size_words += one_and_a_half;
        return ThumbnailMaker(with_words).make(files.file("a.zip", bytes), {256, 256}, {});
    };
    const Picture english = drawn_with("1.5");
    ASSERT_TRUE(english);
    EXPECT_TRUE(are_equal(english, drawn_with("1.5")));
    EXPECT_FALSE(are_equal(english, drawn_with("1,5")));
}

TEST_P(DrawnFiles, AnArchiveIsAListWhateverItsFormat) {
    const std::vector<Member> members = {{"folder/one.txt", "1"}, {"two.txt", "22"}};
    const Picture wanted = picture("a.zip", archive_bytes("zip", "", members));
    ASSERT_TRUE(wanted);
    EXPECT_GT(dark_pixels(wanted), 15);
    EXPECT_GT(coloured_pixels(wanted), 30) << "the sign of the folder";
    EXPECT_TRUE(are_equal(wanted, picture("a.tar", archive_bytes("gnutar", "", members))));
    EXPECT_TRUE(are_equal(wanted, picture("a.tar.gz", archive_bytes("gnutar", "gzip", members))));
    EXPECT_TRUE(are_equal(wanted, picture("a.tar.xz", archive_bytes("gnutar", "xz", members))));
    EXPECT_TRUE(are_equal(wanted, picture("a.7z", archive_bytes("7zip", "", members))));
    const std::vector<Member> more = {{"folder/one.txt", "1"}, {"two.txt", "22"}, {"3.txt", ""}};
    const Picture longer = picture("b.zip", archive_bytes("zip", "", more));
    EXPECT_GT(longer.height, wanted.height);
}

TEST_P(DrawnFiles, AnArchiveOfManyEntriesShowsTheFirst) {
    std::vector<Member> members;
    for (int i = 0; i < 100'000; i++) members.push_back({"f" + std::to_string(i), ""});
    const Picture list = picture("a.tar.gz", archive_bytes("gnutar", "gzip", members));
    ASSERT_TRUE(list);
    EXPECT_EQ(list.height, 256);
    EXPECT_TRUE(test::no_child_is_left());
}

// A thousand times the same sixteen megabytes of nothing, in a few megabytes.
TEST_P(DrawnFiles, AnArchiveThatUnpacksForEverIsGivenUp) {
    const std::string tar = archive_bytes("gnutar", "", {{"first.txt", "1"}, {"huge", ""}});
    std::string head = tar.substr(0, 1536);
    head.replace(1024 + 124, 12, std::string("\x80\0\0\0\0\0\0\4\0\0\0\0", 12));
    unsigned sum = 0;
    for (size_t i = 0; i < 512; i++) {
        const bool is_sum = i >= 148 && i < 156;
        sum += is_sum ? ' ' : static_cast<unsigned char>(head[1024 + i]);
    }
    char digits[8];
    snprintf(digits, sizeof digits, "%06o", sum);
    head.replace(1024 + 148, 7, std::string(digits, 7));
    std::ofstream(files.path("nothing")).close();
    fs::resize_file(files.path("nothing"), 16 * 1024 * 1024);
    std::ofstream(files.path("head"), std::ios::binary) << head;
    ASSERT_EQ(system(("cd '" + files.path("") + "' && gzip -1 nothing head").c_str()), 0);
    std::string bomb = content_of(files.path("head.gz"));
    const std::string member = content_of(files.path("nothing.gz"));
    for (int i = 0; i < 1000; i++) bomb += member;
    const Picture list = picture("bomb.tar.gz", bomb);
    ASSERT_TRUE(list);
    EXPECT_LT(list.height, 256) << "two entries, and the sign that there are more";
    EXPECT_TRUE(test::no_child_is_left());
}

TEST_P(DrawnFiles, AnArchiveThatIsCutOrDamagedDoesNoHarm) {
    const std::string whole = archive_bytes("zip", "", {{"one.txt", "1"}, {"two.txt", "22"}});
    for (const size_t size : {size_t{1}, size_t{4}, size_t{30}, whole.size() / 2}) {
        picture(std::to_string(size) + ".zip", whole.substr(0, size));
    }
    std::string wrong = whole;
    for (size_t i = 0; i < wrong.size(); i += 7) wrong[i] = static_cast<char>(~wrong[i]);
    picture("wrong.zip", wrong);
    EXPECT_TRUE(test::no_child_is_left());
    EXPECT_TRUE(picture("well.zip", whole));
}

TEST_P(DrawnFiles, NamesThatAnArchiveHidesBehindPathsStayInTheList) {
    EXPECT_TRUE(picture("a.tar", archive_bytes("gnutar", "",
                                               {{"../../../../etc/passwd", "x"},
                                                {"/absolute/\x01\x1b[31m\xff name", "x"},
                                                {std::string(3000, '/') + "deep", "x"}})));
    EXPECT_TRUE(test::no_child_is_left());
}

TEST_P(DrawnFiles, AFontIsASpecimen) {
    ASSERT_TRUE(fs::exists(font));
    const Picture specimen = maker.make(font, {256, 256});
    ASSERT_TRUE(specimen);
    EXPECT_EQ(specimen.width, 256);
    EXPECT_GT(dark_pixels(specimen), 2000);
}

TEST_P(DrawnFiles, AFontThatLiesDoesNoHarm) {
    const std::string whole = content_of(font);
    for (const size_t step : {1009u, 101u, 13u}) {
        std::string wrong = whole;
        for (size_t i = 12; i < wrong.size(); i += step) wrong[i] = static_cast<char>(wrong[i] + 1);
        picture(std::to_string(step) + ".ttf", wrong);
    }
    for (const size_t size : {size_t{100}, size_t{5000}, whole.size() / 2}) {
        picture("cut" + std::to_string(size) + ".ttf", whole.substr(0, size));
    }
    EXPECT_TRUE(test::no_child_is_left());
    EXPECT_TRUE(picture("well.ttf", whole));
}

TEST_P(DrawnFiles, ASoundIsShownByItsCover) {
    const std::string cover = test::image_bytes(400, 400, "png");
    const std::string frame = tag_frame("APIC", std::string("\0image/png\0\3\0", 13) + cover);
    const Picture shown = picture("a.mp3", mp3_bytes(frame));
    ASSERT_TRUE(shown);
    EXPECT_EQ(shown.width, 256);
    EXPECT_EQ(shown.height, 256);
    EXPECT_GT(pixel(shown, 64, 128).red, 200);
    EXPECT_GT(pixel(shown, 192, 128).blue, 200);
}

TEST_P(DrawnFiles, ASoundWithoutACoverIsShownByItsTags) {
    const auto text = [](const std::string& name, const std::string& content) {
        return tag_frame(name, std::string(1, '\0') + content);
    };
    const Picture named = picture("a.mp3", mp3_bytes(text("TIT2", "A song")));
    ASSERT_TRUE(named);
    EXPECT_LT(named.height, 256);
    EXPECT_GT(dark_pixels(named), 20);
    const std::string frames = text("TIT2", "A song") + text("TPE1", "Somebody");
    EXPECT_FALSE(are_equal(named, picture("b.mp3", mp3_bytes(frames))));
    // A cover that is a bomb counts as none.
    static const std::string bomb = test::white_png_bytes(50000, 50000);
    const std::string frame = tag_frame("APIC", std::string("\0image/png\0\3\0", 13) + bomb);
    EXPECT_TRUE(are_equal(named, picture("c.mp3", mp3_bytes(text("TIT2", "A song") + frame))));
    EXPECT_FALSE(picture("d.mp3", "no sound at all\n"));
}

TEST_P(DrawnFiles, FilesThatChangeWhileTheyAreReadDoNoHarm) {
    const std::string fonts = content_of(font);
    const std::string archive = archive_bytes("zip", "", {{"one.txt", "1"}, {"two.txt", "22"}});
    const std::pair<std::string, const std::string> subjects[] = {
        {"a.ttf", fonts}, {"a.zip", archive}, {"a.txt", std::string(60'000, 'x')}};
    for (const auto& [name, content] : subjects) {
        const std::string path = files.file(name, content);
        std::atomic<bool> is_over = false;
        std::thread writer([&, &content = content] {
            while (!is_over) {
                if (truncate(path.c_str(), 10) != 0) break;
                std::ofstream(path, std::ios::binary) << content;
            }
        });
        for (int i = 0; i < 5; i++) maker.make(path, {256, 256});
        is_over = true;
        writer.join();
        std::ofstream(path, std::ios::binary) << content;
        EXPECT_TRUE(maker.make(path, {256, 256})) << name;
    }
    EXPECT_TRUE(test::no_child_is_left());
}

TEST_P(DrawnFiles, NothingOfTheseIsPutIntoTheCache) {
    const fs::path cache = fs::path(getenv("XDG_CACHE_HOME")) / "thumbnails";
    fs::remove_all(cache);
    EXPECT_TRUE(picture("a.txt", "words\n"));
    EXPECT_TRUE(picture("README", "words\n"));
    wait_for_background();
    EXPECT_FALSE(fs::exists(cache / "large"));
}

INSTANTIATE_TEST_SUITE_P(Cages, DrawnFiles, testing::Bool(),
                         [](const auto& info) { return info.param ? "bubblewrap" : "plain"; });

}  // namespace
