// Process Manager: who this process is.
#pragma once

#include <Carbon/MacTypes.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct ProcessSerialNumber {
    UInt32 highLongOfPSN;
    UInt32 lowLongOfPSN;
} ProcessSerialNumber;

// Of the Mac's record, the fields that are used. `processInfoLength` is set by the caller.
typedef struct ProcessInfoRec {
    UInt32 processInfoLength;
    ProcessSerialNumber processNumber;
    UInt32 processType;
    OSType processSignature;
} ProcessInfoRec;

OSErr GetCurrentProcess(ProcessSerialNumber* psn);
// For the current process: the signature that the host has declared (Carbon/HostProcess.h), 0 if
// none. For any other: procNotFound.
OSErr GetProcessInformation(const ProcessSerialNumber* psn, ProcessInfoRec* info);

#ifdef __cplusplus
}
#endif
