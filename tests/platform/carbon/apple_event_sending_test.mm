#include <Carbon/Carbon.h>
#include <host/process.h>
#import <Foundation/Foundation.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/carbon/file_questions.h"
#include "support/heap.h"
#include "support/temp_folder.h"

namespace {

const OSType own_signature = 'TEST';
const AEEventClass event_class = 'tcls';
const AEEventID event_id = 'tevt';

// The values that the handler got.
struct Arrival {
    std::string text;
    SInt32 interaction = -1, time_out = 0;
    Boolean reply_awaited = true;
    bool reply_is_null = false;
    std::string path;
};
using Arrivals = std::vector<Arrival>;

OSErr record_event(const AppleEvent* event, AppleEvent* reply, void* refcon) {
    Arrival arrival;
    char text[100] = "";
    AEGetParamPtr(event, 'text', typeChar, nullptr, text, sizeof text - 1, nullptr);
    arrival.text = text;
    AEGetAttributePtr(event, keyInteractLevelAttr, typeSInt32, nullptr, &arrival.interaction,
                      sizeof arrival.interaction, nullptr);
    AEGetAttributePtr(event, keyTimeoutAttr, typeSInt32, nullptr, &arrival.time_out,
                      sizeof arrival.time_out, nullptr);
    AEGetAttributePtr(event, keyReplyRequestedAttr, typeBoolean, nullptr, &arrival.reply_awaited,
                      sizeof arrival.reply_awaited, nullptr);
    FSRef ref;
    if (AEGetParamPtr(event, 'file', typeFSRef, nullptr, &ref, sizeof ref, nullptr) == noErr) {
        arrival.path = test::path_of(ref);
    }
    arrival.reply_is_null = reply->descriptorType == typeNull;
    static_cast<Arrivals*>(refcon)->push_back(arrival);
    return noErr;
}

class Sending : public testing::Test {
  protected:
    Sending() {
        declare_process_signature(own_signature);
        AEInstallEventHandler(event_class, event_id, record_event, &arrivals_, false);
        create_event(own_signature, &event_);
    }
    ~Sending() override {
        run(NSDefaultRunLoopMode);
        AEDisposeDesc(&event_);
        AERemoveEventHandler(event_class, event_id, nullptr, false);
        declare_process_signature(0);
        [pool_ release];
    }

    static void create_event(OSType signature, AppleEvent* event) {
        AEAddressDesc target;
        AECreateDesc(typeApplSignature, &signature, sizeof signature, &target);
        AECreateAppleEvent(event_class, event_id, &target, kAutoGenerateReturnID, kAnyTransactionID,
                           event);
        AEDisposeDesc(&target);
    }

    OSErr send(const std::string& text, AESendMode mode = kAENoReply) {
        const Size size = static_cast<Size>(text.size());
        AEPutParamPtr(&event_, 'text', typeChar, text.data(), size);
        return AESend(&event_, nullptr, mode, kAENormalPriority, kAEDefaultTimeout, nullptr,
                      nullptr);
    }

    // Runs the loop once, as a program that waits for its next event does.
    static void run(NSString* mode) {
        [[NSRunLoop currentRunLoop] runMode:mode beforeDate:[NSDate date]];
    }

    NSAutoreleasePool* pool_ = [NSAutoreleasePool new];
    AppleEvent event_;
    Arrivals arrivals_;
};

TEST_F(Sending, AnEventArrivesWhenTheRunLoopRuns) {
    EXPECT_EQ(send("hello"), noErr);
    EXPECT_TRUE(arrivals_.empty());
    EXPECT_TRUE(apple_events_are_waiting());
    run(NSDefaultRunLoopMode);
    ASSERT_EQ(arrivals_.size(), 1u);
    EXPECT_EQ(arrivals_[0].text, "hello");
    EXPECT_FALSE(apple_events_are_waiting());
    run(NSDefaultRunLoopMode);
    EXPECT_EQ(arrivals_.size(), 1u);
}

TEST_F(Sending, EventsArriveWhileMenusTrackAndPanelsAreModal) {
    for (NSString* mode in @[ @"NSEventTrackingRunLoopMode", @"NSModalPanelRunLoopMode" ]) {
        arrivals_.clear();
        send("hello");
        run(mode);
        EXPECT_EQ(arrivals_.size(), 1u) << [mode UTF8String];
    }
}

TEST_F(Sending, TheReceiverGetsACopy) {
    send("before");
    AEPutParamPtr(&event_, 'text', typeChar, "after", 5);
    AEDisposeDesc(&event_);
    run(NSDefaultRunLoopMode);
    ASSERT_EQ(arrivals_.size(), 1u);
    EXPECT_EQ(arrivals_[0].text, "before");
}

TEST_F(Sending, EventsArriveInTheOrderOfSending) {
    for (const char* text : {"a", "b", "c"}) send(text);
    while (apple_events_are_waiting()) run(NSDefaultRunLoopMode);
    std::string order;
    for (const Arrival& arrival : arrivals_) order += arrival.text;
    EXPECT_EQ(order, "abc");
}

TEST_F(Sending, AHandlerThatRunsTheLoopGetsTheNextEventWithin) {
    static std::vector<std::string> steps;
    steps.clear();
    const auto outer = [](const AppleEvent* event, AppleEvent* reply, void* refcon) -> OSErr {
        steps.push_back("begin");
        AEInstallEventHandler(event_class, event_id, record_event, refcon, false);
        Sending::run(NSDefaultRunLoopMode);
        steps.push_back("end after " + std::to_string(static_cast<Arrivals*>(refcon)->size()));
        return record_event(event, reply, refcon);
    };
    AEInstallEventHandler(event_class, event_id, outer, &arrivals_, false);
    send("first");
    send("second");
    run(NSDefaultRunLoopMode);
    EXPECT_EQ(steps, (std::vector<std::string>{"begin", "end after 1"}));
    ASSERT_EQ(arrivals_.size(), 2u);
    EXPECT_EQ(arrivals_[0].text, "second");
    EXPECT_EQ(arrivals_[1].text, "first");
}

TEST_F(Sending, TheReceiverKnowsHowItWasSent) {
    send("", kAENoReply | kAECanInteract | kAECanSwitchLayer);
    run(NSDefaultRunLoopMode);
    ASSERT_EQ(arrivals_.size(), 1u);
    EXPECT_EQ(arrivals_[0].interaction, kAECanInteract);
    EXPECT_EQ(arrivals_[0].time_out, kAEDefaultTimeout);
    EXPECT_FALSE(arrivals_[0].reply_awaited);
    EXPECT_TRUE(arrivals_[0].reply_is_null);
}

TEST_F(Sending, FilesAreStillKnownAfterThousandsOfOthers) {
    test::TempFolder folder;
    const std::string file = folder.file("file");
    const FSRef ref = test::reference(file);
    AEPutParamPtr(&event_, 'file', typeFSRef, &ref, sizeof ref);
    send("");
    for (int i = 0; i < 5000; i++) test::reference("/");
    run(NSDefaultRunLoopMode);
    ASSERT_EQ(arrivals_.size(), 1u);
    EXPECT_EQ(arrivals_[0].path, file);
}

TEST_F(Sending, ATargetNobodyAnswersForIsNotFound) {
    declare_process_signature('OTHR');
    EXPECT_EQ(send("hello"), procNotFound);
    declare_process_signature(0);
    EXPECT_EQ(send("hello"), procNotFound);
    AEDisposeDesc(&event_);
    create_event(0, &event_);
    EXPECT_EQ(send("hello"), procNotFound);
    EXPECT_FALSE(apple_events_are_waiting());
}

TEST_F(Sending, OnlyEventsToSignaturesAreSent) {
    AppleEvent reply;
    AERecord record;
    AECreateList(nullptr, 0, true, &record);
    EXPECT_EQ(AESend(&record, &reply, kAENoReply, 0, kAEDefaultTimeout, nullptr, nullptr),
              errAENotAppleEvent);
    EXPECT_EQ(reply.descriptorType, DescType{typeNull});
    AEDisposeDesc(&event_);
    AECreateAppleEvent(event_class, event_id, &record, 0, 0, &event_);
    EXPECT_EQ(send(""), errAEUnknownAddressType);
    AEDisposeDesc(&record);
}

TEST_F(Sending, RepliesAreNotServed) {
    EXPECT_EQ(send("hello", kAEWaitReply), errAEUnknownSendMode);
    EXPECT_EQ(send("hello", kAEQueueReply), errAEUnknownSendMode);
    EXPECT_EQ(send("hello", 0), errAEUnknownSendMode);
    EXPECT_FALSE(apple_events_are_waiting());
}

TEST_F(Sending, WhatNoHandlerAwaitsIsDropped) {
    EXPECT_EQ(AERemoveEventHandler(event_class, event_id, record_event, false), noErr);
    EXPECT_EQ(AERemoveEventHandler(event_class, event_id, nullptr, false), errAEHandlerNotFound);
    EXPECT_EQ(send("hello"), noErr);
    run(NSDefaultRunLoopMode);
    EXPECT_TRUE(arrivals_.empty());
    EXPECT_FALSE(apple_events_are_waiting());
}

TEST_F(Sending, TheLastHandlerInstalledIsTheOneCalled) {
    Arrivals others;
    AEInstallEventHandler(event_class, event_id, record_event, &others, false);
    send("hello");
    run(NSDefaultRunLoopMode);
    EXPECT_TRUE(arrivals_.empty());
    EXPECT_EQ(others.size(), 1u);
}

int seen;
OSErr only_look(const AppleEvent*, AppleEvent*, void*) { return seen++, errAEEventNotHandled; }
OSErr take(const AppleEvent*, AppleEvent*, void*) { return noErr; }

TEST_F(Sending, AFirstLookLetsEventsPassOrTakesThem) {
    seen = 0;
    EXPECT_EQ(AEInstallSpecialHandler('none', only_look, false), paramErr);
    EXPECT_EQ(AEInstallSpecialHandler(keyPreDispatch, only_look, false), noErr);
    send("hello");
    run(NSDefaultRunLoopMode);
    EXPECT_EQ(seen, 1);
    EXPECT_EQ(arrivals_.size(), 1u);
    AEInstallSpecialHandler(keyPreDispatch, take, false);
    send("hello");
    run(NSDefaultRunLoopMode);
    EXPECT_EQ(arrivals_.size(), 1u);
    EXPECT_EQ(AERemoveSpecialHandler(keyPreDispatch, only_look, false), errAEHandlerNotFound);
    EXPECT_EQ(AERemoveSpecialHandler(keyPreDispatch, take, false), noErr);
    EXPECT_EQ(AERemoveSpecialHandler(keyPreDispatch, take, false), errAEHandlerNotFound);
}

TEST_F(Sending, DeliveredEventsAreFreed) {
    const auto round = [this] {
        NSAutoreleasePool* pool = [NSAutoreleasePool new];
        send(std::string(5000, 'x'));
        run(NSDefaultRunLoopMode);
        arrivals_.clear();
        [pool release];
    };
    for (int i = 0; i < 10; i++) round();
    const size_t before = test::memory_in_use();
    for (int i = 0; i < 100; i++) round();
    EXPECT_LT(test::memory_in_use(), before + 50000);
}

}  // namespace
