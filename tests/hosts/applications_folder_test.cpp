#include "finderkit/applications_folder.h"

#include <Carbon/Carbon.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "support/temp_folder.h"
#include "tree/dv_scan.h"
#include "tree/dv_tree.h"

namespace fs = std::filesystem;

namespace {

using Names = std::vector<std::string>;

// Foundation and GLib read where applications are before main; so the program starts itself again
// with places of its own.
__attribute__((constructor)) void use_own_places(int, char** arguments, char**) {
    if (getenv("OWN_APPLICATIONS") || !getenv("GNUSTEP_CONFIG_FILE")) return;
    const std::string place = std::string(getenv("TMPDIR")) + "/places";
    const std::string configuration = place + "/GNUstep.conf";
    fs::create_directories(place + "/bundles");
    fs::create_directories(place + "/data/applications/inner");
    std::ifstream stock(getenv("GNUSTEP_CONFIG_FILE"));
    std::ofstream own(configuration);
    for (std::string line; std::getline(stock, line);) {
        const size_t key = line.find("_APPS=");
        const bool local = line.starts_with("GNUSTEP_LOCAL_APPS=");
        if (key != line.npos)
            line.replace(key + 6, line.npos, place + (local ? "/bundles" : "/no"));
        own << line << "\n";
    }
    own.close();
    setenv("GNUSTEP_CONFIG_FILE", configuration.c_str(), 1);
    setenv("XDG_DATA_DIRS", (place + "/data").c_str(), 1);
    setenv("XDG_CURRENT_DESKTOP", "GNOME", 1);
    setenv("OWN_APPLICATIONS", place.c_str(), 1);
    execv("/proc/self/exe", arguments);
}

class ApplicationsFolderTest : public testing::Test {
  protected:
    void SetUp() override { clear(); }
    void TearDown() override { clear(); }

    static void clear() {
        fs::remove_all(fs::path(getenv("XDG_DATA_HOME")) / "delvio");
        fs::remove_all(fs::path(getenv("XDG_DATA_HOME")) / "applications");
        for (const char* folder : {"/data/applications", "/bundles"}) {
            for (const auto& entry : fs::directory_iterator(place() + folder)) {
                fs::remove_all(entry);
            }
        }
    }
    static std::string place() { return getenv("OWN_APPLICATIONS"); }
    static std::string record() {
        return std::string(getenv("XDG_DATA_HOME")) + "/delvio/Applications.state";
    }
    static void write(const std::string& path, const std::string& content) {
        fs::create_directories(fs::path(path).parent_path());
        std::ofstream(path, std::ios::binary) << content;
    }
    // An entry of the system's that runs a program which is there.
    static std::string install(const std::string& file, const std::string& lines) {
        const std::string path = place() + "/data/applications/" + file;
        write(path, "[Desktop Entry]\nType=Application\n" + lines);
        return path;
    }
    static std::string bundle(const std::string& name, const std::string& information) {
        const std::string path = place() + "/bundles/" + name + ".app";
        write(path + "/" + name, "#!/bin/sh\n");
        chmod((path + "/" + name).c_str(), 0755);
        write(path + "/Resources/Info-gnustep.plist",
              "{ NSExecutable = " + name + "; " + information + " }\n");
        return path;
    }
    // What the folder's level looks like in the menu: "name (kind)".
    static Names level() {
        EXPECT_TRUE(UpdateApplicationsFolder());
        Names names;
        dv_tree_t* root = dv_build_tree(ApplicationsFolder().c_str(), 0, 1, 0, DV_ORIGIN_APP_LIST);
        for (const dv_tree_t* child = root ? root->children : nullptr; child; child = child->next) {
            const bool application = child->kind == DV_KIND_APPLICATION;
            names.push_back(child->display_name + std::string(application ? "" : " (no program)"));
        }
        if (root) dv_free_tree(root);
        std::sort(names.begin(), names.end());
        return names;
    }
    static std::string inode(const std::string& path) {
        struct stat status = {};
        EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
        return std::to_string(status.st_ino) + " " + std::to_string(status.st_mtim.tv_nsec);
    }
    static std::string preference(const char* domain) {
        const CFStringRef name = CFStringCreateWithCString(nullptr, domain, kCFStringEncodingUTF8);
        const auto value =
            static_cast<CFStringRef>(CFPreferencesCopyAppValue(CFSTR("open_with_path"), name));
        char text[4096] = "none";
        if (value) CFStringGetCString(value, text, sizeof text, kCFStringEncodingUTF8);
        CFRelease(value);
        CFRelease(name);
        return text;
    }
};

}  // namespace

TEST_F(ApplicationsFolderTest, EntriesThatAreShownAndTakeFilesAreApplications) {
    install("paint.desktop", "Name=Paint Box\nExec=sh %F\n");
    install("org.example.Text.desktop", "Name=Text\nExec=sh %u\n");
    install("inner/deep.desktop", "Name=Deep\nExec=sh %f\n");
    install("clock.desktop", "Name=Clock\nExec=sh\n");
    install("helper.desktop", "Name=Helper\nExec=sh %f\nNoDisplay=true\n");
    install("gone.desktop", "Name=Gone\nExec=sh %f\nHidden=true\n");
    install("elsewhere.desktop", "Name=Elsewhere\nExec=sh %f\nOnlyShowIn=XFCE;\n");
    install("here.desktop", "Name=Here\nExec=sh %f\nOnlyShowIn=GNOME;\n");
    install("untried.desktop", "Name=Untried\nExec=sh %f\nTryExec=/no/such/program\n");
    EXPECT_EQ(level(), (Names{"Deep", "Here", "Paint Box", "Text"}));
}

TEST_F(ApplicationsFolderTest, TheUsersEntryStandsForTheSystems) {
    install("paint.desktop", "Name=Paint\nExec=sh %F\n");
    install("text.desktop", "Name=Text\nExec=sh %F\n");
    const std::string own = std::string(getenv("XDG_DATA_HOME")) + "/applications/";
    write(own + "paint.desktop", "[Desktop Entry]\nType=Application\nName=Mine\nExec=sh %F\n");
    write(own + "text.desktop", "[Desktop Entry]\nHidden=true\n");
    EXPECT_EQ(level(), Names{"Mine"});
}

TEST_F(ApplicationsFolderTest, BrokenEntriesAreSkipped) {
    install("good.desktop", "Name=Good\nExec=sh %F\n");
    install("missing.desktop", "Name=Missing\nExec=/no/such/program %F\n");
    install("unclosed.desktop", "Name=Unclosed\nExec='sh %F\n");
    install("noise.desktop", std::string("\0\xff[[", 4));
    install("huge.desktop", "Name=Huge\nExec=sh %F\n#" + std::string(300000, 'x') + "\n");
    ASSERT_EQ(mkfifo((place() + "/data/applications/fifo.desktop").c_str(), 0600), 0);
    fs::create_symlink("nowhere", place() + "/data/applications/dangling.desktop");
    fs::create_directory(place() + "/data/applications/folder.desktop");
    EXPECT_EQ(level(), Names{"Good"});
}

TEST_F(ApplicationsFolderTest, GNUstepsProgramsStandThereUnderTheirOwnNames) {
    bundle("Mail", "ApplicationName = \"Post Office\";");
    bundle("Daemon", "NSUIElement = YES;");
    write(place() + "/bundles/Empty.app/readme", "");
    EXPECT_EQ(level(), Names{"Post Office"});
    const std::string information = "/Mail.app/Resources/Info-gnustep.plist";
    EXPECT_EQ(test::read_file(ApplicationsFolder() + information),
              test::read_file(place() + "/bundles" + information));
}

TEST_F(ApplicationsFolderTest, AProgramWithAnEntryAndABundleIsListedOnce) {
    bundle("Mail", "ApplicationName = Mail;");
    install("mail.desktop", "Name=Mail\nExec=sh %F\n");
    EXPECT_EQ(level(), Names{"Mail"});
    EXPECT_TRUE(fs::exists(ApplicationsFolder() + "/mail.desktop"));
}

TEST_F(ApplicationsFolderTest, NothingIsWrittenWhenNothingHasChanged) {
    install("paint.desktop", "Name=Paint\nExec=sh %F\n");
    bundle("Mail", "ApplicationName = Mail;");
    EXPECT_EQ(level().size(), 2u);
    const Names before = {inode(record()), inode(ApplicationsFolder()),
                          inode(ApplicationsFolder() + "/paint.desktop"),
                          inode(ApplicationsFolder() + "/Mail.app")};
    EXPECT_EQ(level().size(), 2u);
    const Names after = {inode(record()), inode(ApplicationsFolder()),
                         inode(ApplicationsFolder() + "/paint.desktop"),
                         inode(ApplicationsFolder() + "/Mail.app")};
    EXPECT_EQ(after, before);
}

TEST_F(ApplicationsFolderTest, WhatIsInstalledAndRemovedComesAndGoes) {
    const std::string paint = install("paint.desktop", "Name=Paint\nExec=sh %F\n");
    const std::string mail = bundle("Mail", "ApplicationName = Mail;");
    EXPECT_EQ(level(), (Names{"Mail", "Paint"}));
    fs::remove(paint);
    install("text.desktop", "Name=Text\nExec=sh %F\n");
    EXPECT_EQ(level(), (Names{"Mail", "Text"}));
    fs::remove_all(mail);
    EXPECT_EQ(level(), Names{"Text"});
}

TEST_F(ApplicationsFolderTest, AnEntryEditedInPlaceIsSeenWithinAnHour) {
    const std::string paint = install("paint.desktop", "Name=Paint\nExec=sh %F\n");
    EXPECT_EQ(level(), Names{"Paint"});
    std::ofstream(paint) << "[Desktop Entry]\nType=Application\nName=Better\nExec=sh %F\n";
    timespec times[2] = {{time(nullptr) - 3700, 0}, {time(nullptr) - 3700, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, record().c_str(), times, 0), 0);
    EXPECT_EQ(level(), Names{"Better"});
}

TEST_F(ApplicationsFolderTest, WhatTheUserRemovesFromItComesBackAndWhatHeAddsStays) {
    install("paint.desktop", "Name=Paint\nExec=sh %F\n");
    EXPECT_EQ(level(), Names{"Paint"});
    fs::remove(ApplicationsFolder() + "/paint.desktop");
    write(ApplicationsFolder() + "/notes.txt", "mine");
    fs::create_directory(ApplicationsFolder() + "/Own");
    EXPECT_EQ(level(), (Names{"Own (no program)", "Paint", "notes.txt (no program)"}));
    install("text.desktop", "Name=Text\nExec=sh %F\n");
    EXPECT_EQ(level().size(), 4u);
}

TEST_F(ApplicationsFolderTest, ABundleOfLinksStartsItsProgram) {
    const std::string mail = bundle("Mail", "ApplicationName = Mail;");
    const std::string note = place() + "/note";
    fs::remove(note);
    write(mail + "/Mail",
          "#!/bin/sh\necho \"$0 $2\" >'" + note + ".new'\nmv '" + note + ".new' '" + note + "'\n");
    EXPECT_EQ(level(), Names{"Mail"});
    FSRef application, document;
    const std::string listed = ApplicationsFolder() + "/Mail.app";
    ASSERT_EQ(FSPathMakeRef(reinterpret_cast<const UInt8*>(listed.c_str()), &application, nullptr),
              noErr);
    ASSERT_EQ(FSPathMakeRef(reinterpret_cast<const UInt8*>(mail.c_str()), &document, nullptr),
              noErr);
    const LSLaunchFSRefSpec spec = {&application,      1,      &document, nullptr,
                                    kLSLaunchDefaults, nullptr};
    ASSERT_EQ(LSOpenFromRefSpec(&spec, nullptr), noErr);
    for (int i = 0; i < 500 && !fs::exists(note); i++) usleep(20000);
    EXPECT_EQ(test::read_file(note), mail + "/Mail " + mail + "\n");
}

TEST_F(ApplicationsFolderTest, ItIsOfferedUnlessTheUserHasNamedAnother) {
    const CFStringRef domain = CFSTR("org.example.offered");
    OfferApplicationsFolder(domain);
    EXPECT_EQ(preference("org.example.offered"), ApplicationsFolder());
    CFPreferencesSetAppValue(CFSTR("open_with_path"), CFSTR("/opt"), domain);
    OfferApplicationsFolder(domain);
    EXPECT_EQ(preference("org.example.offered"), "/opt");
    CFPreferencesSetAppValue(CFSTR("open_with_path"), CFSTR(""), domain);
    EXPECT_EQ(preference("org.example.offered"), "");
    CFPreferencesSetAppValue(CFSTR("open_with_path"), nullptr, domain);
    EXPECT_EQ(preference("org.example.offered"), ApplicationsFolder());
}

TEST_F(ApplicationsFolderTest, WhereItCannotBeMadeNothingIsOffered) {
    write(std::string(getenv("XDG_DATA_HOME")) + "/delvio", "a file");
    EXPECT_FALSE(UpdateApplicationsFolder());
    OfferApplicationsFolder(CFSTR("org.example.refused"));
    EXPECT_EQ(preference("org.example.refused"), "none");
    OfferApplicationsFolder(nullptr);
}

TEST_F(ApplicationsFolderTest, AFolderThatIsALinkIsLeftAlone) {
    test::TempFolder theirs;
    const std::string kept = theirs.file("kept.desktop", "x");
    fs::create_directories(fs::path(ApplicationsFolder()).parent_path());
    fs::create_directory_symlink(theirs.path(), ApplicationsFolder());
    install("paint.desktop", "Name=Paint\nExec=sh %F\n");
    EXPECT_FALSE(UpdateApplicationsFolder());
    EXPECT_TRUE(fs::exists(kept));
    EXPECT_FALSE(fs::exists(theirs.path("paint.desktop")));
}
