// Apple Events that are sent and handled while a menu is open on the screen.
#include <AppKit/AppKit.h>
#include <Carbon/Carbon.h>
#include <gtest/gtest.h>

#include "desktop/desk.h"

namespace {

using test::Steps;

class Events : public test::Desk {
  protected:
    void SetUp() override {
        folder_.file("project/readme.txt", "r");
        select({folder_.path("project")});
    }

    static void send_open(const std::string& path) {
        const OSType signature = 'MACS';
        FSRef ref;
        ASSERT_EQ(FSPathMakeRef(reinterpret_cast<const UInt8*>(path.c_str()), &ref, nullptr),
                  noErr);
        AEAddressDesc finder;
        AECreateDesc(typeApplSignature, &signature, sizeof signature, &finder);
        AppleEvent event;
        AECreateAppleEvent(kCoreEventClass, kAEOpenDocuments, &finder, kAutoGenerateReturnID,
                           kAnyTransactionID, &event);
        AEPutParamPtr(&event, keyDirectObject, typeFSRef, &ref, sizeof ref);
        EXPECT_EQ(AESend(&event, nullptr, kAENoReply, kAENormalPriority, kAEDefaultTimeout, nullptr,
                         nullptr),
                  noErr);
        AEDisposeDesc(&event);
        AEDisposeDesc(&finder);
    }
};

TEST_F(Events, AnOpenEventIsHandledWhileTheMenuIsOpen) {
    const std::string document = folder_.path("project/readme.txt");
    pop_up([&](Steps& steps) {
        steps
            .when(
                "the menu", [&] { return is_open(0); }, [&] { send_open(document); })
            .when(
                "the document", [&] { return !program().opened().empty(); },
                [&] {
                    EXPECT_TRUE(is_open(0));
                    escape();
                });
    });
    EXPECT_EQ(program().opened(), std::vector<std::string>{document});
}

}  // namespace
