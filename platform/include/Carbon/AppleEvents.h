// Apple Event Manager: descriptors, lists, records and events, sending and receiving.
//
// A descriptor owns its data: what makes one copies what it is given, what puts one into another
// copies it, and who has got one disposes of it with AEDisposeDesc. A result descriptor is written
// over, never disposed of; after a failure it is the null descriptor. Main thread only.
//
// An FSRef in a descriptor lasts as long as the descriptor: whoever reads it gets a reference that
// is not stale, whatever number of others were made meanwhile (the bytes may then differ from those
// put in). The file may be gone, or another may stand at its path, all the same.
#pragma once

#include <Carbon/MacTypes.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef FourCharCode DescType;
typedef FourCharCode AEKeyword;
typedef FourCharCode AEEventClass;
typedef FourCharCode AEEventID;
typedef struct OpaqueAEDataStorageType* AEDataStorageType;
typedef AEDataStorageType* AEDataStorage;

typedef struct AEDesc {
    DescType descriptorType;
    AEDataStorage dataHandle;
} AEDesc;
typedef AEDesc AEAddressDesc;
typedef AEDesc AEDescList;
typedef AEDescList AERecord;
typedef AERecord AppleEvent;

// Types of data.
enum {
    typeNull = 'null',
    typeWildCard = '****',  // as a desired type: whatever it is
    typeBoolean = 'bool',
    typeSInt16 = 'shor',
    typeSInt32 = 'long',
    typeUInt32 = 'magn',
    typeSInt64 = 'comp',
    typeUnicodeText = 'utxt',  // UTF-16 in native byte order
    typeUTF8Text = 'utf8',
    typeChar = 'TEXT',
    typeType = 'type',
    typeEnumerated = 'enum',
    typeKeyword = 'keyw',
    typeFSRef = 'fsrf',
    typeAlias = 'alis',
    typeFileURL = 'furl',  // "file:///..." in UTF-8
    typeApplSignature = 'sign',
    typeAEList = 'list',
    typeAERecord = 'reco',
    typeAppleEvent = 'aevt'
};

// Keywords of parameters and attributes.
enum {
    keyDirectObject = '----',
    keyAEInsertHere = 'insh',
    keyAEReplacing = 'alrp',
    keyAETo = 'to  ',
    keyAEObjectClass = 'kocl',
    pName = 'pnam',
    keyEventClassAttr = 'evcl',
    keyEventIDAttr = 'evid',
    keyAddressAttr = 'addr',
    keyReturnIDAttr = 'rtid',
    keyTransactionIDAttr = 'tran',
    keyTimeoutAttr = 'timo',
    keyInteractLevelAttr = 'inte',
    keyReplyRequestedAttr = 'repq'
};

enum { kCoreEventClass = 'aevt', kAEOpenDocuments = 'odoc' };
enum {
    kAECoreSuite = 'core',
    kAEMove = 'move',
    kAEClone = 'clon',
    kAECreateElement = 'crel',
    kAEDelete = 'delo'
};

enum {
    errAECoercionFail = -1700,
    errAEDescNotFound = -1701,
    errAEWrongDataType = -1703,
    errAENotAEDesc = -1704,
    errAENotAppleEvent = -1707,
    errAEEventNotHandled = -1708,
    errAEUnknownSendMode = -1710,
    errAEUnknownAddressType = -1716,
    errAEHandlerNotFound = -1717,
    errAEIllegalIndex = -1719,
    errAENoSuchObject = -1728
};

// Descriptors.
void AEInitializeDesc(AEDesc* desc);
OSErr AECreateDesc(DescType type, const void* data, Size size, AEDesc* result);
// Leaves the null descriptor, of which to dispose again is harmless.
OSErr AEDisposeDesc(AEDesc* desc);
// A copy of another type, by the coercions that are named below.
OSErr AECoerceDesc(const AEDesc* desc, DescType type, AEDesc* result);
OSErr AEDuplicateDesc(const AEDesc* desc, AEDesc* result);
// 0 for the null descriptor, and for lists, records and events, which have no data of their own.
Size AEGetDescDataSize(const AEDesc* desc);
// The first `maximumSize` bytes. errAEWrongDataType for lists, records and events.
OSErr AEGetDescData(const AEDesc* desc, void* data, Size maximumSize);

// Lists and records. Narrower than the Mac's: no common prefix is factored out; what is said of one
// is ignored.
OSErr AECreateList(const void* factoring, Size factoredSize, Boolean isRecord, AEDescList* result);
// The items of a list, the fields of a record, or the parameters of an event.
OSErr AECountItems(const AEDescList* list, long* count);
// To a list alone: index 0, or one more than there are, adds at the end; another index replaces.
OSErr AEPutPtr(AEDescList* list, long index, DescType type, const void* data, Size size);
OSErr AEPutDesc(AEDescList* list, long index, const AEDesc* desc);
// The item at the index, counted from 1, of a list, record or event. `keyword`, `actualType` and
// `actualSize` may be null; of a list's item the keyword is typeWildCard. Coercions as below.
OSErr AEGetNthPtr(const AEDescList* list, long index, DescType desiredType, AEKeyword* keyword,
                  DescType* actualType, void* data, Size maximumSize, Size* actualSize);
OSErr AEGetNthDesc(const AEDescList* list, long index, DescType desiredType, AEKeyword* keyword,
                   AEDesc* result);

// Fields of records and parameters of events. Putting replaces what has the keyword. Getting
// coerces to the desired type, else answers errAECoercionFail. Narrower than the Mac's: the
// coercions are those between integers that hold the value, between aliases and file references, of
// these to file URLs, of anything to a list of one, and of a list of one to its item. An alias of a
// file that is gone gives no reference (fnfErr), but its URL. `actualSize` is the size of the
// whole, also when less was asked for.
OSErr AEPutParamPtr(AppleEvent* event, AEKeyword keyword, DescType type, const void* data,
                    Size size);
OSErr AEPutParamDesc(AppleEvent* event, AEKeyword keyword, const AEDesc* desc);
OSErr AEGetParamPtr(const AppleEvent* event, AEKeyword keyword, DescType desiredType,
                    DescType* actualType, void* data, Size maximumSize, Size* actualSize);
OSErr AEGetParamDesc(const AppleEvent* event, AEKeyword keyword, DescType desiredType,
                     AEDesc* result);
#define AEPutKeyPtr(record, keyword, type, data, size) \
    AEPutParamPtr((record), (keyword), (type), (data), (size))
#define AEPutKeyDesc(record, keyword, desc) AEPutParamDesc((record), (keyword), (desc))
#define AEGetKeyPtr(record, keyword, desired, actual, data, maximum, size) \
    AEGetParamPtr((record), (keyword), (desired), (actual), (data), (maximum), (size))
#define AEGetKeyDesc(record, keyword, desired, result) \
    AEGetParamDesc((record), (keyword), (desired), (result))

// Events.
typedef SInt16 AEReturnID;
typedef SInt32 AETransactionID;
enum { kAutoGenerateReturnID = -1, kAnyTransactionID = 0 };
OSErr AECreateAppleEvent(AEEventClass eventClass, AEEventID eventID, const AEAddressDesc* target,
                         AEReturnID returnID, AETransactionID transactionID, AppleEvent* result);
// Every event has its class, ID, address, return and transaction ID; one that was sent also whether
// a reply is awaited, the interaction allowed (of the send mode) and the time-out.
OSErr AEGetAttributePtr(const AppleEvent* event, AEKeyword keyword, DescType desiredType,
                        DescType* actualType, void* data, Size maximumSize, Size* actualSize);
OSErr AEGetAttributeDesc(const AppleEvent* event, AEKeyword keyword, DescType desiredType,
                         AEDesc* result);

typedef SInt32 AESendMode;
typedef SInt16 AESendPriority;
enum {
    kAENoReply = 0x01,
    kAEQueueReply = 0x02,
    kAEWaitReply = 0x03,
    kAENeverInteract = 0x10,
    kAECanInteract = 0x20,
    kAEAlwaysInteract = 0x30,
    kAECanSwitchLayer = 0x40
};
enum { kAENormalPriority = 0, kAEDefaultTimeout = -1 };
typedef Boolean (*AEIdleUPP)(void* event, SInt32* sleepTime, void** mouseRegion);
typedef Boolean (*AEFilterUPP)(void* event, SInt32 returnID, SInt32 transactionID,
                               const AEAddressDesc* sender);

// Sends a copy; the handler gets it when this process's run loop next runs in its default, event
// tracking, modal panel or another common mode, and the events in the order in which they were
// sent. Narrower than the Mac's: the target is a signature; procNotFound for any but the one that
// the host has declared for this process (host/process.h); kAENoReply is the only way,
// whatever mode of reply else answers errAEUnknownSendMode. `reply`, which may be null, becomes the
// null descriptor; priority, idle and filter procedure mean nothing without a reply.
OSErr AESend(const AppleEvent* event, AppleEvent* reply, AESendMode mode, AESendPriority priority,
             SInt32 timeOutInTicks, AEIdleUPP idle, AEFilterUPP filter);

// Receiving. The event stays the sender's; `reply` is the null descriptor when none is awaited.
typedef OSErr (*AEEventHandlerProcPtr)(const AppleEvent* event, AppleEvent* reply, void* refcon);
typedef AEEventHandlerProcPtr AEEventHandlerUPP;
// The last handler installed for a class and ID is the one that is called. Narrower than the Mac's:
// no wild cards, and no table of the system's own: `isSystemHandler` is ignored.
OSErr AEInstallEventHandler(AEEventClass eventClass, AEEventID eventID, AEEventHandlerUPP handler,
                            void* refcon, Boolean isSystemHandler);
// A handler that is not null must be the one installed, else errAEHandlerNotFound.
OSErr AERemoveEventHandler(AEEventClass eventClass, AEEventID eventID, AEEventHandlerUPP handler,
                           Boolean isSystemHandler);
// With keyPreDispatch: sees every event first; what it answers with errAEEventNotHandled goes on to
// its handler. Any other keyword: paramErr.
enum { keyPreDispatch = 'phac' };
OSErr AEInstallSpecialHandler(AEKeyword function, AEEventHandlerUPP handler,
                              Boolean isSystemHandler);
OSErr AERemoveSpecialHandler(AEKeyword function, AEEventHandlerUPP handler,
                             Boolean isSystemHandler);

#ifdef __cplusplus
}
#endif
