// Launch Services: what a file is, and under which name it is shown.
#pragma once

#include <Carbon/Files.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef OptionBits LSRequestedInfo;
enum {
    kLSRequestTypeCreator = 0x00000002,
    kLSRequestAllFlags = 0x00000010,
    kLSRequestAppTypeFlags = 0x00000008
};

typedef OptionBits LSItemInfoFlags;
enum {
    kLSItemInfoIsPlainFile = 0x00000001,
    kLSItemInfoIsPackage = 0x00000002,
    kLSItemInfoIsApplication = 0x00000004,
    kLSItemInfoIsContainer = 0x00000008,
    kLSItemInfoIsAliasFile = 0x00000010,
    kLSItemInfoIsSymlink = 0x00000020,
    kLSItemInfoIsInvisible = 0x00000040
};

typedef struct LSItemInfoRecord {
    LSItemInfoFlags flags;
    OSType filetype;
    OSType creator;
    CFStringRef extension;
} LSItemInfoRecord;

// A folder is a container. An application is an ".app" bundle (container and package) or a
// ".desktop" file of type Application (plain file); a package is a folder with a known bundle
// extension or the Finder's bundle flag. A symbolic link is a link and an alias file, never a
// container, whatever it leads to. The type comes from the Finder information; "APPL" for an ".app"
// bundle is not invented. `extension` is always null here.
OSStatus LSCopyItemInfoForRef(const FSRef* ref, LSRequestedInfo which, LSItemInfoRecord* info);

// A ".desktop" file's localized Name, the name that an ".app" bundle gives itself in its
// information list, else the file name as UTF-8 (its extension stays). A name that is not UTF-8
// answers kLSUnknownErr. Only plain files below 256 KiB are read for it. The caller releases *name.
OSStatus LSCopyDisplayNameForRef(const FSRef* ref, CFStringRef* name);
enum { kLSUnknownErr = -10810, kLSDataUnavailableErr = -10813 };

#ifdef __cplusplus
}
#endif
