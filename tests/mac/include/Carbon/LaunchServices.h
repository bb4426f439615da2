#pragma once

#include <Carbon/AppleEvents.h>
#include <Carbon/Files.h>
#include <CoreFoundation/CFBase.h>

extern "C" {

#pragma pack(push, 2)

typedef OptionBits LSRequestedInfo;
typedef OptionBits LSItemInfoFlags;
typedef OptionBits LSLaunchFlags;

enum { kLSRequestTypeCreator = 0x00000002, kLSRequestAllFlags = 0x00000010 };
enum {
    kLSItemInfoIsPackage = 0x00000002,
    kLSItemInfoIsApplication = 0x00000004,
    kLSItemInfoIsContainer = 0x00000008
};
enum { kLSLaunchDefaults = 0x00000001 };

struct LSItemInfoRecord {
    LSItemInfoFlags flags;
    OSType filetype;
    OSType creator;
    CFStringRef extension;
};
typedef struct LSItemInfoRecord LSItemInfoRecord;

struct LSLaunchFSRefSpec {
    const FSRef* appRef;
    ItemCount numDocs;
    const FSRef* itemRefs;
    const AEDesc* passThruParams;
    LSLaunchFlags launchFlags;
    void* asyncRefCon;
};
typedef struct LSLaunchFSRefSpec LSLaunchFSRefSpec;

OSStatus LSCopyItemInfoForRef(const FSRef* itemRef, LSRequestedInfo whichInfo,
                              LSItemInfoRecord* itemInfo);
OSStatus LSCopyDisplayNameForRef(const FSRef* ref, CFStringRef* displayName);
OSStatus LSOpenFromRefSpec(const LSLaunchFSRefSpec* launchSpec, FSRef* launchedRef);

#pragma pack(pop)
}
