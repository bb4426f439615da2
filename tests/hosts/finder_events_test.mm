#include "finderkit/finder_events.h"

#include <Carbon/Carbon.h>
#include <host/process.h>
#import <Foundation/Foundation.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "finderkit/event_trace.h"
#include "support/app.h"
#include "support/recording_program.h"
#include "support/temp_folder.h"

namespace {

using Paths = std::vector<std::string>;

FSRef reference(const std::string& path) {
    FSRef ref = {};
    EXPECT_EQ(FSPathMakeRef(reinterpret_cast<const UInt8*>(path.c_str()), &ref, nullptr), noErr);
    return ref;
}

class FinderEvents : public testing::Test {
  protected:
    FinderEvents() : program_({"text/plain", "inode/directory", "application/x-zerosize"}) {
        test::start_application();
        declare_process_signature('MACS');
        unsetenv("DELVIO_TRACE");
        AEAddressDesc finder;
        AECreateDesc(typeApplSignature, &signature_, sizeof signature_, &finder);
        AECreateAppleEvent(kCoreEventClass, kAEOpenDocuments, &finder, kAutoGenerateReturnID,
                           kAnyTransactionID, &event_);
        AEDisposeDesc(&finder);
        AECreateList(nullptr, 0, false, &list_);
    }
    ~FinderEvents() override {
        AEDisposeDesc(&list_);
        AEDisposeDesc(&event_);
        AERemoveSpecialHandler(keyPreDispatch, nullptr, false);
        AERemoveEventHandler(kCoreEventClass, kAEOpenDocuments, nullptr, false);
        declare_process_signature(0);
        [pool_ release];
    }

    void add(const std::string& path) {
        const FSRef ref = reference(path);
        AEPutPtr(&list_, 0, typeFSRef, &ref, sizeof ref);
    }
    void send() {
        AEPutParamDesc(&event_, keyDirectObject, &list_);
        EXPECT_EQ(AESend(&event_, nullptr, kAENoReply, kAENormalPriority, kAEDefaultTimeout,
                         nullptr, nullptr),
                  noErr);
    }
    // The opened files, once there are this many.
    Paths opened(size_t count) {
        for (int i = 0; i < 3000 && program_.opened().size() < count; i++) usleep(20000);
        Paths paths = program_.opened();
        // Each file starts the program separately, so they come in any order.
        std::sort(paths.begin(), paths.end());
        return paths;
    }
    bool answer() { return answer_finder_events(&problem_); }

    const OSType signature_ = 'MACS';
    NSAutoreleasePool* pool_ = [NSAutoreleasePool new];
    test::TempFolder folder_;
    test::RecordingProgram program_;
    AppleEvent event_;
    AEDescList list_;
    std::string problem_;
};

TEST_F(FinderEvents, DocumentsAreOpenedOneByOne) {
    ASSERT_TRUE(answer());
    add(folder_.file("a.txt", "a"));
    add(folder_.folder("b"));
    send();
    EXPECT_EQ(program_.opened(), Paths{});
    finish_finder_events();
    EXPECT_EQ(opened(2), (Paths{folder_.path("a.txt"), folder_.path("b")}));
}

TEST_F(FinderEvents, ADocumentThatIsGoneDoesNotStopTheOthers) {
    ASSERT_TRUE(answer());
    add(folder_.file("gone.txt"));
    add(folder_.file("here.txt"));
    unlink(folder_.path("gone.txt").c_str());
    send();
    finish_finder_events();
    EXPECT_EQ(opened(1), Paths{folder_.path("here.txt")});
}

TEST_F(FinderEvents, NamesThatAreNotUtf8AreOpened) {
    ASSERT_TRUE(answer());
    add(folder_.folder("odd\xff"));
    send();
    finish_finder_events();
    EXPECT_EQ(opened(1), Paths{folder_.path("odd\xff")});
}

TEST_F(FinderEvents, OneFileNeedsNoListAroundIt) {
    ASSERT_TRUE(answer());
    const FSRef ref = reference(folder_.file("a.txt", "a"));
    AEPutParamPtr(&event_, keyDirectObject, typeFSRef, &ref, sizeof ref);
    AESend(&event_, nullptr, kAENoReply, kAENormalPriority, kAEDefaultTimeout, nullptr, nullptr);
    finish_finder_events();
    EXPECT_EQ(opened(1), Paths{folder_.path("a.txt")});
}

TEST_F(FinderEvents, FinishingHandlesAllThatWasSent) {
    ASSERT_TRUE(answer());
    finish_finder_events();
    for (int i = 0; i < 3; i++) send();
    EXPECT_TRUE(apple_events_are_waiting());
    finish_finder_events();
    EXPECT_FALSE(apple_events_are_waiting());
}

TEST_F(FinderEvents, AreTracedIntoAFile) {
    setenv("DELVIO_TRACE", folder_.path("trace").c_str(), 1);
    ASSERT_TRUE(answer());
    const std::string first = folder_.folder("first \"one\"\n");
    add(first);
    send();
    finish_finder_events();
    const std::string once = "aevt/odoc to \"MACS\"\n"
                             "  ----: list of 1\n"
                             "    fsrf \"" +
                             folder_.path() + "/first \\\"one\\\"\\x0a\"\n";
    EXPECT_EQ(test::read_file(folder_.path("trace")), once);
    send();
    finish_finder_events();
    EXPECT_EQ(test::read_file(folder_.path("trace")), once + once);
    EXPECT_EQ(opened(2), (Paths{first, first}));
}

TEST_F(FinderEvents, AreTracedToStandardErrorForADash) {
    setenv("DELVIO_TRACE", "-", 1);
    ASSERT_TRUE(answer());
    testing::internal::CaptureStderr();
    send();
    finish_finder_events();
    EXPECT_NE(testing::internal::GetCapturedStderr().find("aevt/odoc to \"MACS\"\n"
                                                          "  ----: list of 0\n"),
              std::string::npos);
}

TEST_F(FinderEvents, ATraceThatCannotBeWrittenIsReported) {
    setenv("DELVIO_TRACE", folder_.path("no/trace").c_str(), 1);
    EXPECT_FALSE(answer());
    EXPECT_NE(problem_.find(folder_.path("no/trace")), std::string::npos);
}

TEST_F(FinderEvents, AreDescribedWithTheirParameters) {
    const SInt32 number = -3;
    const Boolean yes = true;
    const UInt16 text[] = {'n', 0xE4, 0x4E2D};
    const FourCharCode type = 'alis';
    AERecord record;
    AECreateList(nullptr, 0, true, &record);
    AEPutKeyPtr(&record, pName, typeUnicodeText, text, sizeof text);
    AEPutKeyPtr(&record, 'cmcd', typeSInt32, &number, sizeof number);
    AEPutParamDesc(&event_, 'reco', &record);
    AEDisposeDesc(&record);
    AEPutParamPtr(&event_, 'kocl', typeType, &type, sizeof type);
    AEPutParamPtr(&event_, 'alrp', typeBoolean, &yes, sizeof yes);
    AEPutParamPtr(&event_, 'to  ', typeUTF8Text, "a\tb", 3);
    AEPutParamPtr(&event_, 'data', 'what', "\x01\xff", 2);
    AEPutParamPtr(&event_, 'null', typeNull, nullptr, 0);
    const FSRef gone = {};
    AEPutParamPtr(&event_, 'gone', typeFSRef, &gone, sizeof gone);
    EXPECT_EQ(describe_event(event_), "aevt/odoc to \"MACS\"\n"
                                      "  reco: record of 2\n"
                                      "    pnam: utxt \"n\u00e4\u4e2d\"\n"
                                      "    cmcd: long -3\n"
                                      "  kocl: type \"alis\"\n"
                                      "  alrp: bool true\n"
                                      "  to  : utf8 \"a\\x09b\"\n"
                                      "  data: what <01ff>\n"
                                      "  null: null\n"
                                      "  gone: fsrf (not there)\n");
}

TEST_F(FinderEvents, AValueWithoutBytesIsTracedAsZero) {
    AEPutParamPtr(&event_, 'kocl', typeType, nullptr, 0);
    AEPutParamPtr(&event_, 'cmcd', typeSInt32, nullptr, 0);
    EXPECT_EQ(describe_event(event_), "aevt/odoc to \"MACS\"\n"
                                      "  kocl: type \"\\x00\\x00\\x00\\x00\"\n"
                                      "  cmcd: long 0\n");
}

}  // namespace
