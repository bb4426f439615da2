#include <AppKit/AppKit.h>
#include <gtest/gtest.h>

#include <stdlib.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <string>

#include "desktop/icon_theme.h"
#include "look/image_questions.h"
#include "support/app.h"
#include "support/temp_folder.h"

namespace {

// A theme of one-colour pictures, so that the colour identifies each icon.
class Icons : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        test::start_application();
        const std::string data = getenv("XDG_DATA_HOME"), config = getenv("XDG_CONFIG_HOME");
        const std::string theme = data + "/icons/Plain";
        ASSERT_EQ(system(("mkdir -p '" + theme + "/16' '" + theme + "/wrong' '" + theme +
                          "/any' '" + theme + "/marks' '" + config + "/gtk-3.0' '" +
                          std::string(getenv("HOME")) + "/Desktop'")
                             .c_str()),
                  0);
        write(theme + "/index.theme",
              "[Icon Theme]\nName=Plain\nInherits=hicolor\nDirectories=wrong,16,any,marks\n"
              "[wrong]\nSize=4294967312\nContext=MimeTypes\nType=Fixed\n"
              "[marks]\nSize=16\nContext=Emblems\nType=Fixed\n"
              "[16]\nSize=16\nContext=MimeTypes\nType=Fixed\n"
              "[any]\nSize=48\nMinSize=17\nMaxSize=256\nContext=MimeTypes\nType=Scalable\n");
        write(config + "/gtk-3.0/settings.ini", "[Settings]\ngtk-icon-theme-name=Plain\n");
        picture(theme + "/16/text-x-generic.svg", "#000001");
        picture(theme + "/wrong/text-x-generic.svg", "#0000ff");
        picture(theme + "/marks/emblem-unreadable.svg", "#00000c");
        picture(theme + "/marks/emblem-symbolic-link.svg", "#00000d");
        picture(theme + "/any/text-x-generic.svg", "#000002");
        picture(theme + "/any/folder.svg", "#000003");
        picture(theme + "/any/user-home.svg", "#000004");
        picture(theme + "/any/application-x-executable.svg", "#000005");
        picture(theme + "/any/own-icon.svg", "#000006");
        picture(theme + "/any/inode-fifo.svg", "#000007");
        picture(theme + "/any/image-x-generic.svg", "#000008");
        const std::string last = data + "/icons/hicolor";
        ASSERT_EQ(system(("mkdir -p '" + last + "/any'").c_str()), 0);
        write(last + "/index.theme",
              "[Icon Theme]\nName=hicolor\nDirectories=any\n"
              "[any]\nSize=48\nMinSize=8\nMaxSize=256\nContext=Applications\nType=Scalable\n");
        picture(last + "/any/only-in-hicolor.svg", "#000009");
        picture(last + "/any/text-x-python.svg", "#00000a");
        picture(data + "/icons/without-theme.svg", "#00000b");
    }
    void SetUp() override { pool = [NSAutoreleasePool new]; }
    void TearDown() override { [pool release]; }

    static void write(const std::string& path, const std::string& content) {
        std::ofstream(path, std::ios::binary) << content;
    }
    static void picture(const std::string& path, const std::string& colour) {
        write(path, "<svg xmlns='http://www.w3.org/2000/svg' width='16' height='16'>"
                    "<rect width='16' height='16' fill='" +
                        colour + "'/></svg>");
    }
    // One of the desktop's own entries.
    static std::string installed(const std::string& name, const std::string& lines) {
        const std::string applications = std::string(getenv("XDG_DATA_HOME")) + "/applications";
        mkdir(applications.c_str(), 0755);
        write(applications + "/" + name, "[Desktop Entry]\nType=Application\n" + lines);
        return applications + "/" + name;
    }
    static NSImage* icon(const std::string& path) {
        return [[NSWorkspace sharedWorkspace]
            iconForFile:[NSString stringWithUTF8String:path.c_str()]];
    }
    // Runs the steps and returns whether they read anything in the folder, or anything of this
    // theme.
    template <typename steps_t>
    bool opens_a_file(steps_t steps) {
        const int watch = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
        const std::string theme = std::string(getenv("XDG_DATA_HOME")) + "/icons/Plain/any";
        for (const std::string& place : {folder.path(), theme}) {
            EXPECT_GE(inotify_add_watch(watch, place.c_str(), IN_OPEN), 0);
        }
        steps();
        char events[4096];
        const bool opened = read(watch, events, sizeof events) > 0;
        close(watch);
        return opened;
    }
    static NSBitmapImageRep* bitmap(NSImage* image, NSInteger pixels) {
        for (NSBitmapImageRep* rep in [image representations]) {
            if ([rep pixelsWide] == pixels) return rep;
        }
        return nil;
    }
    // The blue of the middle: the number of the picture above.
    static int number(NSImage* image, NSInteger pixels) {
        NSBitmapImageRep* rep = bitmap(image, pixels);
        return rep ? [rep bitmapData][pixels / 2 * [rep bytesPerRow] + pixels / 2 * 4 + 2] : -1;
    }
    NSAutoreleasePool* pool;
    test::TempFolder folder;
};

}  // namespace

// The plain theme has a folder whose size is no number of pixels; 16 is what is left of it in 32
// bits.
TEST_F(Icons, AnIconHasPicturesForEachSizeFromTheFolderThatFits) {
    NSImage* image = icon(folder.file("a.txt"));
    EXPECT_EQ(number(image, 16), 1);
    EXPECT_EQ(number(image, 32), 2);
    EXPECT_EQ(number(image, 48), 2);
}

TEST_F(Icons, KindsOfFilesHaveTheirOwnIcons) {
    EXPECT_EQ(number(icon(folder.folder("sub")), 32), 3);
    EXPECT_EQ(number(icon(getenv("HOME")), 32), 4);
    EXPECT_EQ(number(icon(folder.file("photo.jpeg")), 32), 8);
    EXPECT_EQ(number(icon(folder.file("nothing-known")), 32), 2);
    const std::string program = folder.file("program");
    chmod(program.c_str(), 0755);
    EXPECT_EQ(number(icon(program), 32), 5);
}

TEST_F(Icons, ALinkLooksLikeItsTarget) {
    EXPECT_EQ(number(icon(folder.link("link", folder.folder("target"))), 32), 3);
    EXPECT_EQ(number(icon(folder.link("dangling", "nowhere")), 32), 2);
    EXPECT_EQ(number(icon(folder.link("loop", "loop")), 32), 2);
}

TEST_F(Icons, AStringThatChangesIsAskedForAnew) {
    NSMutableString* path =
        [NSMutableString stringWithUTF8String:folder.file("photo.jpeg").c_str()];
    NSImage* first = [[NSWorkspace sharedWorkspace] iconForFile:path];
    [path setString:[NSString stringWithUTF8String:folder.folder("sub").c_str()]];
    NSImage* second = [[NSWorkspace sharedWorkspace] iconForFile:path];
    EXPECT_EQ(number(first, 32), 8);
    EXPECT_EQ(number(second, 32), 3);
}

TEST_F(Icons, ALinkHasAnEmblemAndABrokenOneAnother) {
    test::TempFolder folder;
    folder.folder("there");
    ASSERT_EQ(symlink("there", folder.path("link").c_str()), 0);
    ASSERT_EQ(symlink("nowhere", folder.path("broken").c_str()), 0);
    const auto emblem = [&](const std::string& name) {
        NSString* path = [NSString stringWithUTF8String:folder.path(name).c_str()];
        return [[[NSWorkspace sharedWorkspace] iconForFile:path] emblem];
    };
    EXPECT_EQ(emblem("there"), nil);
    EXPECT_EQ(emblem("missing"), nil);
    ASSERT_NE(emblem("link"), nil);
    EXPECT_EQ(emblem("link/"), emblem("link"));
    ASSERT_NE(emblem("broken"), nil);
    EXPECT_NE(emblem("broken"), emblem("link"));
    EXPECT_NE([[emblem("broken") representations] count], 0u);
}

TEST_F(Icons, AnEntryOfTheDesktopsOwnNamesItsIcon) {
    EXPECT_EQ(number(icon(installed("x.desktop", "Icon=own-icon\n")), 32), 6);
    EXPECT_EQ(number(icon(installed("png.desktop", "Icon=own-icon.png\n")), 32), 6);
    EXPECT_EQ(number(icon(installed("none.desktop", "")), 32), 5);
}

TEST_F(Icons, AStrangersEntryLooksLikeATextOrAProgram) {
    const std::string entry = "[Desktop Entry]\nType=Application\nIcon=image-x-generic\n";
    const std::string path = folder.file("photo.jpg.desktop", entry);
    EXPECT_EQ(number(icon(path), 32), 2);
    chmod(path.c_str(), 0755);
    EXPECT_EQ(number(icon(path), 32), 5);
}

TEST_F(Icons, AnIconOfItsOwnFromTheLastThemeComesBeforeAGeneralOneFromTheFirst) {
    EXPECT_EQ(number(icon(installed("y.desktop", "Icon=only-in-hicolor\n")), 32), 9);
    EXPECT_EQ(number(icon(folder.file("a.py")), 32), 10);
}

TEST_F(Icons, AnIconWithoutAThemeIsFound) {
    EXPECT_EQ(number(icon(installed("z.desktop", "Icon=without-theme\n")), 32), 11);
}

TEST_F(Icons, AFifoIsNotOpened) {
    const std::string path = folder.path("pipe.desktop");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_EQ(number(icon(path), 32), 7);
}

TEST_F(Icons, ResizingOneIconLeavesTheNextAsItWas) {
    const std::string path = folder.file("a.txt");
    NSImage* first = icon(path);
    [first setSize:NSMakeSize(15, 15)];
    NSImage* second = icon(path);
    EXPECT_NE(first, second);
    EXPECT_EQ([first size].width, 15);
    EXPECT_EQ([second size].width, 48);
    EXPECT_EQ(bitmap(first, 32), bitmap(second, 32));
    EXPECT_EQ([bitmap(second, 32) size].width, 32);
}

TEST_F(Icons, AnIconThatNobodyLookedAtLeavesNothingToTheNext) {
    const std::string hidden = folder.file(".b.txt"), text = folder.file("a.txt"),
                      below = folder.folder("below");
    for (int turn = 0; turn < 10; turn++) {
        @autoreleasepool {
            NSImage* const gone = icon(hidden);
            [gone setSize:NSMakeSize(7, 9)];
            [gone setFlipped:YES];
            [gone setScalesWhenResized:YES];
            EXPECT_TRUE([gone isOfHiddenFile]);
        }
        @autoreleasepool {
            NSImage *const file = icon(text), *const other = icon(below);
            EXPECT_NE(file, other);
            for (NSImage* image in @[ file, other ]) {
                EXPECT_EQ([image size].width, 48);
                EXPECT_FALSE([image isFlipped]);
                EXPECT_FALSE([image scalesWhenResized]);
                EXPECT_FALSE([image isOfHiddenFile]);
            }
            EXPECT_EQ(number(file, 32), 2);
            EXPECT_EQ(number(other, 32), 3);
        }
        @autoreleasepool {
            EXPECT_NE(icon(""), nil);
        }
    }
}

TEST_F(Icons, NoPathAndMissingFilesGetAnIcon) {
    EXPECT_NE([[NSWorkspace sharedWorkspace] iconForFile:nil], nil);
    EXPECT_NE([[NSWorkspace sharedWorkspace] iconForFile:@""], nil);
    EXPECT_EQ(number(icon(folder.path("missing")), 32), 2);
}

TEST_F(Icons, AHiddenFilesIconIsMarked) {
    folder.file(".hidden", "listed\n");
    EXPECT_FALSE([icon(folder.file("a.txt")) isOfHiddenFile]);
    EXPECT_TRUE([icon(folder.file(".a.txt")) isOfHiddenFile]);
    EXPECT_TRUE([icon(folder.file("listed")) isOfHiddenFile]);
    EXPECT_TRUE([icon(folder.folder(".config") + "/") isOfHiddenFile]);
    EXPECT_FALSE([icon(folder.file(".config/inner")) isOfHiddenFile]);
    EXPECT_FALSE([icon("/") isOfHiddenFile]);
}

TEST_F(Icons, AnIconThatIsNeverDrawnReadsNoFile) {
    // Its kind has a picture that no other test has loaded.
    const std::string path = folder.file("note.desktop", "[Desktop Entry]\nType=Application\n");
    folder.file(".hidden", "other\n");
    NSImage* image = nil;
    EXPECT_FALSE(opens_a_file([&] {
        image = icon(path);
        [image setSize:NSMakeSize(16, 16)];
        NSMenuItem* item = [[[NSMenuItem alloc] initWithTitle:@"" action:NULL
                                                keyEquivalent:@""] autorelease];
        [item setImage:image];
    }));
    EXPECT_EQ([image size].width, 16);
    EXPECT_TRUE(opens_a_file([&] { [image representations]; })) << "the watch sees nothing";
    EXPECT_TRUE(opens_a_file([&] { [image isOfHiddenFile]; }));
    EXPECT_FALSE(opens_a_file([&] {
        [image representations];
        [image isOfHiddenFile];
    })) << "once is enough";
}

TEST_F(Icons, AnIconThatWasLookedAtByNobodyCopiesWithItsPictures) {
    NSImage* image = icon(folder.file(".a.txt"));
    [image setSize:NSMakeSize(15, 15)];
    NSImage* copy = [[image copy] autorelease];
    EXPECT_EQ([copy size].width, 15);
    EXPECT_EQ(number(copy, 32), 2);
    EXPECT_TRUE([copy isOfHiddenFile]);
    EXPECT_EQ(number(image, 32), 2);
}

TEST_F(Icons, WhoAddsOrTakesAPictureFindsThoseOfTheFile) {
    NSImage* added = icon(folder.file("a.txt"));
    NSImageRep* other = bitmap(icon(folder.folder("sub")), 48);
    [added addRepresentation:other];
    EXPECT_EQ([[added representations] count], 4u);
    EXPECT_EQ([[added representations] lastObject], other);
    NSImage* taken = icon(folder.file("a.txt"));
    [taken removeRepresentation:bitmap(added, 16)];
    EXPECT_EQ([[taken representations] count], 2u);
}

TEST_F(Icons, AnIconIsWrittenWithItsPictures) {
    EXPECT_GT([[icon(folder.file("a.txt")) TIFFRepresentation] length], 16u * 16 * 3);
    EXPECT_TRUE([icon(folder.file("a.txt")) isValid]);
    NSData* archive = [NSArchiver archivedDataWithRootObject:icon(folder.file("a.txt"))];
    NSImage* read = [NSUnarchiver unarchiveObjectWithData:archive];
    EXPECT_EQ([[read representations] count], 3u);
    EXPECT_EQ([read size].width, 48);
}

TEST_F(Icons, ItemsOfOneFileKeepOneImageUntilSomebodyLooksAtIt) {
    const auto item_of = [&](const std::string& path, CGFloat side) {
        NSMenuItem* item = [[[NSMenuItem alloc] initWithTitle:@"a" action:NULL
                                                keyEquivalent:@""] autorelease];
        NSImage* image = icon(path);
        [image setSize:NSMakeSize(side, side)];
        [item setImage:image];
        return item;
    };
    const std::string text = folder.file("a.txt"), other = folder.folder("b");
    NSMenuItem *one = item_of(text, 16), *two = item_of(text, 16), *large = item_of(text, 32);
    EXPECT_EQ([one image], [two image]);
    EXPECT_NE([one image], [large image]);
    EXPECT_EQ([[large image] size].width, 32);
    EXPECT_EQ([[one image] size].width, 16);
    NSMenuItem* looked_at = item_of(other, 16);
    EXPECT_EQ(number([looked_at image], 32), 3);
    EXPECT_NE([item_of(other, 16) image], [looked_at image]);
    EXPECT_EQ(number([two image], 32), 2);
}

TEST_F(Icons, AnotherThemeCountsAtOnceAndTheFirstOneAgainLater) {
    const std::string other = std::string(getenv("XDG_DATA_HOME")) + "/icons/Other";
    ASSERT_EQ(system(("mkdir -p '" + other + "/any'").c_str()), 0);
    write(other + "/index.theme",
          "[Icon Theme]\nName=Other\nInherits=hicolor\nDirectories=any\n"
          "[any]\nSize=48\nMinSize=8\nMaxSize=256\nContext=MimeTypes\nType=Scalable\n");
    picture(other + "/any/text-x-generic.svg", "#000020");
    const std::string file = folder.file("letter.txt", "text");
    EXPECT_EQ(number(icon(file), 32), 2);
    use_icon_theme("Other");
    EXPECT_EQ(number(icon(file), 32), 0x20);
    use_icon_theme("Plain");
    EXPECT_EQ(number(icon(file), 32), 2);
}
