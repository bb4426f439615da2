// Integer types and result codes that the Carbon headers share.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

typedef SInt16 OSErr;
typedef SInt32 OSStatus;
typedef UInt32 OSType;
typedef UInt32 FourCharCode;
typedef UInt32 OptionBits;
typedef unsigned long UniCharCount;
typedef unsigned long ByteCount;
typedef long Size;

typedef struct Point {
    short v, h;
} Point;

enum {
    noErr = 0,
    paramErr = -50,
    nsvErr = -35,
    ioErr = -36,
    bdNamErr = -37,
    fnfErr = -43,
    permErr = -54,
    dirNFErr = -120,
    memFullErr = -108,
    userCanceledErr = -128,
    afpAccessDenied = -5000,
    procNotFound = -600,
    errFSBadFSRef = -1401,
    errFSNameTooLong = -1410
};
