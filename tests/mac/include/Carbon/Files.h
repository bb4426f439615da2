// File references, catalog information, aliases and handles.
#pragma once

#include <MacTypes.h>

extern "C" {

#pragma pack(push, 2)

typedef SInt16 FSVolumeRefNum;

struct FSRef {
    UInt8 hidden[80];
};
typedef struct FSRef FSRef;
typedef FSRef* FSRefPtr;

#if __LP64__
struct FSSpec {
    UInt8 hidden[70];
};
#else
struct FSSpec {
    FSVolumeRefNum vRefNum;
    SInt32 parID;
    Str63 name;
};
#endif
typedef struct FSSpec FSSpec;
typedef FSSpec* FSSpecPtr;

struct HFSUniStr255 {
    UInt16 length;
    UniChar unicode[255];
};
typedef struct HFSUniStr255 HFSUniStr255;

struct UTCDateTime {
    UInt16 highSeconds;
    UInt32 lowSeconds;
    UInt16 fraction;
};
typedef struct UTCDateTime UTCDateTime;

struct FSPermissionInfo {
    UInt32 userID;
    UInt32 groupID;
    UInt8 reserved1;
    UInt8 userAccess;
    UInt16 mode;
    struct __FSFileSecurity* fileSec;
};
typedef struct FSPermissionInfo FSPermissionInfo;

typedef UInt32 FSCatalogInfoBitmap;
enum { kFSCatInfoNone = 0x00000000, kFSCatInfoFinderInfo = 0x00000800 };

struct FSCatalogInfo {
    UInt16 nodeFlags;
    FSVolumeRefNum volume;
    UInt32 parentDirID;
    UInt32 nodeID;
    UInt8 sharingFlags;
    UInt8 userPrivileges;
    UInt8 reserved1;
    UInt8 reserved2;
    UTCDateTime createDate;
    UTCDateTime contentModDate;
    UTCDateTime attributeModDate;
    UTCDateTime accessDate;
    UTCDateTime backupDate;
    FSPermissionInfo permissions;
    UInt8 finderInfo[16];
    UInt8 extFinderInfo[16];
    UInt64 dataLogicalSize;
    UInt64 dataPhysicalSize;
    UInt64 rsrcLogicalSize;
    UInt64 rsrcPhysicalSize;
    UInt32 valence;
    UInt32 textEncodingHint;
};
typedef struct FSCatalogInfo FSCatalogInfo;

struct FileInfo {
    OSType fileType;
    OSType fileCreator;
    UInt16 finderFlags;
    Point location;
    UInt16 reservedField;
};
typedef struct FileInfo FileInfo;
enum { kIsAlias = 0x8000, kIsInvisible = 0x4000, kColor = 0x000E };

OSStatus FSPathMakeRef(const UInt8* path, FSRef* ref, Boolean* isDirectory);
OSStatus FSRefMakePath(const FSRef* ref, UInt8* path, UInt32 pathBufferSize);
OSErr FSGetCatalogInfo(const FSRef* ref, FSCatalogInfoBitmap whichInfo, FSCatalogInfo* catalogInfo,
                       HFSUniStr255* outName, FSSpecPtr fsSpec, FSRef* parentRef);

struct AliasRecord {
    UInt8 hidden[6];
};
typedef struct AliasRecord AliasRecord;
typedef AliasRecord* AliasPtr;
typedef AliasPtr* AliasHandle;

enum { kResolveAliasFileNoUI = 0x00000001 };

OSErr FSNewAliasMinimal(const FSRef* target, AliasHandle* inAlias);
OSErr FSResolveAliasFileWithMountFlags(FSRef* theRef, Boolean resolveAliasChains,
                                       Boolean* targetIsFolder, Boolean* wasAliased,
                                       unsigned long mountFlags);

Size GetHandleSize(Handle handle);
void DisposeHandle(Handle handle);

#pragma pack(pop)
}
