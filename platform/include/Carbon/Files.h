// File Manager and aliases: file references, catalog information, alias resolution.
//
// An FSRef names a file by its path, held in a bounded table of this process. A reference whose
// table entry has been given to a later file is stale: every call answers fnfErr for it, never
// another file. References are meant to be used at once, not to be kept. Main thread.
#pragma once

#include <Carbon/MacTypes.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct FSRef {
    UInt8 hidden[80];
} FSRef;

typedef struct FSSpec {
    SInt16 vRefNum;
    SInt32 parID;
    UInt8 name[64];
} FSSpec;

typedef struct HFSUniStr255 {
    UInt16 length;
    UniChar unicode[255];
} HFSUniStr255;

typedef UInt32 FSCatalogInfoBitmap;
enum { kFSCatInfoNone = 0, kFSCatInfoNodeFlags = 0x2, kFSCatInfoFinderInfo = 0x800 };

// The catalog information that is supplied here: of the Mac's record, the fields that are used.
// `finderInfo` is a FileInfo (or FolderInfo: flags stand at the same place) in native byte order.
typedef struct FSCatalogInfo {
    UInt16 nodeFlags;
    UInt8 finderInfo[16];
    UInt8 extFinderInfo[16];
} FSCatalogInfo;
enum { kFSNodeIsDirectoryMask = 0x10 };

typedef struct FileInfo {
    OSType fileType;
    OSType fileCreator;
    UInt16 finderFlags;
    Point location;
    UInt16 reservedField;
} FileInfo;
enum { kIsAlias = 0x8000, kIsInvisible = 0x4000, kColor = 0x000E };

// The path must exist (it is not followed when it is a symbolic link). fnfErr when it does not.
OSStatus FSPathMakeRef(const UInt8* path, FSRef* ref, Boolean* isDirectory);
// Writes the path and its NUL; errFSNameTooLong is never given: a path that does not fit `size`
// bytes answers pathTooLongErr.
OSStatus FSRefMakePath(const FSRef* ref, UInt8* path, UInt32 size);
enum { pathTooLongErr = -2110 };

// Finder information from the extended attribute "user.com.apple.FinderInfo" (32 bytes, big-endian,
// as file servers for Macs store it); invisible also by the folder's ".hidden" list; the alias flag
// for symbolic links. `outName`, `spec` and `parent` may be null.
OSErr FSGetCatalogInfo(const FSRef* ref, FSCatalogInfoBitmap which, FSCatalogInfo* info,
                       HFSUniStr255* outName, FSSpec* spec, FSRef* parent);

// Follows a symbolic link in place. Not a link: noErr, *wasAliased false, the reference unchanged.
// A dangling link or a loop: fnfErr, the reference unchanged. Without `resolveChains` only one link
// is followed by name, but the target's own existence is checked through the whole chain.
OSErr FSResolveAliasFileWithMountFlags(FSRef* ref, Boolean resolveChains, Boolean* targetIsFolder,
                                       Boolean* wasAliased, unsigned long mountFlags);
enum { kResolveAliasFileNoUI = 1 };

#ifdef __cplusplus
}
#endif
