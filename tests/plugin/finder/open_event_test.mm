#include "finder/dv_open.h"

#include <host/process.h>
#import <Foundation/Foundation.h>
#include <gtest/gtest.h>
#include <limits.h>

#include <string>
#include <vector>

#include "plugin/finder/carbon_trouble.h"
#include "plugin/tree_support.h"
#include "support/heap.h"
#include "support/temp_folder.h"

namespace {

FSRef reference(const std::string& path) {
    FSRef ref = {};
    EXPECT_EQ(FSPathMakeRef(reinterpret_cast<const UInt8*>(path.c_str()), &ref, nullptr), noErr);
    return ref;
}

std::string path_of(const FSRef& ref) {
    char path[PATH_MAX] = "";
    FSRefMakePath(&ref, reinterpret_cast<UInt8*>(path), sizeof path);
    return path;
}

template <typename Plain>
Plain attribute(const AppleEvent* event, AEKeyword keyword, DescType type) {
    Plain plain = {};
    EXPECT_EQ(AEGetAttributePtr(event, keyword, type, nullptr, &plain, sizeof plain, nullptr),
              noErr);
    return plain;
}

// The events that have arrived. Each event is read while it exists.
struct Finder {
    int events = 0;
    std::vector<std::string> paths;
};

void check_addressing(const AppleEvent* event) {
    EXPECT_EQ(attribute<FourCharCode>(event, keyEventClassAttr, typeType), 0x61657674u);  // aevt
    EXPECT_EQ(attribute<FourCharCode>(event, keyEventIDAttr, typeType), 0x6F646F63u);     // odoc
    EXPECT_EQ(attribute<OSType>(event, keyAddressAttr, typeApplSignature), 0x4D414353u);  // MACS
    EXPECT_NE(attribute<SInt16>(event, keyReturnIDAttr, typeSInt16), kAutoGenerateReturnID);
    EXPECT_EQ(attribute<SInt32>(event, keyTransactionIDAttr, typeSInt32), 0);
}

void check_sending(const AppleEvent* event) {
    EXPECT_FALSE(attribute<Boolean>(event, keyReplyRequestedAttr, typeBoolean));
    EXPECT_EQ(attribute<SInt32>(event, keyInteractLevelAttr, typeSInt32), 0);
    EXPECT_EQ(attribute<SInt32>(event, keyTimeoutAttr, typeSInt32), -1);
}

void check_parameters(const AppleEvent* event, Finder* finder) {
    long parameters = 0, items = 0;
    AECountItems(event, &parameters);
    EXPECT_EQ(parameters, 1);
    AEDesc list;
    AEKeyword keyword = 0;
    ASSERT_EQ(AEGetNthDesc(event, 1, typeWildCard, &keyword, &list), noErr);
    EXPECT_EQ(keyword, 0x2D2D2D2Du);              // ----
    EXPECT_EQ(list.descriptorType, 0x6C697374u);  // list
    AECountItems(&list, &items);
    for (long i = 1; i <= items; i++) {
        FSRef ref;
        DescType type = 0;
        Size size = 0;
        EXPECT_EQ(AEGetNthPtr(&list, i, typeWildCard, nullptr, &type, &ref, sizeof ref, &size),
                  noErr);
        EXPECT_EQ(type, 0x66737266u);  // fsrf
        EXPECT_EQ(size, 80);
        finder->paths.push_back(path_of(ref));
    }
    AEDisposeDesc(&list);
}

OSErr receive(const AppleEvent* event, AppleEvent*, void* refcon) {
    auto* finder = static_cast<Finder*>(refcon);
    finder->events++;
    check_addressing(event);
    check_sending(event);
    check_parameters(event, finder);
    return noErr;
}

class OpenEvent : public testing::Test {
  protected:
    OpenEvent() {
        declare_process_signature('MACS');
        AEInstallEventHandler(kCoreEventClass, kAEOpenDocuments, receive, &finder_, false);
    }
    ~OpenEvent() override {
        AERemoveEventHandler(kCoreEventClass, kAEOpenDocuments, receive, false);
        declare_process_signature(0);
        test::carbon_trouble = nullptr;
        [pool_ release];
    }
    static void run_loop() {
        [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode beforeDate:[NSDate date]];
    }
    NSAutoreleasePool* pool_ = [NSAutoreleasePool new];
    test::TempFolder folder_;
    Finder finder_;
};

TEST_F(OpenEvent, ReachesTheFinderAsOneFileReferenceInAList) {
    const std::string file = folder_.file("a file");
    const FSRef ref = reference(file);
    EXPECT_EQ(dv_send_open_to_finder(&ref), noErr);
    EXPECT_EQ(finder_.events, 0);
    run_loop();
    EXPECT_EQ(finder_.events, 1);
    EXPECT_EQ(finder_.paths, test::Names{file});
}

TEST_F(OpenEvent, ComesOneForEachCall) {
    const FSRef first = reference(folder_.folder("first")), second = reference(folder_.path());
    dv_send_open_to_finder(&first);
    dv_send_open_to_finder(&second);
    while (apple_events_are_waiting()) run_loop();
    EXPECT_EQ(finder_.paths, (test::Names{folder_.path("first"), folder_.path()}));
}

TEST_F(OpenEvent, ThatCannotBeSentIsNotReported) {
    declare_process_signature(0);
    const FSRef ref = reference(folder_.path());
    EXPECT_EQ(test::output_of([&] { EXPECT_EQ(dv_send_open_to_finder(&ref), noErr); }), "");
    run_loop();
    EXPECT_EQ(finder_.events, 0);
}

TEST_F(OpenEvent, ThatCannotBeMadeGivesTheErrorAndNoLine) {
    const FSRef ref = reference(folder_.path());
    const struct {
        const char* function;
        FourCharCode about;
    } steps[] = {
        {"AECreateDesc", 'sign'}, {"AECreateAppleEvent", 'odoc'}, {"AEPutParamDesc", '----'}};
    OSErr error = -1700;
    for (const auto& step : steps) {
        test::carbon_trouble = test::failing(step.function, --error, step.about);
        const auto send = [&] { EXPECT_EQ(dv_send_open_to_finder(&ref), error) << step.function; };
        EXPECT_EQ(test::output_of(send), "");
    }
    test::carbon_trouble = nullptr;
    run_loop();
    EXPECT_EQ(finder_.events, 0);
}

TEST_F(OpenEvent, LeavesNothingBehind) {
    const FSRef ref = reference(folder_.path());
    const auto round = [&] {
        NSAutoreleasePool* pool = [NSAutoreleasePool new];
        dv_send_open_to_finder(&ref);
        run_loop();
        finder_.paths.clear();
        [pool release];
    };
    for (int i = 0; i < 10; i++) round();
    const size_t before = test::memory_in_use();
    for (int i = 0; i < 200; i++) round();
    EXPECT_LT(test::memory_in_use(), before + 20000);
}

}  // namespace
