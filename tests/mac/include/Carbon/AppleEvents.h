#pragma once

#include <MacTypes.h>

extern "C" {

#pragma pack(push, 2)

typedef FourCharCode DescType;
typedef FourCharCode AEKeyword;
typedef FourCharCode AEEventClass;
typedef FourCharCode AEEventID;

typedef struct OpaqueAEDataStorageType* AEDataStorageType;
typedef AEDataStorageType* AEDataStorage;

struct AEDesc {
    DescType descriptorType;
    AEDataStorage dataHandle;
};
typedef struct AEDesc AEDesc;
typedef AEDesc AEAddressDesc;
typedef AEDesc AEDescList;
typedef AEDescList AERecord;
typedef AERecord AppleEvent;
typedef SInt16 AEReturnID;
typedef SInt32 AETransactionID;
typedef SInt32 AESendMode;
typedef SInt16 AESendPriority;

enum {
    typeBoolean = 'bool',
    typeSInt32 = 'long',
    typeUnicodeText = 'utxt',
    typeType = 'type',
    typeFSRef = 'fsrf',
    typeAlias = 'alis',
    typeApplSignature = 'sign'
};
enum {
    keyDirectObject = '----',
    keyAEInsertHere = 'insh',
    keyAEReplacing = 'alrp',
    keyAETo = 'to  ',
    keyAEObjectClass = 'kocl',
    pName = 'pnam'
};
enum { kCoreEventClass = 'aevt', kAEOpenDocuments = 'odoc' };
enum {
    kAECoreSuite = 'core',
    kAEMove = 'move',
    kAEClone = 'clon',
    kAECreateElement = 'crel',
    kAEDelete = 'delo'
};
enum { kAutoGenerateReturnID = -1, kAnyTransactionID = 0 };
enum { kAENoReply = 0x00000001, kAECanInteract = 0x00000020, kAECanSwitchLayer = 0x00000040 };
enum { kAENormalPriority = 0x00000000, kAEDefaultTimeout = -1 };

struct EventRecord;
typedef Boolean (*AEIdleProcPtr)(EventRecord* event, SInt32* sleepTime, struct RgnHandle* region);
typedef Boolean (*AEFilterProcPtr)(EventRecord* event, SInt32 returnID, SInt32 transactionID,
                                   const AEAddressDesc* sender);
typedef AEIdleProcPtr AEIdleUPP;
typedef AEFilterProcPtr AEFilterUPP;

void AEInitializeDesc(AEDesc* desc);
OSErr AECreateDesc(DescType type, const void* data, Size size, AEDesc* result);
OSErr AEDisposeDesc(AEDesc* desc);
OSErr AECreateList(const void* factoringPtr, Size factoredSize, Boolean isRecord,
                   AEDescList* result);
OSErr AEPutDesc(AEDescList* list, long index, const AEDesc* desc);
OSErr AEPutParamPtr(AppleEvent* event, AEKeyword keyword, DescType type, const void* data,
                    Size size);
OSErr AEPutParamDesc(AppleEvent* event, AEKeyword keyword, const AEDesc* desc);
#define AEPutKeyPtr(record, keyword, type, data, size) \
    AEPutParamPtr((record), (keyword), (type), (data), (size))
OSErr AECreateAppleEvent(AEEventClass eventClass, AEEventID eventID, const AEAddressDesc* target,
                         AEReturnID returnID, AETransactionID transactionID, AppleEvent* result);
OSErr AESend(const AppleEvent* event, AppleEvent* reply, AESendMode mode, AESendPriority priority,
             SInt32 timeOutInTicks, AEIdleUPP idle, AEFilterUPP filter);

#pragma pack(pop)
}
