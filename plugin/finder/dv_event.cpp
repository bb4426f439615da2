#include "finder/dv_event.h"

#include <stdio.h>

#include "finder/dv_target.h"
#include "tree/dv_tree.h"

bool dv_create_core_event(AEEventID id, AppleEvent* event) {
    dv_desc_t finder;
    OSErr error = dv_make_finder_address(finder.get());
    if (error != noErr) {
        printf("Delvio: Error creating address desc: %d\n", error);
        return false;
    }
    error = AECreateAppleEvent(kAECoreSuite, id, finder.get(), kAutoGenerateReturnID,
                               kAnyTransactionID, event);
    if (error != noErr) printf("Delvio: Error creating Apple Event: %d\n", error);
    return error == noErr;
}

dv_alias_result_t dv_make_alias_desc(const FSRef* ref, AEDesc* desc, OSErr* error) {
    AliasHandle alias = nullptr;
    *error = FSNewAliasMinimal(ref, &alias);
    if (*error != noErr) return DV_ALIAS_NO_HANDLE;
    Handle handle = reinterpret_cast<Handle>(alias);
    *error = AECreateDesc(typeAlias, *handle, GetHandleSize(handle), desc);
    DisposeHandle(handle);
    return *error == noErr ? DV_ALIAS_OK : DV_ALIAS_NO_DESC;
}

void dv_append_alias(const dv_tree_t* elem, AEDescList* list) {
    FSRef ref;
    if (!dv_fsref_for_elem(elem, &ref)) {
        printf("Delvio: Failed to create FSRef for element\n");
        return;
    }
    dv_desc_t alias;
    OSErr error = noErr;
    switch (dv_make_alias_desc(&ref, alias.get(), &error)) {
        case DV_ALIAS_NO_HANDLE:
            printf("Delvio: Error creating alias handle: %d\n", error);
            return;
        case DV_ALIAS_NO_DESC:
            printf("Delvio: Error creating alias desc: %d\n", error);
            return;
        case DV_ALIAS_OK:
            break;
    }
    error = AEPutDesc(list, 0, alias.get());
    if (error != noErr) printf("Delvio: Error putting param desc: %d\n", error);
}

void dv_send_items(AppleEvent* event, AEKeyword keyword, const AEDescList* items, Boolean replace) {
    OSErr error = AEPutParamDesc(event, keyword, items);
    if (error != noErr) {
        printf("Delvio: Error putting list of FSRefs: %d\n", error);
        return;
    }
    AEPutParamPtr(event, keyAEReplacing, typeBoolean, &replace, sizeof replace);
    const AESendMode mode = kAENoReply | kAECanInteract | kAECanSwitchLayer;
    error = AESend(event, nullptr, mode, kAENormalPriority, kAEDefaultTimeout, nullptr, nullptr);
    if (error != noErr) printf("Delvio: Got error sending AppleEvent: %d\n", error);
}
