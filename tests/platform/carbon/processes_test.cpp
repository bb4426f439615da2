#include <Carbon/HostProcess.h>
#include <Carbon/Processes.h>
#include <gtest/gtest.h>

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
    DeclareProcessSignature(0x4D414353);
    EXPECT_EQ(signature(), OSType{0x4D414353});
    DeclareProcessSignature(0);
    EXPECT_EQ(signature(), 0u);
}

TEST(Processes, AnotherProcessIsNotFound) {
    const ProcessSerialNumber other = {0, 4711};
    ProcessInfoRec info = {};
    EXPECT_EQ(GetProcessInformation(&other, &info), procNotFound);
    EXPECT_EQ(GetProcessInformation(nullptr, &info), paramErr);
    EXPECT_EQ(GetCurrentProcess(nullptr), paramErr);
}
