// File Manager and aliases: file references, catalog information, alias resolution.
//
// An FSRef names a file by its path, which a table of this process holds for the last 4096
// references. An older reference is stale: every call answers fnfErr for it and never takes another
// file for it. Calls also answer fnfErr for a file that is gone. References are meant to be used at
// once, not to be kept. Main thread.
//
// Making a reference looks at the file. The first LSCopyItemInfoForRef, LSCopyDisplayNameForRef and
// FSGetCatalogInfo that follow within a tenth of a second answer from that look; any further
// question looks again.
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

// The fields of the Mac's record that are supplied here. `finderInfo` is a FileInfo or a FolderInfo
// (both have their flags at the same place) in native byte order.
typedef struct FSCatalogInfo {
    UInt16 nodeFlags;
    // Aligned for the records that it holds.
    __attribute__((aligned(4))) UInt8 finderInfo[16];
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

// The path must exist, else fnfErr. A symbolic link at its end is not followed, even with slashes
// after it. Answers pathTooLongErr for 4096 bytes and more, which the system cannot open, and
// afpAccessDenied when a folder on the way may not be searched. A path with a slash at its end must
// lead to a folder or a link to one, else dirNFErr. `isDirectory` may be null.
OSStatus FSPathMakeRef(const UInt8* path, FSRef* ref, Boolean* isDirectory);
// Writes the path, absolute and without a slash at its end, and a NUL. When `size` bytes cannot
// hold it, answers pathTooLongErr and writes nothing.
OSStatus FSRefMakePath(const FSRef* ref, UInt8* path, UInt32 size);
enum { pathTooLongErr = -2110 };

// Finder information comes from the extended attribute "user.com.apple.FinderInfo" (32 bytes,
// big-endian, as file servers for Macs store it). A file is also invisible when its folder's
// ".hidden" list names it; a change of that list is seen within a tenth of a second. Symbolic links
// have the alias flag. `info`, `outName`, `spec` and `parent` may be null. `spec` is only cleared.
// `outName` answers bdNamErr for a name that is not UTF-8. The root folder is its own parent.
OSErr FSGetCatalogInfo(const FSRef* ref, FSCatalogInfoBitmap which, FSCatalogInfo* info,
                       HFSUniStr255* outName, FSSpec* spec, FSRef* parent);

// Follows a symbolic link in place. For anything else: noErr, *wasAliased false, the reference
// unchanged. For a dangling link or a loop: fnfErr, the reference unchanged. Without
// `resolveChains` the reference moves along one link only, but the end of the whole chain must
// exist.
OSErr FSResolveAliasFileWithMountFlags(FSRef* ref, Boolean resolveChains, Boolean* targetIsFolder,
                                       Boolean* wasAliased, unsigned long mountFlags);
enum { kResolveAliasFileNoUI = 1 };

// A record of where a file is. It holds the path, so it can be kept for any time and resolved
// later, even when another file has replaced this one. Its bytes may be copied. The alias of a
// symbolic link means the link itself, not its target. The caller disposes of the handle.
typedef struct AliasRecord {
    UInt8 hidden[6];
} AliasRecord;
typedef AliasRecord* AliasPtr;
typedef AliasPtr* AliasHandle;
// On failure the handle is null.
OSErr FSNewAliasMinimal(const FSRef* target, AliasHandle* alias);
// Answers fnfErr when nothing is there any more. `fromFile` is ignored, since paths are absolute;
// `wasChanged` becomes false. Both may be null.
OSErr FSResolveAlias(const FSRef* fromFile, AliasHandle alias, FSRef* target, Boolean* wasChanged);

#ifdef __cplusplus
}
#endif
