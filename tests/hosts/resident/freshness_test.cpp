// When a host takes its program for replaced.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "service/freshness.h"
#include "support/temp_folder.h"
#include "support/unprivileged.h"

namespace fs = std::filesystem;

namespace {

// Beside the program a library is loaded, from a folder that a test can change.
struct FreshnessTest : testing::Test {
    FreshnessTest() {
        fs::copy_file(PROBE_LIBRARY, path);
        library = dlopen(path.c_str(), RTLD_NOW);
    }
    ~FreshnessTest() override {
        if (library) dlclose(library);
    }
    void SetUp() override { ASSERT_TRUE(library) << dlerror(); }

    test::TempFolder folder;
    const std::string within = folder.folder("program");
    const std::string path = within + "/probe.so";
    void* library = nullptr;
};

TEST_F(FreshnessTest, NothingHasChangedAtFirst) { EXPECT_EQ(Freshness().change(), ""); }

TEST_F(FreshnessTest, AFileThatIsRemovedIsGone) {
    const Freshness freshness;
    fs::remove(path);
    EXPECT_EQ(freshness.change(), path + " is gone");
}

TEST_F(FreshnessTest, AFileWhoseFolderIsNoFolderAnyMoreIsGone) {
    const Freshness freshness;
    fs::rename(within, folder.path("other"));
    folder.file("program");
    EXPECT_EQ(freshness.change(), path + " is gone");
}

TEST_F(FreshnessTest, AnotherFileUnderTheNameHasReplacedIt) {
    const Freshness freshness;
    fs::rename(path, path + ".old");
    fs::copy_file(PROBE_LIBRARY, path);
    EXPECT_EQ(freshness.change(), path + " was replaced");
}

TEST_F(FreshnessTest, AFileThatCannotBeAskedAboutHasNotChanged) {
    const Freshness freshness;
    fs::permissions(within, fs::perms::none);
    {
        const test::Unprivileged obeying;
        std::error_code error;
        EXPECT_EQ(fs::status(path, error).type(), fs::file_type::none);
        EXPECT_EQ(error, std::errc::permission_denied);
        EXPECT_EQ(freshness.change(), "");
    }
    fs::permissions(within, fs::perms::owner_all);
}

}  // namespace
