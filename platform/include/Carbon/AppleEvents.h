// Apple Event Manager: descriptors, lists, records and events, sending and receiving.
//
// A descriptor owns its data: a function that makes a descriptor, or puts one into another, copies
// the data that it is given. The caller disposes of each descriptor that it receives, with
// AEDisposeDesc. A result descriptor is overwritten, never disposed of; after a failure it is the
// null descriptor. Main thread only.
//
// An FSRef in a descriptor lasts as long as the descriptor: reading it gives a reference that is
// not stale, however many others were made since. The bytes may then differ from those put in. The
// file may still be gone, or another file may stand at its path.
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
    typeWildCard = '****',  // as a desired type: any type
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
// Leaves the null descriptor. Disposing of that again is harmless.
OSErr AEDisposeDesc(AEDesc* desc);
// Makes a copy of another type, by the coercions listed below.
OSErr AECoerceDesc(const AEDesc* desc, DescType type, AEDesc* result);
OSErr AEDuplicateDesc(const AEDesc* desc, AEDesc* result);
// 0 for the null descriptor, and for lists, records and events, which have no data of their own.
Size AEGetDescDataSize(const AEDesc* desc);
// The first `maximumSize` bytes. errAEWrongDataType for lists, records and events.
OSErr AEGetDescData(const AEDesc* desc, void* data, Size maximumSize);

// Lists and records. Narrower than the Mac's: items share no common prefix, and one that the caller
// describes is ignored.
OSErr AECreateList(const void* factoring, Size factoredSize, Boolean isRecord, AEDescList* result);
// Counts the items of a list, the fields of a record, or the parameters of an event.
OSErr AECountItems(const AEDescList* list, long* count);
// For lists only. Index 0, or the count plus one, appends; any other index replaces that item.
OSErr AEPutPtr(AEDescList* list, long index, DescType type, const void* data, Size size);
OSErr AEPutDesc(AEDescList* list, long index, const AEDesc* desc);
// Gets one item of a list, record or event; the index counts from 1. `keyword`, `actualType` and
// `actualSize` may be null. The keyword of a list's item is typeWildCard. Coercions as below.
OSErr AEGetNthPtr(const AEDescList* list, long index, DescType desiredType, AEKeyword* keyword,
                  DescType* actualType, void* data, Size maximumSize, Size* actualSize);
OSErr AEGetNthDesc(const AEDescList* list, long index, DescType desiredType, AEKeyword* keyword,
                   AEDesc* result);

// Fields of records and parameters of events. Putting replaces the value of the same keyword.
// Getting coerces to the desired type, else answers errAECoercionFail. Narrower than the Mac's: the
// only coercions are between integers (when the type holds the value), between aliases and file
// references, from either of these to file URLs, from anything to a list of one item, and from such
// a list to its item. An alias of a file that is gone gives its URL but no reference (fnfErr).
// `actualSize` is the whole size, even when fewer bytes were asked for.
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
// Every event has a class, ID, address, return ID and transaction ID. An event that was sent also
// tells whether a reply is awaited, which interaction the send mode allows, and its time-out.
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

// Sends a copy. The handler gets it when this process's run loop next runs in its default, event
// tracking, modal panel or another common mode. Events arrive in the order in which they were sent.
// Narrower than the Mac's: the target is a signature, and any but the one that the host has
// declared for this process (host/process.h) answers procNotFound. The only reply mode is
// kAENoReply; any other answers errAEUnknownSendMode. `reply`, which may be null, becomes the null
// descriptor. Without a reply, `priority`, `idle` and `filter` mean nothing.
OSErr AESend(const AppleEvent* event, AppleEvent* reply, AESendMode mode, AESendPriority priority,
             SInt32 timeOutInTicks, AEIdleUPP idle, AEFilterUPP filter);

// Receiving. The event stays the sender's; `reply` is the null descriptor when none is awaited.
typedef OSErr (*AEEventHandlerProcPtr)(const AppleEvent* event, AppleEvent* reply, void* refcon);
typedef AEEventHandlerProcPtr AEEventHandlerUPP;
// Only the last handler installed for a class and ID is called. Narrower than the Mac's: there are
// no wild cards and no table of the system's own, so `isSystemHandler` is ignored.
OSErr AEInstallEventHandler(AEEventClass eventClass, AEEventID eventID, AEEventHandlerUPP handler,
                            void* refcon, Boolean isSystemHandler);
// A handler that is not null must be the one installed, else errAEHandlerNotFound.
OSErr AERemoveEventHandler(AEEventClass eventClass, AEEventID eventID, AEEventHandlerUPP handler,
                           Boolean isSystemHandler);
// A keyPreDispatch handler sees every event first. When it answers errAEEventNotHandled, the event
// goes on to the handler of its class and ID. Any other keyword answers paramErr.
enum { keyPreDispatch = 'phac' };
OSErr AEInstallSpecialHandler(AEKeyword function, AEEventHandlerUPP handler,
                              Boolean isSystemHandler);
OSErr AERemoveSpecialHandler(AEKeyword function, AEEventHandlerUPP handler,
                             Boolean isSystemHandler);

#ifdef __cplusplus
}
#endif
