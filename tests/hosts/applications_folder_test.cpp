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

// Foundation and GLib read the applications' places before main, so the program starts itself again
// with its own places.
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
        fs::remove_all(fs::path(getenv("XDG_CACHE_HOME")) / "delvio");
        fs::remove_all(fs::path(getenv("XDG_DATA_HOME")) / "delvio");
        fs::remove_all(fs::path(getenv("XDG_DATA_HOME")) / "applications");
        for (const char* folder : {"/data/applications", "/bundles"}) {
            for (const auto& entry : fs::directory_iterator(place() + folder)) {
                fs::remove_all(entry);
            }
        }
    }
    static std::string place() { return getenv("OWN_APPLICATIONS"); }
    static std::string record() { return applications_folder() + "/.record"; }
    static void write(const std::string& path, const std::string& content) {
        fs::create_directories(fs::path(path).parent_path());
        std::ofstream(path, std::ios::binary) << content;
    }
    // Makes the list of found applications stale, as after an hour.
    static void age(const std::string& path) {
        const timespec times[2] = {{time(nullptr) - 3700, 0}, {time(nullptr) - 3700, 0}};
        ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0) << path;
    }
    // The link to the application installed at `path`.
    static std::string link_to(const std::string& path) {
        for (const auto& entry : fs::directory_iterator(applications_folder())) {
            if (entry.is_symlink() && fs::read_symlink(entry) == path) return entry.path();
        }
        ADD_FAILURE() << "no link to " << path;
        return "";
    }
    static Names names_in(const std::string& path) {
        Names names;
        for (const auto& entry : fs::directory_iterator(path)) {
            names.push_back(entry.path().filename());
        }
        std::sort(names.begin(), names.end());
        return names;
    }
    // A system entry for a program that exists.
    static std::string install(const std::string& file, const std::string& lines) {
        const std::string path = place() + "/data/applications/" + file;
        write(path, "[Desktop Entry]\nType=Application\n" + lines);
        return path;
    }
    static std::string bundle(
        const std::string& name, const std::string& information,
        const std::string& types = "NSTypes = ({ NSUnixExtensions = (x); });") {
        const std::string path = place() + "/bundles/" + name + ".app";
        write(path + "/" + name, "#!/bin/sh\n");
        chmod((path + "/" + name).c_str(), 0755);
        write(path + "/Resources/Info-gnustep.plist",
              "{ NSExecutable = " + name + "; " + information + types + " }\n");
        return path;
    }
    // The folder's level in the menu, in its order: "name (kind)".
    static Names level_in_order() {
        EXPECT_TRUE(update_applications_folder());
        Names names;
        dv_tree_t* root = dv_build_tree(applications_folder().c_str(), 0, 1, 0, DV_ORIGIN_APP_LIST);
        for (const dv_tree_t* child = root ? root->children : nullptr; child; child = child->next) {
            const bool application = child->kind == DV_KIND_APPLICATION;
            names.push_back(child->display_name + std::string(application ? "" : " (no program)"));
        }
        if (root) dv_free_tree(root);
        return names;
    }
    static Names level() {
        Names names = level_in_order();
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
    bundle("SpeechServer", "NSPrincipalClass = NSApplication;", "");
    bundle("Panel", "NSIcon = \"Panel.tiff\"; NSTypes = ();", "");
    write(place() + "/bundles/Empty.app/readme", "");
    EXPECT_EQ(level(), Names{"Post Office"});
}

TEST_F(ApplicationsFolderTest, AProgramWithAnEntryAndABundleIsListedOnce) {
    bundle("Mail", "ApplicationName = Mail;");
    install("mail.desktop", "Name=Mail\nExec=sh %F\n");
    EXPECT_EQ(level(), Names{"Mail"});
    link_to(place() + "/data/applications/mail.desktop");
}

TEST_F(ApplicationsFolderTest, NothingIsWrittenWhenNothingHasChanged) {
    install("paint.desktop", "Name=Paint\nExec=sh %F\n");
    bundle("Mail", "ApplicationName = Mail;");
    EXPECT_EQ(level().size(), 2u);
    const std::string before = inode(record()) + " " + inode(applications_folder());
    EXPECT_EQ(level().size(), 2u);
    EXPECT_EQ(inode(record()) + " " + inode(applications_folder()), before);
}

TEST_F(ApplicationsFolderTest, TheListIsInTheOrderOfTheNamesThatAreShown) {
    install("z.desktop", "Name=apple\nExec=sh %F\n");
    install("a.desktop", "Name=Zebra\nExec=sh %F\n");
    install("m.desktop", "Name=Banana\nExec=sh %F\n");
    bundle("Aardvark", "ApplicationName = Cherry;");
    install("b.desktop", "Name=banana 10\nExec=sh %F\n");
    EXPECT_EQ(level_in_order(), (Names{"apple", "Banana", "banana 10", "Cherry", "Zebra"}));
}

TEST_F(ApplicationsFolderTest, ALinkKeepsItsNameWhenOthersComeAndGo) {
    const std::string paint = install("paint.desktop", "Name=Paint\nExec=sh %F\n");
    EXPECT_EQ(level(), Names{"Paint"});
    const std::string before = link_to(paint);
    install("before.desktop", "Name=Before\nExec=sh %F\n");
    EXPECT_EQ(level(), (Names{"Before", "Paint"}));
    EXPECT_EQ(link_to(paint), before);
}

TEST_F(ApplicationsFolderTest, FoldersThatAreLinkedInACircleAreLookedIntoOnce) {
    install("inner/deep.desktop", "Name=Deep\nExec=sh %f\n");
    fs::create_directory_symlink("..", place() + "/data/applications/inner/again");
    EXPECT_EQ(level(), Names{"Deep"});
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
    age(record());
    EXPECT_EQ(level(), Names{"Better"});
}

TEST_F(ApplicationsFolderTest, WhatTheUserRemovesFromItComesBack) {
    const std::string paint = install("paint.desktop", "Name=Paint\nExec=sh %F\n");
    EXPECT_EQ(level(), Names{"Paint"});
    fs::remove(link_to(paint));
    EXPECT_EQ(level(), Names{"Paint"});
}

TEST_F(ApplicationsFolderTest, NothingThatSomebodyElsePutsThereIsEverRemoved) {
    const std::string paint = install("paint.desktop", "Name=Paint\nExec=sh %F\n");
    EXPECT_EQ(level(), Names{"Paint"});
    const std::string folder = applications_folder(), taken = link_to(paint);
    write(folder + "/notes.txt", "mine");
    write(folder + "/own.desktop", "[Desktop Entry]\nType=Application\nName=Own\nExec=sh\n");
    fs::create_directories(folder + "/Mail.app");
    fs::create_symlink("/etc/hostname", folder + "/Mail.app/link");
    fs::create_symlink(paint, folder + "/linked.desktop");
    fs::remove(taken);
    write(taken, "mine too");
    for (int round = 0; round < 3; round++) {
        install("text" + std::to_string(round) + ".desktop", "Name=Text\nExec=sh %F\n");
        level();
        age(record());
        EXPECT_EQ(test::read_file(folder + "/notes.txt"), "mine");
        EXPECT_TRUE(fs::exists(folder + "/own.desktop"));
        EXPECT_TRUE(fs::is_symlink(folder + "/Mail.app/link"));
        EXPECT_TRUE(fs::is_symlink(folder + "/linked.desktop"));
    }
    // Its name is the program's again, and it stands where its folder was put aside.
    bool kept = false;
    for (const auto& entry : fs::recursive_directory_iterator(fs::path(folder).parent_path())) {
        kept = kept || test::read_file(entry.path()) == "mine too";
    }
    EXPECT_TRUE(kept);
}

TEST_F(ApplicationsFolderTest, TheFormerFolderAmongTheUsersDataIsLeftAlone) {
    const std::string former = std::string(getenv("XDG_DATA_HOME")) + "/delvio/Applications";
    write(former + "/mine.desktop", "mine");
    fs::create_directories(former + "/Mail.app");
    fs::create_symlink("/etc/hostname", former + "/Mail.app/link");
    install("paint.desktop", "Name=Paint\nExec=sh %F\n");
    bundle("Mail", "ApplicationName = Mail;");
    EXPECT_EQ(level(), (Names{"Mail", "Paint"}));
    EXPECT_EQ(names_in(former), (Names{"Mail.app", "mine.desktop"}));
    EXPECT_TRUE(fs::is_symlink(former + "/Mail.app/link"));
    EXPECT_EQ(names_in(std::string(getenv("XDG_DATA_HOME")) + "/delvio"), Names{"Applications"});
}

TEST_F(ApplicationsFolderTest, AFolderThatThisProgramHasNotMadeIsLeftAlone) {
    const std::string folder = applications_folder();
    write(folder + "/mine.desktop", "mine");
    install("paint.desktop", "Name=Paint\nExec=sh %F\n");
    EXPECT_FALSE(update_applications_folder());
    EXPECT_EQ(names_in(folder), Names{"mine.desktop"});
    EXPECT_EQ(names_in(fs::path(folder).parent_path()), Names{"applications"});
    offer_applications_folder(CFSTR("org.example.taken"));
    EXPECT_EQ(preference("org.example.taken"), "none");
}

TEST_F(ApplicationsFolderTest, AnothersRecordIsNotBelieved) {
    if (geteuid() != 0) GTEST_SKIP() << "only the superuser gives files away";
    install("paint.desktop", "Name=Paint\nExec=sh %F\n");
    EXPECT_EQ(level(), Names{"Paint"});
    ASSERT_EQ(chown(record().c_str(), 65534, 65534), 0);
    EXPECT_FALSE(update_applications_folder());
    EXPECT_EQ(names_in(applications_folder()).size(), 2u);
}

TEST_F(ApplicationsFolderTest, WhatAKilledProcessLeftGoesAnHourLater) {
    install("paint.desktop", "Name=Paint\nExec=sh %F\n");
    EXPECT_EQ(level(), Names{"Paint"});
    const std::string place = fs::path(applications_folder()).parent_path();
    fs::copy(applications_folder(), place + "/.applications-AAAAAA",
             fs::copy_options::recursive | fs::copy_options::copy_symlinks);
    fs::copy(applications_folder(), place + "/.applications-BBBBBB",
             fs::copy_options::recursive | fs::copy_options::copy_symlinks);
    write(place + "/.applications-CCCCCC/mine", "mine");
    age(place + "/.applications-AAAAAA");
    age(place + "/.applications-CCCCCC");
    age(record());
    EXPECT_EQ(level(), Names{"Paint"});
    EXPECT_EQ(names_in(place),
              (Names{".applications-BBBBBB", ".applications-CCCCCC", "applications"}));
    EXPECT_EQ(test::read_file(place + "/.applications-CCCCCC/mine"), "mine");
}

TEST_F(ApplicationsFolderTest, OnlyTheProgramsThatAreInstalledAreBelieved) {
    install("paint.desktop", "Name=Paint\nExec=sh %F\n");
    EXPECT_EQ(level(), Names{"Paint"});
    write(applications_folder() + "/strange.desktop",
          "[Desktop Entry]\nType=Application\nName=Strange\nExec=sh %F\n");
    EXPECT_EQ(level(), (Names{"Paint", "strange.desktop (no program)"}));
}

TEST_F(ApplicationsFolderTest, ALinkToABundleStartsItsProgram) {
    const std::string mail = bundle("Mail", "ApplicationName = Mail;");
    const std::string note = place() + "/note";
    fs::remove(note);
    write(mail + "/Mail",
          "#!/bin/sh\necho \"$0 $2\" >'" + note + ".new'\nmv '" + note + ".new' '" + note + "'\n");
    EXPECT_EQ(level(), Names{"Mail"});
    FSRef application, document;
    const std::string listed = link_to(mail);
    ASSERT_EQ(FSPathMakeRef(reinterpret_cast<const UInt8*>(listed.c_str()), &application, nullptr),
              noErr);
    ASSERT_EQ(FSPathMakeRef(reinterpret_cast<const UInt8*>(mail.c_str()), &document, nullptr),
              noErr);
    const LSLaunchFSRefSpec spec = {&application,      1,      &document, nullptr,
                                    kLSLaunchDefaults, nullptr};
    ASSERT_EQ(LSOpenFromRefSpec(&spec, nullptr), noErr);
    for (int i = 0; i < 3000 && !fs::exists(note); i++) usleep(20000);
    EXPECT_EQ(test::read_file(note), mail + "/Mail " + mail + "\n");
}

TEST_F(ApplicationsFolderTest, ItIsOfferedUnlessTheUserHasNamedAnother) {
    const CFStringRef domain = CFSTR("org.example.offered");
    offer_applications_folder(domain);
    EXPECT_EQ(preference("org.example.offered"), applications_folder());
    CFPreferencesSetAppValue(CFSTR("open_with_path"), CFSTR("/opt"), domain);
    offer_applications_folder(domain);
    EXPECT_EQ(preference("org.example.offered"), "/opt");
    CFPreferencesSetAppValue(CFSTR("open_with_path"), CFSTR(""), domain);
    EXPECT_EQ(preference("org.example.offered"), "");
    CFPreferencesSetAppValue(CFSTR("open_with_path"), nullptr, domain);
    EXPECT_EQ(preference("org.example.offered"), applications_folder());
}

TEST_F(ApplicationsFolderTest, WhereItCannotBeMadeNothingIsOffered) {
    write(std::string(getenv("XDG_CACHE_HOME")) + "/delvio", "a file");
    EXPECT_FALSE(update_applications_folder());
    offer_applications_folder(CFSTR("org.example.refused"));
    EXPECT_EQ(preference("org.example.refused"), "none");
    offer_applications_folder(nullptr);
}

TEST_F(ApplicationsFolderTest, AFolderThatIsALinkIsLeftAlone) {
    test::TempFolder theirs;
    const std::string kept = theirs.file("kept.desktop", "x");
    fs::create_directories(fs::path(applications_folder()).parent_path());
    fs::create_directory_symlink(theirs.path(), applications_folder());
    install("paint.desktop", "Name=Paint\nExec=sh %F\n");
    EXPECT_FALSE(update_applications_folder());
    EXPECT_TRUE(fs::exists(kept));
    EXPECT_FALSE(fs::exists(theirs.path("paint.desktop")));
}
