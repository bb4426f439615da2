// The cache as file managers read and write it. The files are in the isolated run's XDG_CACHE_HOME.
#include "quicklook/cache.h"

#include <gio/gio.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "quicklook/png_file.h"
#include "sample_files.h"
#include "support/temp_folder.h"

namespace {

using namespace thumbnails;
namespace fs = std::filesystem;

Picture grey(int width, int height, uint8_t shade = 128) {
    Picture picture{width, height, {}};
    for (int i = 0; i < width * height; i++) {
        picture.pixels.insert(picture.pixels.end(), {shade, shade, shade, 255});
    }
    return picture;
}

// The largest size of this process since the last reset, in kilobytes.
size_t most_memory() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.compare(0, 6, "VmHWM:") == 0) return std::stoul(line.substr(6));
    }
    return 0;
}

void forget_most_memory() { std::ofstream("/proc/self/clear_refs") << "5"; }

class Cache : public testing::Test {
  protected:
    void SetUp() override {
        root = std::string(getenv("XDG_CACHE_HOME")) + "/thumbnails";
        fs::remove_all(root);
        subject = {"/files/a b.jpg", 1700000000, 12345};
    }
    void TearDown() override { fs::remove_all(root); }

    // The name that the rules for the cache prescribe.
    std::string entry(const std::string& folder) const {
        gchar* sum = g_compute_checksum_for_string(G_CHECKSUM_MD5, "file:///files/a%20b.jpg", -1);
        const std::string path = root + "/" + folder + "/" + sum + ".png";
        g_free(sum);
        return path;
    }
    void put(const std::string& folder, const std::string& bytes) const {
        fs::create_directories(root + "/" + folder);
        std::ofstream(entry(folder)) << bytes;
    }
    PngTexts texts() const {
        return {{"Thumb::URI", "file:///files/a%20b.jpg"}, {"Thumb::MTime", "1700000000"}};
    }

    std::string root;
    Subject subject;
};

TEST_F(Cache, AnotherProgramsEntryIsUsed) {
    put("large", encode_png(grey(256, 192), texts()));
    const Picture picture = cached_picture(subject, {256, 256});
    EXPECT_EQ(picture.width, 256);
    EXPECT_EQ(picture.height, 192);
    EXPECT_EQ(picture.pixels, grey(256, 192).pixels);
}

TEST_F(Cache, ALargerEntryIsMadeToFit) {
    put("large", encode_png(grey(256, 192), texts()));
    const Picture picture = cached_picture(subject, {100, 100});
    EXPECT_EQ(picture.width, 100);
    EXPECT_EQ(picture.height, 75);
}

TEST_F(Cache, TheNormalSizeServesASmallBox) {
    put("normal", encode_png(grey(128, 96, 50), texts()));
    put("large", encode_png(grey(256, 192, 200), texts()));
    EXPECT_EQ(cached_picture(subject, {128, 128}).pixels[0], 50);
    EXPECT_EQ(cached_picture(subject, {256, 256}).pixels[0], 200);
}

TEST_F(Cache, TheLargerSizesServeALargeBox) {
    put("x-large", encode_png(grey(512, 384), texts()));
    EXPECT_EQ(cached_picture(subject, {512, 512}).width, 512);
    EXPECT_EQ(cached_picture(subject, {256, 256}).width, 256);
    put("xx-large", encode_png(grey(1024, 768), texts()));
    EXPECT_EQ(cached_picture(subject, {1000, 1000}).width, 1000);
}

TEST_F(Cache, ASmallEntryServesALargeBoxOnlyWhenItIsTheWholePicture) {
    put("normal", encode_png(grey(128, 96), texts()));
    EXPECT_FALSE(cached_picture(subject, {256, 256}));
    put("normal", encode_png(grey(100, 96), texts()));
    EXPECT_EQ(cached_picture(subject, {256, 256}).width, 100);
    PngTexts reduced = texts();
    reduced["Thumb::Image::Width"] = "1000";
    reduced["Thumb::Image::Height"] = "960";
    put("normal", encode_png(grey(100, 96), reduced));
    EXPECT_FALSE(cached_picture(subject, {256, 256}));
}

TEST_F(Cache, AnEntryOfAnotherTimeSizeOrFileIsNotUsed) {
    const std::pair<const char*, const char*> wrong[] = {{"Thumb::MTime", "1700000001"},
                                                         {"Thumb::Size", "12344"},
                                                         {"Thumb::URI", "file:///files/b.jpg"}};
    for (const auto& [key, value] : wrong) {
        PngTexts other = texts();
        other[key] = value;
        put("large", encode_png(grey(256, 192), other));
        EXPECT_FALSE(cached_picture(subject, {256, 256})) << key;
    }
    put("large", encode_png(grey(256, 192), {}));
    EXPECT_FALSE(cached_picture(subject, {256, 256}));
}

TEST_F(Cache, DamagedEntriesAreNotUsed) {
    const std::string whole = encode_png(grey(256, 192), texts());
    for (size_t size :
         {size_t{0}, size_t{5}, size_t{20}, size_t{33}, size_t{60}, whole.size() / 2}) {
        put("large", whole.substr(0, size));
        EXPECT_FALSE(cached_picture(subject, {256, 256})) << size;
    }
}

TEST_F(Cache, AnEntryLargerThanItsFolderAllowsIsNotEvenDecoded) {
    std::string bomb = test::white_png_bytes(30000, 30000);
    const std::string text = encode_png(grey(1, 1), texts());
    const size_t head_end = 33, data = text.find("IDAT") - 4;
    bomb.insert(head_end, text.substr(head_end, data - head_end));
    ASSERT_TRUE(png_head(bomb)->texts.count("Thumb::URI"));
    put("large", bomb);
    EXPECT_FALSE(cached_picture(subject, {256, 256}));
}

TEST_F(Cache, TextsThatSwellAreNotRead) {
    // Half a gigabyte in half a megabyte.
    put("large", test::with_swelling_texts(encode_png(grey(256, 192), texts()), 70, 7'000'000));
    forget_most_memory();
    const size_t before = most_memory();
    EXPECT_EQ(cached_picture(subject, {256, 256}).width, 256);
    EXPECT_LT(most_memory(), before + 16 * 1024);
}

TEST_F(Cache, APipeInTheCacheIsNotOpened) {
    fs::create_directories(root + "/large");
    ASSERT_EQ(mkfifo(entry("large").c_str(), 0600), 0);
    EXPECT_FALSE(cached_picture(subject, {256, 256}));
}

TEST_F(Cache, WhatIsStoredIsFoundAndOthersCanReadIt) {
    store_picture(subject, grey(256, 192), {256, 256}, {"image/jpeg", 800, 600});
    EXPECT_EQ(cached_picture(subject, {256, 256}).pixels, grey(256, 192).pixels);

    const std::optional<PngHead> head = png_head(test::read_file(entry("large")));
    ASSERT_TRUE(head);
    EXPECT_EQ(head->texts.at("Thumb::URI"), "file:///files/a%20b.jpg");
    EXPECT_EQ(head->texts.at("Thumb::MTime"), "1700000000");
    EXPECT_EQ(head->texts.at("Thumb::Size"), "12345");
    EXPECT_EQ(head->texts.at("Thumb::Mimetype"), "image/jpeg");
    EXPECT_EQ(head->texts.at("Thumb::Image::Width"), "800");
    EXPECT_EQ(head->texts.at("Thumb::Image::Height"), "600");
}

TEST_F(Cache, OnlyTheUserCanReadWhatIsStoredAndNothingElseIsLeft) {
    store_picture(subject, grey(256, 192), {256, 256}, {});
    struct stat status;
    ASSERT_EQ(stat(entry("large").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
    ASSERT_EQ(stat((root + "/large").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0700u);
    const auto entries = fs::directory_iterator(root + "/large");
    EXPECT_EQ(std::distance(begin(entries), end(entries)), 1);
}

TEST_F(Cache, TheBoxNamesTheFolder) {
    const std::pair<int, const char*> boxes[] = {
        {1, "normal"}, {128, "normal"}, {129, "large"}, {257, "x-large"}, {513, "xx-large"}};
    for (const auto& [side, name] : boxes) {
        const Box box = cache_box({side, side / 2 + 1});
        fs::remove_all(root);
        store_picture(subject, grey(10, 10), box, {});
        EXPECT_TRUE(fs::exists(entry(name))) << side;
    }
    fs::remove_all(root);
    store_picture(subject, grey(10, 10), cache_box({1025, 1025}), {});
    EXPECT_FALSE(fs::exists(root));
}

TEST_F(Cache, ItsOwnFilesAreNotPutIn) {
    subject.path = root + "/large/x.png";
    store_picture(subject, grey(10, 10), {256, 256}, {});
    store_failure(subject);
    EXPECT_FALSE(fs::exists(root));
}

TEST_F(Cache, AFailureIsRememberedForThatStateOfTheFile) {
    EXPECT_FALSE(has_failed(subject));
    store_failure(subject);
    EXPECT_TRUE(has_failed(subject));
    subject.modified++;
    EXPECT_FALSE(has_failed(subject));
}

TEST_F(Cache, AFileThatHasJustBeenWrittenDoesNotFailForGood) {
    subject.modified = time(nullptr);
    store_failure(subject);
    EXPECT_FALSE(has_failed(subject));
}

TEST_F(Cache, ANewThumbnailerGivesFailuresAnotherChance) {
    store_failure(subject);
    const std::string folder = std::string(getenv("XDG_DATA_HOME")) + "/thumbnailers";
    fs::create_directories(folder);
    fs::last_write_time(folder, fs::file_time_type::clock::now() + std::chrono::seconds(100));
    EXPECT_FALSE(has_failed(subject));
    fs::remove_all(folder);
    EXPECT_TRUE(has_failed(subject));
}

TEST_F(Cache, AFolderThatCannotBeWrittenDoesNoHarm) {
    fs::create_directories(fs::path(root).parent_path());
    std::ofstream(root) << "a file where the folder should be";
    store_picture(subject, grey(10, 10), {256, 256}, {});
    EXPECT_FALSE(cached_picture(subject, {256, 256}));
}

}  // namespace
