#include <host/process.h>
#include <Carbon/Processes.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

namespace {

OSType signature() {
    ProcessSerialNumber psn;
    EXPECT_EQ(GetCurrentProcess(&psn), noErr);
    ProcessInfoRec info = {};
    info.processInfoLength = sizeof info;
    EXPECT_EQ(GetProcessInformation(&psn, &info), noErr);
    EXPECT_EQ(info.processNumber.lowLongOfPSN, psn.lowLongOfPSN);
    return info.processSignature;
}

}  // namespace

TEST(Processes, TheSignatureIsTheDeclaredOne) {
    EXPECT_EQ(signature(), 0u);
    declare_process_signature(0x4D414353);
    EXPECT_EQ(signature(), OSType{0x4D414353});
    declare_process_signature(0);
    EXPECT_EQ(signature(), 0u);
}

TEST(Processes, AnotherProcessIsNotFound) {
    const ProcessSerialNumber other = {0, 4711};
    ProcessInfoRec info = {};
    EXPECT_EQ(GetProcessInformation(&other, &info), procNotFound);
    EXPECT_EQ(GetProcessInformation(nullptr, &info), paramErr);
    EXPECT_EQ(GetCurrentProcess(nullptr), paramErr);
}

TEST(Processes, TheCurrentOneHasTwoNumbers) {
    ProcessSerialNumber current;
    const ProcessSerialNumber either = {0, kCurrentProcess};
    ASSERT_EQ(GetCurrentProcess(&current), noErr);
    const ProcessSerialNumber other = {current.highLongOfPSN, current.lowLongOfPSN + 1};
    EXPECT_EQ(current.lowLongOfPSN, static_cast<UInt32>(getpid()));
    Boolean same = false;
    EXPECT_EQ(SameProcess(&current, &either, &same), noErr);
    EXPECT_TRUE(same);
    EXPECT_EQ(SameProcess(&other, &either, &same), noErr);
    EXPECT_FALSE(same);
    EXPECT_EQ(SameProcess(&current, nullptr, &same), paramErr);
    ProcessInfoRec info = {};
    EXPECT_EQ(GetProcessInformation(&either, &info), noErr);
    EXPECT_EQ(info.processNumber.lowLongOfPSN, current.lowLongOfPSN);
}

TEST(Processes, WithoutADisplayNoneIsInFront) {
    unsetenv("DISPLAY");
    ProcessSerialNumber front;
    EXPECT_EQ(GetFrontProcess(&front), procNotFound);
    EXPECT_EQ(GetFrontProcess(nullptr), paramErr);
}
