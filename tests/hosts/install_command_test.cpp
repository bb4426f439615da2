// delvio install and uninstall, with the user's defaults read back by GNUstep's own command.
#include <gtest/gtest.h>

#include <stdio.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>

#include "hosts/command_runner.h"
#include "support/temp_folder.h"

using namespace test;

namespace fs = std::filesystem;

namespace {

// The output of GNUstep's `defaults` command.
std::string defaults(const std::string& words) {
    std::string output;
    FILE* pipe = popen(("defaults " + words + " 2>&1").c_str(), "r");
    for (int byte; (byte = getc(pipe)) != EOF;) output += static_cast<char>(byte);
    pclose(pipe);
    return output;
}

const std::string key = " GSAppKitUserBundles";

class Install : public testing::Test {
  protected:
    Install() {
        defaults("delete NSGlobalDomain" + key);
        defaults("delete GWorkspace" + key);
        defaults("write NSGlobalDomain DelvioTestNeighbour kept");
        defaults("write GWorkspace DelvioTestNeighbour kept");
        before_ = everything();
    }
    static std::string everything() {
        return defaults("read NSGlobalDomain") + defaults("read GWorkspace");
    }
    static Outcome run(const std::string& verb) { return run_delvio({verb, "gworkspace"}); }
    static std::string bundle() { return DELVIO_GWORKSPACE_BUNDLE; }

    std::string before_;
};

}  // namespace

TEST_F(Install, ItIsAddedAndTakenOutAndNothingElseChanges) {
    const Outcome installed = run("install");
    EXPECT_EQ(installed.status, 0) << installed.err;
    EXPECT_NE(installed.out.find(bundle()), std::string::npos) << installed.out;
    EXPECT_NE(installed.out.find("NSGlobalDomain"), std::string::npos);
    EXPECT_NE(defaults("read NSGlobalDomain" + key).find(bundle()), std::string::npos);
    const Outcome removed = run("uninstall");
    EXPECT_EQ(removed.status, 0) << removed.err;
    EXPECT_NE(removed.out.find(bundle()), std::string::npos) << removed.out;
    EXPECT_EQ(everything(), before_);
}

TEST_F(Install, OtherBundlesKeepTheirPlaces) {
    defaults("write NSGlobalDomain" + key + " '(\"/other/One.bundle\", \"/other/Two.bundle\")'");
    const std::string others = everything();
    EXPECT_EQ(run("install").status, 0);
    const std::string list = defaults("read NSGlobalDomain" + key);
    const size_t one = list.find("/other/One.bundle"), two = list.find("/other/Two.bundle");
    EXPECT_LT(one, two);
    EXPECT_LT(two, list.find(bundle()));
    EXPECT_EQ(run("uninstall").status, 0);
    EXPECT_EQ(everything(), others);
}

TEST_F(Install, PathsArePrintedWithoutControlCharacters) {
    const std::string odd =
        "/od\x7f"
        "d\xc2\x9b/line\nbreak/DelvioGWorkspace.bundle";
    defaults("write NSGlobalDomain" + key + " '(\"" + odd + "\")'");
    const Outcome removed = run("uninstall");
    EXPECT_EQ(removed.status, 0) << removed.err;
    EXPECT_NE(removed.out.find("/od\\x7f"
                               "d\\u009b/line\\nbreak/"),
              std::string::npos)
        << removed.out;
    for (const char* raw : {"\x7f", "\xc2\x9b"}) {
        EXPECT_EQ(removed.out.find(raw), std::string::npos) << removed.out;
    }
}

TEST_F(Install, AgainSaysThatItIsThereAndAddsNothing) {
    run("install");
    const std::string once = everything();
    const Outcome again = run("install");
    EXPECT_EQ(again.status, 0);
    EXPECT_NE(again.out.find("already"), std::string::npos) << again.out;
    EXPECT_EQ(everything(), once);
    run("uninstall");
    EXPECT_EQ(run("install").status, 0);
    EXPECT_EQ(everything(), once);
    run("uninstall");
}

TEST_F(Install, ABundleOfAnotherPlaceIsReplacedWhereItStands) {
    defaults("write NSGlobalDomain" + key +
             " '(\"/old/DelvioGWorkspace.bundle\", \"/other/Two.bundle\")'");
    EXPECT_EQ(run("install").status, 0);
    const std::string list = defaults("read NSGlobalDomain" + key);
    EXPECT_EQ(list.find("/old/"), std::string::npos);
    EXPECT_LT(list.find(bundle()), list.find("/other/Two.bundle"));
}

TEST_F(Install, AListOfGWorkspacesOwnIsTheOneThatCounts) {
    defaults("write GWorkspace" + key + " '(\"/other/One.bundle\")'");
    const std::string own = everything();
    EXPECT_EQ(run("install").status, 0);
    EXPECT_NE(defaults("read GWorkspace" + key).find(bundle()), std::string::npos);
    EXPECT_EQ(defaults("read NSGlobalDomain" + key).find(bundle()), std::string::npos);
    EXPECT_EQ(run("uninstall").status, 0);
    EXPECT_EQ(everything(), own);
}

TEST_F(Install, TakingOutWhatIsNotThereChangesNothing) {
    const Outcome outcome = run("uninstall");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_NE(outcome.out.find("nothing to do"), std::string::npos) << outcome.out;
    EXPECT_EQ(everything(), before_);
}

TEST_F(Install, WhatIsNoListIsLeftAlone) {
    defaults("write NSGlobalDomain" + key + " oddity");
    const std::string odd = everything();
    EXPECT_EQ(run("install").status, 1);
    EXPECT_EQ(everything(), odd);
}

// The file of a domain, for contents that GNUstep's own command cannot write.
class InstallFiles : public Install {
  protected:
    static std::string file_of(const std::string& domain) {
        const std::string home = getenv("HOME");
        return fs::path(home).parent_path().string() + "/defaults/" + domain + ".plist";
    }
};

TEST_F(InstallFiles, AnUnreadableDomainIsNamedAndNotReplaced) {
    for (const char* domain : {"NSGlobalDomain", "GWorkspace"}) {
        const std::string file = file_of(domain), whole = read_file(file);
        ASSERT_NE(whole, "") << file;
        std::ofstream(file) << "<<< no property list";
        for (const char* verb : {"install", "uninstall"}) {
            const Outcome outcome = run(verb);
            EXPECT_EQ(outcome.status, 1) << outcome.out;
            EXPECT_NE(outcome.err.find(file), std::string::npos) << outcome.err;
            EXPECT_EQ(read_file(file), "<<< no property list");
        }
        std::ofstream(file) << whole;
    }
}

TEST_F(InstallFiles, LinksAndPermissionsStay) {
    TempFolder elsewhere;
    const std::string link = file_of("NSGlobalDomain"), target = elsewhere.path("mine.plist");
    fs::copy_file(link, target);
    fs::permissions(target, fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    fs::remove(link);
    fs::create_symlink(target, link);
    const fs::perms before = fs::status(target).permissions();
    EXPECT_EQ(run("install").status, 0);
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_NE(read_file(target).find(bundle()), std::string::npos);
    EXPECT_EQ(fs::status(target).permissions(), before);
    EXPECT_EQ(run("uninstall").status, 0);
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(fs::status(target).permissions(), before);
    fs::remove(link);
    fs::copy_file(target, link);
}
