// Icons named by files that nobody vouches for. An icon that would hang, freeze or end the program
// that lists it makes the test fail.
#include "appkit/untrusted_icons.h"

#include <AppKit/AppKit.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <string>

#include "look/image_questions.h"
#include "platform/menu_script.h"
#include "support/app.h"
#include "support/temp_folder.h"

namespace {

const int generic = 5, own = 9;

std::string svg(int blue, const std::string& content = "") {
    return "<svg xmlns='http://www.w3.org/2000/svg' width='64' height='64'><rect width='64' "
           "height='64' fill='#00000" +
           std::to_string(blue) + "'/>" + content + "</svg>";
}

// Keeps a processor busy for minutes.
std::string freezing_svg() {
    std::string filters;
    for (int i = 0; i < 400; i++) {
        filters += "<feTurbulence baseFrequency='0.9' numOctaves='9000'/><feGaussianBlur "
                   "stdDeviation='300'/>";
    }
    return svg(own, "<filter id='f'>" + filters +
                        "</filter><rect width='64' height='64' fill='#000' filter='url(#f)'/>");
}

// Whether a line of the screen shows a pure green anywhere.
bool has_green(int left, int right, int y) {
    Display* display = XOpenDisplay(nullptr);
    XImage* line = XGetImage(display, DefaultRootWindow(display), left, y,
                             static_cast<unsigned>(right - left), 1, AllPlanes, ZPixmap);
    bool found = false;
    for (int x = 0; line && x < line->width; x++) {
        found = found || (XGetPixel(line, x, 0) & 0xffffff) == 0x00ff00;
    }
    if (line) XDestroyImage(line);
    XCloseDisplay(display);
    return found;
}

class UntrustedIcons : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        test::start_application();
        const std::string data = getenv("XDG_DATA_HOME"), config = getenv("XDG_CONFIG_HOME");
        const std::string theme = data + "/icons/Plain";
        ASSERT_EQ(system(("mkdir -p '" + theme + "/any' '" + config + "/gtk-3.0' '" + data +
                          "/applications'")
                             .c_str()),
                  0);
        write(theme + "/index.theme",
              "[Icon Theme]\nName=Plain\nDirectories=any\n"
              "[any]\nSize=48\nMinSize=1\nMaxSize=256\nContext=MimeTypes\nType=Scalable\n");
        write(config + "/gtk-3.0/settings.ini", "[Settings]\ngtk-icon-theme-name=Plain\n");
        for (const char* name : {"application-x-executable", "folder", "text-x-generic"}) {
            write(theme + "/any/" + name + ".svg", svg(generic));
        }
        write(theme + "/any/named.svg", svg(own));
    }
    void SetUp() override { pool = [NSAutoreleasePool new]; }
    void TearDown() override {
        wait_for_all();
        [pool release];
    }

    static void write(const std::string& path, const std::string& content) {
        std::ofstream(path, std::ios::binary) << content;
    }
    // An application of the user's own that names this icon.
    static std::string entry(const std::string& icon) {
        const std::string path = std::string(getenv("XDG_DATA_HOME")) + "/applications/x.desktop";
        write(path, "[Desktop Entry]\nType=Application\nName=X\nExec=true\nIcon=" + icon + "\n");
        return path;
    }
    std::string bundle(const std::string& name, const std::string& icon) {
        folder.folder(name);
        folder.folder(name + "/Resources");
        folder.file(name + "/Resources/Info-gnustep.plist", "{ NSIcon = \"" + icon + "\"; }");
        return folder.path(name);
    }
    static NSImage* icon(const std::string& path) {
        return [[NSWorkspace sharedWorkspace]
            iconForFile:[NSString stringWithUTF8String:path.c_str()]];
    }
    // The blue of the middle.
    static int number(NSImage* image) {
        NSBitmapImageRep* rep = (NSBitmapImageRep*)[[image representations] lastObject];
        const NSInteger side = [rep pixelsWide];
        return rep ? [rep bitmapData][side / 2 * [rep bytesPerRow] + side / 2 * 4 + 2] : -1;
    }
    static void wait_for_all() {
        NSDate* end = [NSDate dateWithTimeIntervalSinceNow:120];
        while (awaited_icons() > 0 && [end timeIntervalSinceNow] > 0) {
            [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode
                                     beforeDate:[NSDate dateWithTimeIntervalSinceNow:0.1]];
        }
        EXPECT_EQ(awaited_icons(), 0u);
    }
    // Expects the general icon, both before and after its own icon has been looked at.
    static void expect_generic(const std::string& path, const char* what) {
        NSImage* image = icon(path);
        EXPECT_EQ(number(image), generic) << what;
        wait_for_all();
        EXPECT_EQ(number(image), generic) << what;
    }
    static void expect_to_arrive(const std::string& path) {
        NSImage* image = icon(path);
        EXPECT_EQ(number(image), generic);
        wait_for_all();
        EXPECT_EQ(number(image), own);
        EXPECT_EQ(number(icon(path)), own) << "it is known now";
    }
    NSAutoreleasePool* pool;
    test::TempFolder folder;
};

}  // namespace

TEST_F(UntrustedIcons, AnIconOfTheThemeIsThereAtOnce) {
    EXPECT_EQ(number(icon(entry("named"))), own);
}

TEST_F(UntrustedIcons, AnIconAnywhereElseArrivesLater) {
    expect_to_arrive(entry(folder.file("good.svg", svg(own))));
    folder.folder("A.app");
    const std::string path = bundle("A.app", "a.svg");
    folder.file("A.app/Resources/a.svg", svg(own));
    expect_to_arrive(path);
    bundle("B.app", "b");
    folder.file("B.app/b.svg", svg(own));
    expect_to_arrive(folder.path("B.app"));
}

TEST_F(UntrustedIcons, AnImageKeepsItsSizeWhenItsPictureArrives) {
    NSImage* image = icon(entry(folder.file("good.svg", svg(own))));
    [image setSize:NSMakeSize(17, 17)];
    EXPECT_EQ(number(image), generic);
    wait_for_all();
    EXPECT_EQ(number(image), own);
    EXPECT_EQ([image size].width, 17);
}

TEST_F(UntrustedIcons, AnIconThatHasChangedIsShownAnew) {
    const std::string path = entry(folder.file("good.svg", svg(own)));
    expect_to_arrive(path);
    folder.file("good.svg", svg(3, "<!-- other -->"));
    NSDate* end = [NSDate dateWithTimeIntervalSinceNow:60];
    while (number(icon(path)) != 3 && [end timeIntervalSinceNow] > 0) {
        [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode
                                 beforeDate:[NSDate dateWithTimeIntervalSinceNow:0.1]];
    }
    EXPECT_EQ(number(icon(path)), 3);
}

TEST_F(UntrustedIcons, APipeADeviceOrAHugeFileIsNoIcon) {
    const std::string pipe = folder.path("pipe.png"), huge = folder.path("huge.png");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    folder.file("huge.png");
    ASSERT_EQ(truncate(huge.c_str(), off_t{200} << 30), 0);
    for (const std::string& file :
         {pipe, huge, folder.link("zero.png", "/dev/zero"), folder.path("missing.png")}) {
        expect_generic(entry(file), file.c_str());
        expect_generic(bundle("C.app", file), file.c_str());
    }
    const std::string path = bundle("D.app", "pipe");
    ASSERT_EQ(mkfifo(folder.path("D.app/Resources/pipe.png").c_str(), 0600), 0);
    expect_generic(path, "a pipe within");
}

TEST_F(UntrustedIcons, APictureThatTakesForEverIsNoIcon) {
    expect_generic(entry(folder.file("freeze.svg", freezing_svg())), "an entry's");
    expect_generic(bundle("E.app", folder.file("other.svg", freezing_svg())), "a bundle's");
}

TEST_F(UntrustedIcons, AFoldersOwnPictureIsNotOpened) {
    folder.folder("sub");
    ASSERT_EQ(mkfifo(folder.path("sub/.dir.png").c_str(), 0600), 0);
    EXPECT_EQ(number(icon(folder.path("sub"))), generic);
}

TEST_F(UntrustedIcons, NobodyIsSystemsOwnBySteppingOut) {
    EXPECT_TRUE(is_systems_own("/usr/share/icons/a.png"));
    EXPECT_FALSE(is_systems_own("/usr/share/../../home/a.png"));
    EXPECT_FALSE(is_systems_own("/home/usr/a.png"));
}

TEST_F(UntrustedIcons, AnOpenMenuShowsAPictureThatArrives) {
    const std::string path = entry(folder.file(
        "green.svg", "<svg xmlns='http://www.w3.org/2000/svg' width='64' height='64'><rect "
                     "width='64' height='64' fill='#0f0'/></svg>"));
    NSMenu* menu = [[[NSMenu alloc] initWithTitle:@""] autorelease];
    for (NSString* title in @[ @"first", @"second" ]) {
        [menu addItemWithTitle:title action:@selector(description) keyEquivalent:@""];
    }
    // A host asks for icons when the menu pops up; by then the menu has been drawn without this
    // one.
    MenuScript script;
    script.when(
        "menu shown", [] { return level_is_shown(0); },
        [&] {
            NSImage* image = icon(path);
            [image setSize:NSMakeSize(16, 16)];
            [[menu itemAtIndex:1] setImage:image];
            EXPECT_EQ(number(image), generic);
        });
    script.when(
        "the picture",
        [] {
            const MenuPoint row = row_point(0, @"second");
            return has_green(300, row.x, row.y);
        },
        [&] { script.input.key("Escape"); });
    script.run(menu, 300, 200);
}

TEST_F(UntrustedIcons, APictureIsReadBeforeItsRowIsScrolledIntoSight) {
    const std::string path = entry(folder.file("good.svg", svg(own)));
    NSMenu* menu = [[[NSMenu alloc] initWithTitle:@""] autorelease];
    for (int i = 0; i < 200; i++) {
        [menu addItemWithTitle:@"row" action:@selector(description) keyEquivalent:@""];
    }
    NSImage *next = icon(path), *far = icon(path);
    [next setSize:NSMakeSize(16, 16)];
    [[menu itemAtIndex:45] setImage:next];
    [[menu itemAtIndex:199] setImage:far];
    MenuScript script;
    script.when(
        "a look at the next page", [&] { return ![next mayChangeAfterFirstLook]; },
        [&] { script.input.key("Escape"); });
    script.run(menu, 300, 200);
    EXPECT_TRUE([far mayChangeAfterFirstLook]) << "of pages that are far away nothing is read";
    wait_for_all();
    EXPECT_EQ(number(next), own);
}
