// Entries in the isolated run's XDG_DATA_HOME.
#include "quicklook/thumbnailers.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "quicklook/file_kind.h"
#include "quicklook/helper_program.h"

namespace {

using namespace thumbnails;
namespace fs = std::filesystem;
using Words = std::vector<std::string>;

class Thumbnailers : public testing::Test {
  protected:
    void SetUp() override {
        own = std::string(getenv("XDG_DATA_HOME")) + "/thumbnailers";
        fs::create_directories(own);
    }
    void TearDown() override { fs::remove_all(own); }

    void install(const std::string& name, const std::string& exec, const std::string& types,
                 const std::string& try_exec = "") {
        std::ofstream(own + "/" + name) << "[Thumbnailer Entry]\n"
                                        << (try_exec.empty() ? "" : "TryExec=" + try_exec + "\n")
                                        << "Exec=" << exec << "\nMimeType=" << types << "\n";
    }

    std::string own;
    const std::string none = "application/x-thumbnail-test";
};

TEST_F(Thumbnailers, AnEntryServesItsTypes) {
    install("a.thumbnailer", "cat -s %s %u %o", none + ";model/x-test;");
    const Words command = thumbnailer_for("model/x-test");
    ASSERT_EQ(command.size(), 5u);
    EXPECT_EQ(fs::path(command[0]).filename(), "cat");
    EXPECT_TRUE(fs::path(command[0]).is_absolute());
    EXPECT_EQ(Words(command.begin() + 1, command.end()), (Words{"-s", "%s", "%u", "%o"}));
    EXPECT_EQ(thumbnailer_for(none), command);
    EXPECT_EQ(thumbnailer_for("model/x-other"), Words());
}

TEST_F(Thumbnailers, QuotedWordsStayTogether) {
    install("a.thumbnailer", "sh -c 'cat \"$0\" > \"$1\"' %i %o", none);
    const Words command = thumbnailer_for(none);
    ASSERT_EQ(command.size(), 5u);
    EXPECT_EQ(command[2], "cat \"$0\" > \"$1\"");
}

TEST_F(Thumbnailers, OneWhoseProgramIsMissingDoesNotCount) {
    install("a.thumbnailer", "no-such-program %i %o", none);
    EXPECT_EQ(thumbnailer_for(none), Words());
    install("b.thumbnailer", "cat %i %o", none, "no-such-program");
    EXPECT_EQ(thumbnailer_for(none), Words());
    install("c.thumbnailer", "cat %i %o", none, "cat");
    EXPECT_EQ(thumbnailer_for(none).size(), 3u);
}

TEST_F(Thumbnailers, DamagedEntriesDoNoHarm) {
    std::ofstream(own + "/a.thumbnailer") << "nonsense\n";
    std::ofstream(own + "/b.thumbnailer") << "[Thumbnailer Entry]\nMimeType=" << none << "\n";
    install("c.thumbnailer", "cat 'unfinished", none);
    std::ofstream(own + "/d.thumbnailer") << "[Thumbnailer Entry]\nExec=cat\n";
    mkfifo((own + "/e.thumbnailer").c_str(), 0600);
    EXPECT_EQ(thumbnailer_for(none), Words());
}

TEST_F(Thumbnailers, OneThatIsTakenAwayIsForgotten) {
    install("a.thumbnailer", "cat %i %o", none);
    EXPECT_NE(thumbnailer_for(none), Words());
    fs::remove(own + "/a.thumbnailer");
    EXPECT_EQ(thumbnailer_for(none), Words());
}

TEST_F(Thumbnailers, TheWayOfAFileFollowsItsType) {
    const std::pair<const char*, Route> routes[] = {
        {"text/plain", Route::text},
        {"text/x-c++src", Route::text},
        {"application/x-shellscript", Route::text},
        {"application/json", Route::text},
        {"image/jpeg", Route::image},
        {"image/svg+xml", Route::image},
        {"application/pdf", Route::pdf},
        {"application/zip", Route::archive},
        {"application/x-compressed-tar", Route::archive},
        {"font/ttf", Route::font},
        {"audio/mpeg", Route::audio},
        {"audio/x-mpegurl", Route::text},
        {"application/pdf-test", Route::none},
        {"application/x-thumbnail-test", Route::none},
        {"", Route::unknown},
    };
    for (const auto& [type, route] : routes) EXPECT_EQ(route_for(type), route) << type;
    install("a.thumbnailer", "cat %i %o", none);
    EXPECT_EQ(route_for(none), Route::program);
}

TEST_F(Thumbnailers, EachDecoderIsBuiltAndGetsTheFilesOfItsType) {
    for (const OwnDecoder& decoder : decoders) {
        const std::string type = decoder.type;
        EXPECT_EQ(route_for(type.back() == '/' ? type + "x-test" : type), decoder.route) << type;
        ASSERT_NE(decoder_of(decoder.route), nullptr) << type;
        EXPECT_STREQ(decoder_of(decoder.route)->name, decoder.name) << type;
        const std::string program = helper_folder() + "/delvio-decode-" + decoder.name;
        EXPECT_EQ(access(program.c_str(), X_OK), 0) << program;
    }
}

TEST_F(Thumbnailers, NamesTellTypes) {
    EXPECT_EQ(type_by_name("/a/b.jpg"), "image/jpeg");
    EXPECT_EQ(type_by_name("/a.jpg/b.CPP"), "text/x-c++src");
    EXPECT_EQ(type_by_name("/a.jpg/noname"), "");
}

}  // namespace
