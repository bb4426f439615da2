#include "menus/DVDelvio+Roots.h"

#include <host/forced_preferences.h>
#include <stdio.h>
#include <stdlib.h>

#include "items/DVMenu.h"
#include "items/DVMenuItem.h"
#include "menus/DVDelvio+Population.h"
#include "plugin/menu_fixture.h"
#include "plugin/menus/scanned_folders.h"
#include "plugin/replaced_method.h"
#include "tree/dv_prefs.h"
#include "tree/dv_roots.h"
#include "tree/dv_scan.h"
#include "tree/dv_tree.h"

namespace {

using test::item_titled;
using test::string_of;
using test::titles_of;
using test::Titles;

Titles paths_of(const dv_tree_t* chain) {
    Titles paths;
    for (; chain; chain = chain->next) {
        char* path = dv_path_for_elem(chain, 0, 1);
        paths.push_back(path);
        free(path);
    }
    return paths;
}

NSData* bookmark_of(const std::string& path) {
    NSString* address = [[NSURL fileURLWithPath:string_of(path)] absoluteString];
    return [address dataUsingEncoding:NSUTF8StringEncoding];
}

// The parts of a running application that the plug-in reads.
NSArray* running = nil;
NSArray* running_applications(id, SEL) { return running; }

}  // namespace

@interface RunningStub : NSObject {
  @private
    NSString* _localizedName;
    NSURL* _bundleURL;
    NSURL* _executableURL;
    NSInteger _activationPolicy;
}
@property (retain) NSString* localizedName;
@property (retain) NSURL* bundleURL;
@property (retain) NSURL* executableURL;
@property (assign) NSInteger activationPolicy;
@end

@implementation RunningStub
@synthesize localizedName = _localizedName;
@synthesize bundleURL = _bundleURL;
@synthesize executableURL = _executableURL;
@synthesize activationPolicy = _activationPolicy;

- (void)dealloc {
    [_localizedName release];
    [_bundleURL release];
    [_executableURL release];
    [super dealloc];
}

@end

namespace {

class Roots : public test::MenuTest {
  protected:
    ~Roots() override { forget_recent(); }

    NSArray* array_of(const std::vector<std::string>& entries) {
        NSMutableArray* array = [NSMutableArray array];
        for (const std::string& entry : entries) [array addObject:string_of(entry)];
        return array;
    }
    // What a take-over writes to standard output.
    std::string output_of_take_over() {
        testing::internal::CaptureStdout();
        take_over();
        fflush(stdout);
        return testing::internal::GetCapturedStdout();
    }
    std::string debug_lines_of_take_over() {
        set("logLevel", 1);
        const std::string lines = output_of_take_over();
        set("logLevel", 0);
        return lines;
    }

    // An application bundle with its own identifier.
    std::string application(const std::string& name) {
        folder_.file(name + "/Resources/Info-gnustep.plist",
                     "{ CFBundleIdentifier = \"org.example.Tool\"; }");
        return folder_.path(name);
    }
    void set_recent(id value) {
        force_preference(CFSTR("RecentDocuments"), (CFPropertyListRef)value,
                         CFSTR("org.example.Tool.LSSharedFileList"));
    }
    void set_recent_bookmarks(NSArray* bookmarks) {
        NSMutableArray* items = [NSMutableArray array];
        for (id bookmark in bookmarks) [items addObject:@{@"Bookmark" : bookmark}];
        set_recent(@{@"CustomListItems" : items});
    }
    void forget_recent() { set_recent(nil); }
};

}  // namespace

TEST_F(Roots, SeparatorsMarkTheFolderBeforeThem) {
    const std::string a = folder_.folder("A"), b = folder_.folder("B");
    set("folders", array_of({"-", a, "-", "-", b}));
    NSMenu* menu = nil;
    const std::string log = log_of([&] { menu = take_over(); });
    const void* folders = dv_->folders;
    std::vector<std::string> lines = {
        test::formatted("Delvio: Adding user directories: %p", folders),
        "Delvio: There are 5 paths to consider."};
    const auto entry = [&](int index) {
        lines.push_back(test::formatted("Delvio: Item %d: %p", index,
                                        CFArrayGetValueAtIndex(dv_->folders, index)));
    };
    entry(0);
    lines.push_back("Delvio: Attempting to add user dir '-'");
    entry(1);
    lines.push_back("Delvio: Attempting to add user dir '" + a + "'");
    entry(2);
    lines.push_back("Delvio: Inserting separator");
    entry(3);
    lines.push_back("Delvio: Inserting separator");
    entry(4);
    lines.push_back("Delvio: Creating open-with menu..");
    lines.push_back("Delvio: Done handling user dirs");
    test::expect_lines(log, lines);
    EXPECT_LT(log.find("to add user dir '" + a), log.find("Inserting separator"));
    ASSERT_EQ(paths_of(dv_->custom), Titles({a + "/", b + "/"}));
    EXPECT_EQ(dv_->custom->origin,
              static_cast<uint32_t>(DV_ORIGIN_USER_FOLDER | DV_ORIGIN_SEPARATOR_AFTER));
    EXPECT_EQ(dv_->custom->next->origin, static_cast<uint32_t>(DV_ORIGIN_USER_FOLDER));
    EXPECT_EQ(titles_of(menu), Titles({"A", "-", "B", "-"}));
}

TEST_F(Roots, SeparatorsNeedNoLogging) {
    set("folders", array_of({folder_.folder("A"), "-", folder_.folder("B")}));
    EXPECT_EQ(output_of_take_over(), "");
    EXPECT_TRUE(dv_->custom->origin & DV_ORIGIN_SEPARATOR_AFTER);
}

TEST_F(Roots, ASeparatorWithoutAFolderBeforeItIsIgnored) {
    set("folders", array_of({"-", "-"}));
    EXPECT_EQ(titles_of(take_over()), Titles({"-"}));
    EXPECT_EQ(dv_->custom, nullptr);
}

TEST_F(Roots, AUserFolderIsALevelThatIsRead) {
    const std::string a = folder_.folder("A");
    folder_.file("A/inside");
    set("folders", array_of({a + "/"}));
    NSMenu* menu = take_over();
    ASSERT_NE(dv_->custom->children, nullptr);
    EXPECT_EQ(dv_->custom->children->origin, static_cast<uint32_t>(DV_ORIGIN_USER_FOLDER));
    EXPECT_EQ(titles_of(open(menu, "A")),
              Titles({"Move selection here", "Copy selection here", "Alias selection here", "-",
                      "inside", "inside", "inside"}));
}

TEST_F(Roots, AUserFolderThatIsAFileOrALinkIsASingleItem) {
    const std::string file = folder_.file("text");
    const std::string target = folder_.folder("target");
    folder_.file("target/inside");
    const std::string link = folder_.link("link", target);
    set("folders", array_of({file, link}));
    set("hideMoveCopyAlias", 1);
    NSMenu* menu = take_over();
    ASSERT_NE(dv_->custom, nullptr);
    EXPECT_EQ(paths_of(dv_->custom).front(), file);
    EXPECT_NE(item_titled(menu, "text"), nil);
    EXPECT_EQ(titles_of(open(menu, "link")), Titles({"inside", "inside", "inside"}));
}

TEST_F(Roots, BadEntriesAreSkippedWithTheirMessagesAndTheOthersStay) {
    const std::string a = folder_.folder("A"), b = folder_.folder("B");
    NSString* longest = [@"/" stringByPaddingToLength:DV_PATH_BUFFER_SIZE
                                           withString:@"x"
                                      startingAtIndex:0];
    set("folders",
        @[ string_of(a), @7, @"", longest, string_of(folder_.path("missing")), string_of(b) ]);
    const std::string lines = debug_lines_of_take_over();
    EXPECT_EQ(paths_of(dv_->custom), Titles({a + "/", b + "/"}));
    EXPECT_EQ(titles_of(host_menu_), Titles({"A", "B", "-"}));
    for (const std::string& message : {
             std::string("Delvio: There are 6 paths to consider.\n"),
             std::string("Delvio: Error, user path is not a CFString?\n"),
             std::string("Delvio: Attempting to add user dir ''\n"),
             std::string("Delvio: Failed to add a custom directory - CFStringGetCString returns "
                         "true, but string length is 0.\n"),
             std::string("Delvio: Warning, failed to add custom directory: String conversion "
                         "failed!\n"),
             "Delvio: Attempting to add user dir '" + folder_.path("missing") + "'\n",
             std::string("Delvio: No tree built; creating single item instead.\n"),
             "Delvio: Root:  NONE  - " + folder_.path("missing") + " | 0\n",
             "Delvio: Root: A - " + a + " | 0\n",
         }) {
        EXPECT_NE(("\n" + lines).find("\n" + message), std::string::npos) << message << "not in\n"
                                                                          << lines;
    }
}

TEST_F(Roots, TwoMessagesOfBadEntriesNeedNoLogging) {
    NSString* longest = [@"/" stringByPaddingToLength:DV_PATH_BUFFER_SIZE
                                           withString:@"x"
                                      startingAtIndex:0];
    set("folders", @[ @7, @"", longest ]);
    EXPECT_EQ(output_of_take_over(),
              "Delvio: Failed to add a custom directory - CFStringGetCString returns true, but "
              "string length is 0.\n"
              "Delvio: Warning, failed to add custom directory: String conversion failed!\n");
    EXPECT_EQ(dv_->custom, nullptr);
}

TEST_F(Roots, AFoldersValueThatIsNoListGivesNoFolders) {
    set("folders", string_of(folder_.folder("A")));
    EXPECT_EQ(titles_of(take_over()), Titles({"-"}));
    EXPECT_EQ(dv_->custom, nullptr);
}

TEST_F(Roots, ScanFlagsAndOriginOfTheCallerAreAdded) {
    const std::string a = folder_.folder("A");
    folder_.folder("A/folder");
    const std::string file = folder_.file("A/text");
    set("folders", array_of({a, file}));
    take_over();
    dv_tree_t *current = nullptr, *tail = nullptr, *head = nullptr;
    dv_add_user_directories(dv_, &current, &tail, &head, DV_SCAN_FOLDERS_ONLY, DV_ORIGIN_MOVE_COPY);
    ASSERT_EQ(paths_of(head), Titles({a + "/", file}));
    EXPECT_EQ(current, tail);
    EXPECT_EQ(tail, head->next);
    EXPECT_EQ(head->origin, static_cast<uint32_t>(DV_ORIGIN_USER_FOLDER | DV_ORIGIN_MOVE_COPY));
    EXPECT_EQ(paths_of(head->children), Titles({a + "/folder"}));
    dv_free_tree(head);
}

TEST_F(Roots, AChainThatIsStillThereIsWarnedOf) {
    set("folders", array_of({folder_.folder("A")}));
    take_over();
    set("folders", array_of({}));
    set("logLevel", 1);
    dv_read_prefs(dv_, 0);
    dv_tree_t* before = dv_->custom;
    testing::internal::CaptureStdout();
    [controller_ createUserTrees];
    fflush(stdout);
    const std::string lines = testing::internal::GetCapturedStdout();
    EXPECT_EQ(lines.rfind("Delvio: WARNING; we still have a valid custom-folders pointer..\n", 0),
              0u)
        << lines;
    EXPECT_EQ(dv_->custom, before);
}

TEST_F(Roots, AChainThatIsStillThereIsKeptWithoutALineWhereNothingIsLogged) {
    set("folders", array_of({folder_.folder("A")}));
    take_over();
    set("folders", array_of({}));
    dv_read_prefs(dv_, 0);
    dv_tree_t* before = dv_->custom;
    EXPECT_EQ(log_of([&] { [controller_ createUserTrees]; }, 0), "");
    EXPECT_EQ(dv_->custom, before);
}

TEST_F(Roots, TheOpenWithFolderIsALevelThatIsRead) {
    const std::string path = folder_.folder("Prögramme");
    folder_.file("Prögramme/Edit.app/inside");
    set("open_with_path", string_of(path));
    take_over();
    ASSERT_EQ(paths_of(dv_->open_with), Titles({path + "/"}));
    EXPECT_EQ(dv_->open_with->origin, static_cast<uint32_t>(DV_ORIGIN_APP_LIST));
    EXPECT_EQ(paths_of(dv_->open_with->children), Titles({path + "/Edit.app"}));
    EXPECT_EQ(dv_->open_with->children->origin, static_cast<uint32_t>(DV_ORIGIN_APP_LIST));
}

TEST_F(Roots, AnEmptyOrTooLongOrAbsentOpenWithPathMeansApplications) {
    dv_tree_t* standard = dv_build_tree("/Applications", 0, 1, 0, DV_ORIGIN_APP_LIST);
    const Titles expected = paths_of(standard);
    dv_free_tree(standard);
    NSString* longest = [@"/" stringByPaddingToLength:DV_PATH_BUFFER_SIZE
                                           withString:@"/"
                                      startingAtIndex:0];
    for (id path in @[ @"", longest, @7 ]) {
        set("open_with_path", path);
        take_over();
        EXPECT_EQ(paths_of(dv_->open_with), expected);
        release();
    }
}

TEST_F(Roots, WithoutAFolderOfItsOwnApplicationsIsRead) {
    for (id path in @[ @"", @7 ]) {
        set("open_with_path", path);
        test::take_scanned_folders();
        take_over();
        EXPECT_EQ(test::take_scanned_folders(), Titles({"/Applications/"}));
        release();
    }
}

TEST_F(Roots, TheOpenWithLevelFollowsTheSettings) {
    const std::string path = folder_.folder("apps");
    for (const char* name : {"apps/.Hidden.app", "apps/B.app", "apps/c"}) folder_.folder(name);
    folder_.file("apps/B.app/inside");
    set("open_with_path", string_of(path));
    take_over();
    EXPECT_EQ(paths_of(dv_->open_with->children), Titles({path + "/c", path + "/B.app"}));
    release();
    set("show_hidden_files", 1);
    set("sort_order", 1);
    take_over();
    EXPECT_EQ(paths_of(dv_->open_with->children),
              Titles({path + "/.Hidden.app", path + "/B.app", path + "/c"}));
}

TEST_F(Roots, AFullOpenWithSlotIsKept) {
    set("open_with_path", string_of(folder_.folder("apps")));
    take_over();
    dv_tree_t* before = dv_->open_with;
    [controller_ createUserTrees];
    EXPECT_EQ(dv_->open_with, before);
}

TEST_F(Roots, AllSlotsAreEmptyAfterTheMenu) {
    set("open_with_path", string_of(folder_.folder("apps")));
    set("folders", array_of({folder_.folder("A")}));
    take_over();
    release();
    EXPECT_EQ(dv_->custom, nullptr);
    EXPECT_EQ(dv_->open_with, nullptr);
    EXPECT_EQ(dv_->running_apps, nullptr);
    EXPECT_EQ(dv_->copies, nullptr);
}

TEST_F(Roots, RunningApplicationsAreLeftOutWhenAsked) {
    set("runningAppsInOpenWithMenu", 0);
    const std::string lines = debug_lines_of_take_over();
    EXPECT_EQ(dv_->running_apps, nullptr);
    EXPECT_NE(lines.find("\nDelvio: Creating running apps list: (nil) 0\n"), std::string::npos);
    EXPECT_EQ(lines.find("Delvio: Added "), std::string::npos);
}

namespace {

class RunningRoots : public Roots {
  protected:
    RunningRoots() { running = applications_; }
    ~RunningRoots() override {
        running = nil;
        [applications_ release];
    }
    void add(const char* name, const std::string& bundle, const std::string& executable,
             NSInteger policy = NSApplicationActivationPolicyRegular) {
        RunningStub* stub = [[RunningStub new] autorelease];
        [stub setLocalizedName:string_of(name)];
        if (!bundle.empty()) [stub setBundleURL:[NSURL fileURLWithPath:string_of(bundle)]];
        if (!executable.empty()) {
            [stub setExecutableURL:[NSURL fileURLWithPath:string_of(executable)]];
        }
        [stub setActivationPolicy:policy];
        [applications_ addObject:stub];
    }

    NSMutableArray* applications_ = [NSMutableArray new];
    test::ReplacedMethod workspace_ {
        [NSWorkspace class], @selector(runningApplications), running_applications
    };
};

}  // namespace

TEST_F(RunningRoots, RegularApplicationsAreListedByNameWithTheirBundlesOrPrograms) {
    const std::string bundle = folder_.folder("Zed.app"), inside = folder_.file("Zed.app/zed");
    const std::string program = folder_.file("mill");
    add("zed", bundle, inside);
    add("mill", "", program);
    add("agent", folder_.folder("Agent.app"), "", NSApplicationActivationPolicyAccessory);
    add("daemon", folder_.folder("Daemon.app"), "", NSApplicationActivationPolicyProhibited);
    add("nowhere", "", "");
    add("gone", folder_.path("Gone.app"), "");
    const std::string lines = debug_lines_of_take_over();
    EXPECT_EQ(paths_of(dv_->running_apps), Titles({program, bundle}));
    for (dv_tree_t* elem = dv_->running_apps; elem; elem = elem->next) {
        EXPECT_EQ(elem->origin, static_cast<uint32_t>(DV_ORIGIN_APP_LIST));
    }
    char added[100];
    snprintf(added, sizeof added, "Delvio: Added 3 items to running apps list [%p]\n",
             dv_->running_apps);
    const std::string expected = "Delvio: Creating running apps list: (nil) 1\n"
                                 "Delvio: Got running app path: " +
                                 folder_.path("Gone.app") +
                                 "\nDelvio: Got running app path: " + program +
                                 "\nDelvio: Got running app path: " + bundle + "\n" + added +
                                 "Delvio: Done handling user dirs\n";
    EXPECT_NE(lines.find("\n" + expected), std::string::npos) << lines;
}

TEST_F(RunningRoots, AFilledSlotIsKept) {
    add("one", folder_.folder("One.app"), "");
    take_over();
    dv_tree_t* before = dv_->running_apps;
    ASSERT_NE(before, nullptr);
    add("two", folder_.folder("Two.app"), "");
    [controller_ createRunningAppsList];
    EXPECT_EQ(dv_->running_apps, before);
    EXPECT_EQ(before->next, nullptr);
}

TEST_F(RunningRoots, HiddenProgramsFollowTheSettings) {
    const std::string hidden = folder_.folder("Hidden.app");
    ASSERT_TRUE(folder_.finder_info("Hidden.app", 0x4000)) << test::no_attributes;
    add("hidden", hidden, "");
    take_over();
    EXPECT_EQ(dv_->running_apps, nullptr);
    release();
    set("show_hidden_files", 2);
    take_over();
    EXPECT_EQ(paths_of(dv_->running_apps), Titles({hidden}));
}

TEST_F(Roots, AnApplicationOffersItsRecentDocumentsInTheirOrder) {
    const std::string tool = application("Tool.app");
    const std::string b = folder_.file("b.txt"), a = folder_.file("a.txt");
    set_recent_bookmarks(@[ bookmark_of(b), bookmark_of(folder_.path("gone")), bookmark_of(a) ]);
    NSMenu* menu = select({tool});
    DVMenuItem* item = static_cast<DVMenuItem*>(item_titled(menu, "Tool.app"));
    NSMenu* recent = open(item);
    EXPECT_EQ(titles_of(recent), Titles({"b.txt", "b.txt", "b.txt", "a.txt", "a.txt", "a.txt"}));
    dv_tree_t* copy = [static_cast<DVMenu*>(recent) tree];
    ASSERT_NE(dv_->copies, nullptr);
    // In front of it stands what the level would move to, were it a folder's.
    EXPECT_EQ(copy, dv_->copies->next);
    EXPECT_NE(copy, [item tree]);
    EXPECT_EQ(copy->children->origin, [item tree]->origin);
    EXPECT_EQ(copy->children->parent, copy);
    // The contents are behind Option, as usual.
    EXPECT_NE([test::alternate_of(menu, "Tool.app") submenu], nil);
}

TEST_F(Roots, RecentDocumentsThatAreHiddenAreLeftOut) {
    const std::string tool = application("Tool.app");
    const std::string a = folder_.file("a"), b = folder_.file("b");
    ASSERT_TRUE(folder_.finder_info("a", 0x4000)) << test::no_attributes;
    set_recent_bookmarks(@[ bookmark_of(a), bookmark_of(b) ]);
    take_over();
    dv_tree_t* elem = dv_build_single_elem(tool.c_str(), 0, 0);
    dv_tree_t* recent = [controller_ getRecentItemsForElem:elem];
    EXPECT_EQ(paths_of(recent), Titles({b}));
    dv_free_tree(recent);
    dv_free_tree(elem);
}

TEST_F(Roots, WithoutRecentDocumentsThereIsNoSubmenu) {
    const std::string tool = application("Tool.app");
    NSArray* values = @[
        @"text", @{}, @{@"CustomListItems" : @"text"},
        @{@"CustomListItems" : @[]},
        @{@"CustomListItems" : @[ @"text", @{}, @{@"Bookmark" : @"text"} ]},
        @{@"CustomListItems" : @[ @{@"Bookmark" : [NSData data]} ]},
        @{@"CustomListItems" : @[ @{@"Bookmark" : bookmark_of(folder_.path("gone"))} ]}
    ];
    for (id value in values) {
        set_recent(value);
        NSMenu* menu = select({tool});
        EXPECT_EQ([item_titled(menu, "Tool.app") submenu], nil) << [[value description] UTF8String];
        EXPECT_EQ(dv_->copies, nullptr);
        release();
    }
}

TEST_F(Roots, AnApplicationThatIsNoBundleHasNoRecentDocuments) {
    for (const char* name : {"program", "\xff"}) {
        const std::string path = folder_.path(name);
        dv_tree_t* elem = dv_create_elem(dv_create_single_dir(path.c_str()), nullptr, 0, 0);
        const std::string log =
            log_of([&] { EXPECT_EQ([controller_ getRecentItemsForElem:elem], nullptr); });
        const bool is_text = name[0] == 'p';
        EXPECT_EQ(log, "Delvio: No app bundle for path '" + (is_text ? path : "") + "'\n");
        EXPECT_EQ(log_of([&] { [controller_ getRecentItemsForElem:elem]; }, 0), "");
        dv_free_elem(elem);
    }
}

TEST_F(Roots, RecentDocumentsAreNotOfferedWhenAskedNotTo) {
    const std::string tool = application("Tool.app");
    set_recent_bookmarks(@[ bookmark_of(folder_.file("a")) ]);
    set("showRecentItems", 0);
    EXPECT_EQ([item_titled(select({tool}), "Tool.app") submenu], nil);
}

TEST_F(Roots, APackageHasNoRecentDocumentsAlthoughItIsABundle) {
    const std::string package = application("Tool.bundle");
    set_recent_bookmarks(@[ bookmark_of(folder_.file("a")) ]);
    NSMenu* menu = select({package});
    ASSERT_EQ(dv_->root->kind, DV_KIND_PACKAGE);
    EXPECT_EQ([item_titled(menu, "Tool.bundle") submenu], nil);
    EXPECT_EQ(dv_->copies, nullptr);
}

TEST_F(Roots, AnElementThatIsNoBundleHasNoRecentDocuments) {
    take_over();
    const std::string path = folder_.path("gone.app");
    dv_tree_t* elem = dv_create_elem(dv_create_single_dir(path.c_str()), "", 0, 0);
    set("logLevel", 1);
    dv_read_prefs(dv_, 0);
    testing::internal::CaptureStdout();
    EXPECT_EQ([controller_ getRecentItemsForElem:elem], nullptr);
    fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Delvio: No app bundle for path '" + path + "'\n");
    dv_free_tree(elem);
}
