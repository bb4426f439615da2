#pragma once

#include <Carbon/Files.h>
#include <MacTypes.h>

extern "C" {

#pragma pack(push, 2)

struct ProcessInfoRec {
    UInt32 processInfoLength;
    StringPtr processName;
    ProcessSerialNumber processNumber;
    UInt32 processType;
    OSType processSignature;
    UInt32 processMode;
    Ptr processLocation;
    UInt32 processSize;
    UInt32 processFreeMem;
    ProcessSerialNumber processLauncher;
    UInt32 processLaunchDate;
    UInt32 processActiveTime;
    FSRefPtr processAppRef;
};
typedef struct ProcessInfoRec ProcessInfoRec;

OSErr GetCurrentProcess(ProcessSerialNumber* psn);
OSErr GetFrontProcess(ProcessSerialNumber* psn);
OSErr GetProcessInformation(const ProcessSerialNumber* psn, ProcessInfoRec* info);
OSErr SameProcess(const ProcessSerialNumber* psn1, const ProcessSerialNumber* psn2,
                  Boolean* result);

#pragma pack(pop)
}
