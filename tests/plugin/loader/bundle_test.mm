// The built bundle in a Finder-like host, from outside: its information, and every line of its log.
#include <host/modifier_keys.h>
#include <host/forced_preferences.h>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <objc/runtime.h>
#include <stdlib.h>

#include <filesystem>
#include <map>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "finderkit/context_menu.h"
#include "finderkit/plug_in.h"
#include "finderkit/plug_in_items.h"
#include "plugin/loader/recording_host.h"
#include "plugin/loader/walking_tracker.h"
#include "support/app.h"
#include "support/temp_folder.h"

namespace {

using Lines = std::vector<std::string>;

std::string log_file() { return getenv("HOME") + std::string("/Library/Logs/Delvio.log"); }

void set_number(CFStringRef key, int number) {
    force_preference(key, (CFPropertyListRef)[NSNumber numberWithInt:number],
                     CFSTR("org.delvio.Delvio"));
}
void set_log_level(int level) { set_number(CFSTR("logLevel"), level); }

NSMenuItem* item_titled(NSMenu* menu, NSString* title) {
    return static_cast<NSMenuItem*>([menu itemWithTitle:title]);
}

// Every address is a name of this table, or "*".
using Names = std::map<std::string, std::string>;

std::string address_of(const void* object) {
    char text[32];
    snprintf(text, sizeof text, "%p", object);
    return text;
}

// One line prints the addresses of elements as bare numbers.
std::string with_prefixes(const std::string& line) {
    static const std::regex bare("(moveCopyElem|parent): ([0-9a-f]{2,})");
    return std::regex_replace(line, bare, "$1: 0x$2");
}

std::string without_addresses(const std::string& line, const Names& names) {
    std::string result;
    for (size_t i = 0; i < line.size();) {
        if (line.compare(i, 2, "0x") != 0) {
            result += line[i++];
            continue;
        }
        const size_t end = line.find_first_not_of("0123456789abcdef", i + 2);
        const std::string address = line.substr(i, end - i);
        const auto name = names.find(address);
        result += name == names.end() ? "*" : name->second;
        i = end == std::string::npos ? line.size() : end;
    }
    return result;
}

Lines lines_of(const std::string& text, const Names& names) {
    Lines lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        lines.push_back(without_addresses(with_prefixes(line), names));
    }
    return lines;
}

class Bundle : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        test::start_application();
        std::filesystem::create_directories(std::filesystem::path(log_file()).parent_path());
        set_log_level(2);
        // Keeps out the applications of the machine that the test runs on.
        set_number(CFSTR("runningAppsInOpenWithMenu"), 0);
        force_preference(CFSTR("open_with_path"), (CFPropertyListRef) @"/nowhere",
                         CFSTR("org.delvio.Delvio"));
        std::string problem;
        ASSERT_TRUE(load_plug_in(DELVIO_BUNDLE, &problem)) << problem;
        fflush(nullptr);
        load_log_ = test::read_file(log_file());
    }

    Bundle() : pool_([NSAutoreleasePool new]), tracker_([WalkingTracker new]) {
        host_ = [RecordingHost new];
        menu_ = [[TContextMenu alloc] initWithTitle:@"context"];
        [menu_ setDelegate:(id)host_];
        [NSMenu setContextMenuTracker:tracker_];
        controller_ = [objc_getClass("DVDelvio") performSelector:@selector(sharedDelvio)];
        names_ = {{address_of(menu_), "MENU"},
                  {address_of(host_), "HOST"},
                  {address_of(controller_), "DVDV"},
                  {address_of([TContextMenu class]), "CLASS"}};
        folder_.file("a/inside");
        folder_.file("text");
    }
    ~Bundle() override {
        set_held_modifier_flags(0);
        [NSMenu setContextMenuTracker:nil];
        [menu_ setDelegate:nil];
        [menu_ release];
        [host_ release];
        [tracker_ release];
        [pool_ release];
    }

    // A popup for a folder and a file: the pointer on the file, then the folder's level, and in
    // that level a pick that does nothing.
    void pop_up() {
        [tracker_ setWalk:[this](MenuSession* session) {
            const TFENodeVector nodes = {{{folder_.path("a")}, {folder_.path("text")}}};
            [menu_ configureWithNodes:&nodes windowController:nil container:NO];
            [session highlightItem:item_titled(menu_, @"text") inMenu:menu_];
            [session highlightItem:nil inMenu:menu_];
            [session openSubmenuOfItem:item_titled(menu_, @"a")];
            NSMenu* level = [[session levels] lastObject];
            set_held_modifier_flags(NSCommandKeyMask);
            [session pickItem:item_titled(level, @"inside")];
        }];
        [NSMenu popUpContextMenu:menu_ withEvent:nil forView:nil];
    }
    // The text that a popup adds to the log file and to standard output.
    struct Output {
        Lines file, standard;
    };
    Output output_of_popup() {
        fflush(nullptr);
        const size_t before = test::read_file(log_file()).size();
        testing::internal::CaptureStdout();
        pop_up();
        const std::string standard = testing::internal::GetCapturedStdout();
        fflush(nullptr);
        const std::string file = test::read_file(log_file()).substr(before);
        return {lines_of(file, names_), lines_of(standard, names_)};
    }
    // The lines before the settings are read, and the lines after.
    Lines first_lines() {
        return {"Delvio: Class popup no font HOST : TContextMenu",
                "Delvio: Info: [menu = MENU, delegate = HOST, dvdv = DVDV]"};
    }
    Lines other_lines();

    static std::string load_log_;
    NSAutoreleasePool* pool_;
    test::TempFolder folder_;
    WalkingTracker* tracker_;
    RecordingHost* host_;
    TContextMenu* menu_;
    id controller_;
    Names names_;
};

std::string Bundle::load_log_;

Lines Bundle::other_lines() {
    const std::string a = folder_.path("a"), text = folder_.path("text");
    NSURL* urls[] = {[NSURL fileURLWithPath:[NSString stringWithUTF8String:a.c_str()]],
                     [NSURL fileURLWithPath:[NSString stringWithUTF8String:text.c_str()]]};
    const char* files = [[[NSArray arrayWithObjects:urls count:2] description] UTF8String];
    const std::string description = [[menu_ description] UTF8String];
    const std::string separator_title =
        [[static_cast<NSMenuItem*>([NSMenuItem separatorItem]) title] UTF8String];
    const std::string separator =
        "Delvio: Add item '" + separator_title + "' to menu MENU [root = MENU]\n";
    const std::string level_separator =
        "Delvio: Add item '" + separator_title + "' to menu * [root = MENU]\n";
    std::ostringstream expected;
    expected
        << "Delvio: Enabling event tap\n"
           "Delvio: Event tap status: 1\n"
           "Delvio: Sep submenu: 0 Delegate: HOST\n"
           "Delvio: Adding user directories: (nil)\n"
           "Delvio: Creating open-with menu..\n"
           "Delvio: Creating running apps list: (nil) 0\n"
           "Delvio: Done handling user dirs\n"
           "Delvio: Inserting items (nil) into menu MENU..\n"
           "Delvio: Done updating menu\n"
        << separator
        << "Delvio: Created menu MENU for main menu MENU\n"
           // The host's delegate is made to fill the menu.
           "Delvio: Forward menuWillOpen: 1\n"
           "Delvio: Forward menuNeedsUpdate: 1\n"
           "Delvio: Re-entrant [self = MENU, menu = MENU, self-delegate = DVDV, delegate = DVDV, "
           "dvdv = DVDV]\n"
        << "Delvio: Menu is [r]: " << description
        << "\n"
           "Delvio: Forward menuWillOpen: 1\n"
           "Delvio: Forward menuNeedsUpdate: 1\n"
           // The menu opens.
           "Delvio: Forward menuNeedsUpdate: 1\n"
           "Delvio: Forward menuWillOpen: 1\n"
           "Delvio: TCONTEXTMENU configureWith NODES * windowController (nil) container (nil)\n"
        << "Delvio: Set selected files. Have URLS: 0 Is invoked: 1  Files: " << files
        << "\n"
           "Delvio: Handling selected files..\n"
        << "Delvio: is URL? 1 : " << [[urls[0] description] UTF8String] << "\n"
        << "Delvio: Add folder '" << a << "'\n"
        << "Delvio: is URL? 1 : " << [[urls[1] description] UTF8String]
        << "\n"
           "Delvio: Add   file 'text'\n"
           "Delvio: Did get any URLs? 1\n"
           "Delvio: Updating menu..\n"
           "Delvio: Order: 1 Ptrs: (nil) | * * | * *\n"
           "Delvio: Inserting items * into menu MENU..\n"
           "Delvio: Add item 'a' to menu MENU [root = MENU]\n"
        << separator
        << "Delvio: Add item 'text' to menu MENU [root = MENU]\n"
           "Delvio: Add item 'text' to menu MENU [root = MENU]\n"
           "Delvio: Done updating menu\n"
        << separator
        << "Delvio: Done updating menu..\n"
           "Delvio: Added 2 items using new-style selection-detection\n"
           // The file is highlighted, then nothing, then the folder, which opens.
           "Delvio: Highlight: MENU item: *\n"
           "Delvio: Forward menu:willHighlightItem: 1\n"
           "Delvio: Highlight: MENU item: (nil)\n"
           "Delvio: No item. Hiding preview..\n"
           "Delvio: Highlight: MENU item: *\n"
           "Delvio: Forward menu:willHighlightItem: 1\n"
           "Delvio: Forward menuNeedsUpdate: 1\n"
           "Delvio: Building new level: * *\n"
           "moveCopyElem: * parent: * pparent: 0 name: a\n"
           "Delvio: Populating menu with *; already populated? 0\n"
           "Delvio: Inserting items * into menu *..\n"
           "Delvio: Add item 'Move selection here' to menu * [root = MENU]\n"
           "Delvio: Add item 'Copy selection here' to menu * [root = MENU]\n"
           "Delvio: Add item 'Alias selection here' to menu * [root = MENU]\n"
        << level_separator
        << "Delvio: Add item 'inside' to menu * [root = MENU]\n"
           "Delvio: Add item 'inside' to menu * [root = MENU]\n"
           "Delvio: Add item 'inside' to menu * [root = MENU]\n"
           "Delvio: Done updating menu\n"
           "Delvio: Level built: * *\n"
           // Both levels close, then the pick.
           "Delvio: Forward menuDidClose: 1\n"
           "Delvio: Forward menuDidClose: 1\n"
           "Delvio: Selected item *\n"
           "Delvio: The selected item has title 'inside' and flags 0\n"
           "Delvio: Selected item with command key down - is drag tap not working?\n"
        << "Delvio: Menu is now [r]: " << description
        << "\n"
           "Delvio: Disabling event tap\n"
           "Delvio: Event tap status: 0\n"
           "Delvio: Free'ing trees; root = *, forest = (nil) open_with = (nil), move_copy = *, "
           "running_apps = (nil)\n"
           "Delvio: Free'ing menus and removing event handlers\n"
           "Delvio: Class popup no-font out\n";
    return lines_of(expected.str(), {});
}

Lines joined(Lines lines, const Lines& more) {
    lines.insert(lines.end(), more.begin(), more.end());
    return lines;
}

// Compared as one text, so that a failure shows the lines that differ.
std::string text_of(const Lines& lines) {
    std::string text;
    for (const std::string& line : lines) text += line + "\n";
    return text;
}

}  // namespace

TEST_F(Bundle, AnswersAllThatHostsAskAboutItsItems) { EXPECT_STREQ(missing_answer(), nullptr); }

TEST_F(Bundle, IsKnownByItsInformation) {
    NSBundle* bundle = [NSBundle bundleForClass:objc_getClass("DVDelvio")];
    EXPECT_STREQ([[bundle bundleIdentifier] UTF8String], "org.delvio.Delvio");
    EXPECT_STREQ([[[bundle infoDictionary] objectForKey:@"CFBundleVersion"] UTF8String],
                 DELVIO_VERSION);
}

TEST_F(Bundle, ExportsItsEntryAlone) {
    void* code = dlopen(DELVIO_BUNDLE "/Delvio", RTLD_NOW | RTLD_NOLOAD);
    ASSERT_NE(code, nullptr);
    EXPECT_NE(dlsym(code, "dv_load_delvio"), nullptr);
    for (const char* hidden : {"dvdprintf", "dv_build_tree", "MethodSwizzle", "is_loaded"}) {
        EXPECT_EQ(dlsym(code, hidden), nullptr) << hidden;
    }
    dlclose(code);
}

TEST_F(Bundle, LogsItsLoading) {
    const Lines expected = {"Delvio: Checking if this is the Finder..",
                            "Delvio: This is the Finder",
                            "Delvio-SLSA! Is loaded: 0 Is Finder: 1 Is 64-bit: 1",
                            "Delvio: Checking if this is the Finder..",
                            "Delvio: This is the Finder",
                            "Delvio: Version " DELVIO_VERSION " loading..",
                            "Delvio-SLSA: Swizzling",
                            "Delvio: Swizzle * * [* *] 0",
                            "Delvio: Swizzle * * [* *] 0",
                            "Delvio: Swizzle * * [* *] 1",
                            "Delvio: Swizzle * * [* *] 1",
                            "Delvio: Swizzle * * [* *] 1",
                            "Delvio: Got TContextMenu class: CLASS",
                            "Delvio: Swizzle * * [* *] 1",
                            "Delvio: Swizzle * * [* *] 1",
                            "Delvio: Successfully swizzled TContextMenu's method.",
                            "Delvio: Tap: * Source: *",
                            "Delvio: Created runloop source and mach port ref",
                            "Delvio-SLSA: The deed is done."};
    EXPECT_EQ(text_of(lines_of(load_log_, names_)), text_of(expected));
}

TEST_F(Bundle, LogsAPopupToTheFileThenToStandardOutputThenNowhere) {
    set_log_level(2);
    pop_up();
    Output output = output_of_popup();
    EXPECT_EQ(text_of(output.file), text_of(joined(first_lines(), other_lines())));
    EXPECT_EQ(text_of(output.standard), text_of(Lines()));

    set_log_level(1);
    output = output_of_popup();
    EXPECT_EQ(text_of(output.file), text_of(joined(first_lines(), {"Delvio: Closing log."})));
    EXPECT_EQ(text_of(output.standard), text_of(other_lines()));

    set_log_level(0);
    output = output_of_popup();
    EXPECT_EQ(text_of(output.file), text_of(Lines()));
    EXPECT_EQ(text_of(output.standard), text_of(first_lines()));
    output = output_of_popup();
    EXPECT_EQ(text_of(output.file), text_of(Lines()));
    EXPECT_EQ(text_of(output.standard), text_of(Lines()));
}
