// File Manager and aliases: file references, catalog information, alias resolution.
//
// An FSRef names a file by its path, held in a table of this process that keeps the last 4096. An
// older reference is stale: every call answers fnfErr for it, never another file; so does every
// call whose file is gone. References are meant to be used at once, not to be kept. Main thread.
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

// The catalog information that is supplied here: of the Mac's record, the fields that are used.
// `finderInfo` is a FileInfo (or FolderInfo: flags stand at the same place) in native byte order.
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

// The path must exist (it is not followed when it is a symbolic link, whatever slashes stand at its
// end). fnfErr when it does not, pathTooLongErr for 4096 bytes and more, which the system cannot
// open, afpAccessDenied when a folder on the way may not be searched. With a slash at its end it
// must be a folder or a link to one, else dirNFErr. `isDirectory` may be null.
OSStatus FSPathMakeRef(const UInt8* path, FSRef* ref, Boolean* isDirectory);
// Writes the path, absolute and without a slash at its end, and its NUL. A path that does not fit
// `size` bytes answers pathTooLongErr, and nothing is written.
OSStatus FSRefMakePath(const FSRef* ref, UInt8* path, UInt32 size);
enum { pathTooLongErr = -2110 };

// Finder information from the extended attribute "user.com.apple.FinderInfo" (32 bytes, big-endian,
// as file servers for Macs store it); invisible also by the folder's ".hidden" list; the alias flag
// for symbolic links. A change of a folder's list is seen at the latest a tenth of a second later.
// `info`, `outName`, `spec` and `parent` may be null; `spec` is only cleared; bdNamErr for
// `outName` when the name is not UTF-8; the root folder's parent is the root folder.
OSErr FSGetCatalogInfo(const FSRef* ref, FSCatalogInfoBitmap which, FSCatalogInfo* info,
                       HFSUniStr255* outName, FSSpec* spec, FSRef* parent);

// Follows a symbolic link in place. Not a link: noErr, *wasAliased false, the reference unchanged.
// A dangling link or a loop: fnfErr, the reference unchanged. Without `resolveChains` only one link
// is followed by name, but the target's own existence is checked through the whole chain.
OSErr FSResolveAliasFileWithMountFlags(FSRef* ref, Boolean resolveChains, Boolean* targetIsFolder,
                                       Boolean* wasAliased, unsigned long mountFlags);
enum { kResolveAliasFileNoUI = 1 };

// A record of where a file is, to be kept for as long as one likes and resolved later, also after
// the file was replaced by another; it holds the path. Its bytes may be copied. The file itself is
// meant, not what a symbolic link leads to. The handle is the caller's, who disposes of it.
typedef struct AliasRecord {
    UInt8 hidden[6];
} AliasRecord;
typedef AliasRecord* AliasPtr;
typedef AliasPtr* AliasHandle;
// On failure the handle is null.
OSErr FSNewAliasMinimal(const FSRef* target, AliasHandle* alias);
// fnfErr when nothing is there any more. `fromFile` is not looked at, paths being absolute;
// `wasChanged` becomes false. Both but the target may be null.
OSErr FSResolveAlias(const FSRef* fromFile, AliasHandle alias, FSRef* target, Boolean* wasChanged);

#ifdef __cplusplus
}
#endif
