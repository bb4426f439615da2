#include "finder/dv_open.h"

#include "finder/dv_target.h"

namespace {

OSErr create_open_event(AppleEvent* event) {
    AEAddressDesc finder;
    OSErr error = dv_make_finder_address(&finder);
    if (error != noErr) return error;
    error = AECreateAppleEvent(kCoreEventClass, kAEOpenDocuments, &finder, kAutoGenerateReturnID,
                               kAnyTransactionID, event);
    AEDisposeDesc(&finder);
    return error;
}

void add_reference(const FSRef* ref, AEDescList* list) {
    AEDesc document;
    AECreateDesc(typeFSRef, ref, sizeof *ref, &document);
    AEPutDesc(list, 0, &document);
    AEDisposeDesc(&document);
}

}  // namespace

OSErr dv_send_open_to_finder(const FSRef* ref) {
    AppleEvent event;
    OSErr error = create_open_event(&event);
    if (error != noErr) return error;

    AEDescList list;
    AECreateList(nullptr, 0, false, &list);
    add_reference(ref, &list);
    error = AEPutParamDesc(&event, keyDirectObject, &list);
    AEDisposeDesc(&list);
    // The event stays behind then, as it always has.
    if (error != noErr) return error;
    AESend(&event, nullptr, kAENoReply, kAENormalPriority, kAEDefaultTimeout, nullptr, nullptr);
    AEDisposeDesc(&event);
    return noErr;
}
