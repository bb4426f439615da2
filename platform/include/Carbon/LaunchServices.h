// Launch Services: what a file is, under which name it is shown, and opening it. Main thread.
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

// A folder is a container. An application is an ".app" bundle (container and package), a
// ".desktop" file of type Application (plain file), or a program that runs now and belongs to
// neither. A ".desktop" file counts when it is one of the desktop's own and shown in menus, or when
// the user may execute it; Hidden ones never count. A package is a folder with a known bundle
// extension or the Finder's bundle flag. A symbolic link is a link and an alias file, never a
// container, whatever it leads to. The type is "APPL" for an application and for a link that leads
// to one, else that of the Finder information. `extension` is always null here.
OSStatus LSCopyItemInfoForRef(const FSRef* ref, LSRequestedInfo which, LSItemInfoRecord* info);

// An application is shown by the name that it gives itself: the localized Name of a ".desktop"
// file, or the name in an ".app" bundle's information list. That name is believed of the desktop's
// own files, of bundles in one of the applications folders, and of what runs now. Symbolic links
// with such an ending follow the same rule. Any other file is shown by its file name as UTF-8, with
// its extension. A name that is not UTF-8 answers kLSUnknownErr. Only plain files below 256 KiB are
// read. The caller releases *name.
OSStatus LSCopyDisplayNameForRef(const FSRef* ref, CFStringRef* name);

// What to open, and with which application. Without an application, each document's default program
// opens it. `passThruParams` and `asyncRefCon` are ignored; the only flag with a meaning is the
// default.
typedef OptionBits LSLaunchFlags;
enum { kLSLaunchDefaults = 0x00000001 };

typedef struct LSLaunchFSRefSpec {
    const FSRef* appRef;
    UInt32 numDocs;
    const FSRef* itemRefs;
    const void* passThruParams;
    LSLaunchFlags launchFlags;
    void* asyncRefCon;
} LSLaunchFSRefSpec;

// Starts the application with the documents and does not wait for it. An application is one of
// these, or a symbolic link to one:
//   a ".desktop" file   It is one of the desktop's own or executable, and not Hidden. All
//                       documents go in one start where its Exec takes several, else each has a
//                       start. The session bus starts it if the entry says so.
//   an ".app" bundle    Its program gets one document as "-GSFilePath DOCUMENT", several as
//                       arguments.
//   an executable file  It gets the documents as arguments.
// Names may hold any bytes. The application runs in a session of its own with none of our
// descriptors, from the user's home folder unless its entry names another. References that are
// stale or whose files are gone are left out.
//
// paramErr: no application and no document. fnfErr: documents given, none of them there.
// kLSApplicationNotFoundErr: the application is gone, or there is no default program.
// kLSNotAnApplicationErr: it is none of the above. kLSNoExecutableErr: its program is missing or
// its entry is broken. kLSNoLaunchPermissionErr: its program may not be run. kLSUnknownErr: it
// could not be started. `outLaunchedRef`, which may be null, receives the application.
OSStatus LSOpenFromRefSpec(const LSLaunchFSRefSpec* spec, FSRef* outLaunchedRef);

enum {
    kLSUnknownErr = -10810,
    kLSNotAnApplicationErr = -10811,
    kLSDataUnavailableErr = -10813,
    kLSApplicationNotFoundErr = -10814,
    kLSNoLaunchPermissionErr = -10826,
    kLSNoExecutableErr = -10827
};

#ifdef __cplusplus
}
#endif
