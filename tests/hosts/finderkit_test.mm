#include <gtest/gtest.h>

#include <host/forced_preferences.h>
#include <host/memory_reserve.h>
#include <host/process.h>
#include <AppKit/AppKit.h>
#include <Carbon/Processes.h>
#include <objc/runtime.h>
#include <stdint.h>

#include "finderkit/asked_settings.h"
#include "finderkit/context_menu.h"
#include "finderkit/open_problems.h"
#include "finderkit/plug_in.h"
#include "finderkit/settings_file.h"
#include "support/temp_folder.h"

// A sanitizer would end the program for want of memory, which is what is tried here.
extern "C" const char* __asan_default_options() { return "allocator_may_return_null=1"; }

namespace {

NSArray* nodes_of(std::initializer_list<const char*> paths) {
    TFENodeVector vector;
    for (const char* path : paths) vector.nodes.push_back({path});
    return [NSArray FINodesFromFENodeVector:&vector];
}

NSString* path_of(NSArray* nodes, NSUInteger index) {
    return [[[nodes objectAtIndex:index] url] path];
}

OSType signature() {
    ProcessSerialNumber number = {};
    ProcessInfoRec info = {};
    info.processInfoLength = sizeof info;
    GetCurrentProcess(&number);
    GetProcessInformation(&number, &info);
    return info.processSignature;
}

TEST(Nodes, KeepTheOrderAndAnswerFileUrls) {
    NSArray* nodes = nodes_of({"/tmp/b c", "/tmp/a"});
    ASSERT_EQ([nodes count], 2u);
    EXPECT_TRUE([[[nodes objectAtIndex:0] url] isFileURL]);
    EXPECT_TRUE([path_of(nodes, 0) isEqual:@"/tmp/b c"]);
    EXPECT_TRUE([path_of(nodes, 1) isEqual:@"/tmp/a"]);
}

TEST(Nodes, KeepPercentSignsQuestionMarksAndLetters) {
    NSArray* nodes = nodes_of({"/tmp/100%41?#;\xc3\xa4"});
    EXPECT_STREQ([path_of(nodes, 0) UTF8String], "/tmp/100%41?#;\xc3\xa4");
}

TEST(Nodes, OfANullVectorAreNone) {
    EXPECT_EQ([[NSArray FINodesFromFENodeVector:nullptr] count], 0u);
}

TEST(Nodes, WhoseNameIsNotUtf8HaveAUrlAllTheSame) {
    NSArray* nodes = nodes_of({"/tmp/bad\xff", "/tmp/good"});
    EXPECT_NE([[nodes objectAtIndex:0] url], nil);
    EXPECT_TRUE([path_of(nodes, 1) isEqual:@"/tmp/good"]);
}

TEST(EscapeKey, ClosesWhatTheSettingSays) {
    CFStringRef key = (CFStringRef) @(escape_closes_setting);
    CFStringRef domain = (CFStringRef) @(settings_domain);
    EXPECT_FALSE(escape_closes_one_level());
    force_preference(key, @"level", domain);
    EXPECT_TRUE(escape_closes_one_level());
    force_preference(key, @"all", domain);
    EXPECT_FALSE(escape_closes_one_level());
    force_preference(key, nullptr, domain);
}

TEST(ContextMenu, KeepsWhatItIsConfiguredWith) {
    TContextMenu* menu = [[[TContextMenu alloc] initWithTitle:@""] autorelease];
    EXPECT_EQ([menu nodes], nil);
    TFENodeVector vector{{{"/tmp/a"}}};
    [menu configureWithNodes:&vector windowController:@"controller" container:YES];
    vector.nodes.clear();
    EXPECT_EQ([[menu nodes] count], 1u);
    EXPECT_TRUE([[menu windowController] isEqual:@"controller"]);
    EXPECT_TRUE([menu isContainer]);
}

TEST(ContextMenu, OwnsItsRemovalOfAllItems) {
    const Method own = class_getInstanceMethod([TContextMenu class], @selector(removeAllItems));
    const Method inherited = class_getInstanceMethod([NSMenu class], @selector(removeAllItems));
    EXPECT_NE(own, inherited);
    TContextMenu* menu = [[[TContextMenu alloc] initWithTitle:@""] autorelease];
    [menu addItemWithTitle:@"a" action:NULL keyEquivalent:@""];
    [menu addItemWithTitle:@"b" action:NULL keyEquivalent:@""];
    [menu removeAllItems];
    EXPECT_EQ([menu numberOfItems], 0);
}

TEST(ContextMenu, TakesAByteForTheContainerFlag) {
    const Method method = class_getInstanceMethod(
        [TContextMenu class], @selector(configureWithNodes:windowController:container:));
    NSMethodSignature* types =
        [NSMethodSignature signatureWithObjCTypes:method_getTypeEncoding(method)];
    NSUInteger size = 0;
    NSGetSizeAndAlignment([types getArgumentTypeAtIndex:4], &size, NULL);
    EXPECT_EQ(size, 1u);
}

struct PlugIn : testing::Test {
    void TearDown() override { unsetenv("DELVIO_BUNDLE"); }
    test::TempFolder folder;
    std::string problem;
};

TEST_F(PlugIn, IsFoundByTheEnvironment) {
    setenv("DELVIO_BUNDLE", folder.folder("Other.bundle").c_str(), 1);
    EXPECT_EQ(find_plug_in(&problem), folder.path("Other.bundle"));
}

TEST_F(PlugIn, ThatIsNotWhereTheEnvironmentSaysIsNotSoughtElsewhere) {
    setenv("DELVIO_BUNDLE", folder.path("Other.bundle").c_str(), 1);
    EXPECT_EQ(find_plug_in(&problem), "");
    EXPECT_NE(problem.find(folder.path("Other.bundle")), std::string::npos);
}

TEST_F(PlugIn, WithoutCodeIsRefusedByName) {
    const std::string bundle = folder.folder("Empty.bundle");
    EXPECT_FALSE(load_plug_in(bundle, &problem));
    EXPECT_NE(problem.find(bundle), std::string::npos);
    EXPECT_EQ(problem.find('\n'), std::string::npos);
}

TEST_F(PlugIn, WhoseCodeIsBrokenIsRefusedWithTheReason) {
    folder.file("Broken.bundle/Broken", "this is no library");
    folder.file("Broken.bundle/Resources/Info-gnustep.plist", "{ NSExecutable = Broken; }");
    EXPECT_FALSE(load_plug_in(folder.path("Broken.bundle"), &problem));
    EXPECT_EQ(problem.find('\n'), std::string::npos);
}

TEST_F(PlugIn, IsEntered) {
    EXPECT_TRUE(load_plug_in(PROBE_BUNDLE, &problem)) << problem;
    EXPECT_STREQ(getenv("PROBE_PLUG_IN"), "entered");
}

TEST(Picks, ForWhichMemoryWasShortAreToldOf) {
    std::vector<OpenProblem> problems;
    listen_for_open_problems([&](const OpenProblem& problem) { problems.push_back(problem); });
    NSMenuItem* item = [[[NSMenuItem alloc] initWithTitle:@"a" action:nullptr
                                            keyEquivalent:@""] autorelease];
    const auto pick = [&](size_t needed) {
        NSNotificationCenter* center = [NSNotificationCenter defaultCenter];
        NSDictionary* info = [NSDictionary dictionaryWithObject:item forKey:@"MenuItem"];
        [center postNotificationName:NSMenuWillSendActionNotification object:nil userInfo:info];
        free(zeroed_memory(1, needed));
        [center postNotificationName:NSMenuDidSendActionNotification object:nil userInfo:info];
    };
    pick(100);
    EXPECT_EQ(problems.size(), 0u);
    pick(SIZE_MAX / 2);
    pick(100);
    ASSERT_EQ(problems.size(), 1u);
    EXPECT_EQ(problem_line(problems[0]), "not everything could be done: Cannot allocate memory");
    listen_for_open_problems({});
}

TEST_F(PlugIn, LoadingMakesThisProcessAFinder) {
    declare_process_signature(0);
    load_plug_in(folder.folder("Empty.bundle"), &problem);
    EXPECT_EQ(signature(), static_cast<OSType>('MACS'));
}

}  // namespace
