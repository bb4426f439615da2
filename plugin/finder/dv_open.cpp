#include "finder/dv_open.h"

#include <stdlib.h>

#include <vector>

#include "finder/dv_target.h"
#include "tree/dv_tree.h"

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

// Appends a reference to the element's own file. An element without a path gets none; an element
// whose file is gone gets one that leads nowhere.
void append_reference(const dv_tree_t* elem, std::vector<FSRef>& refs) {
    char* path = dv_path_for_elem(elem, 0, 1);
    if (!path) return;
    FSRef ref = {};
    FSPathMakeRef(reinterpret_cast<const UInt8*>(path), &ref, nullptr);
    free(path);
    refs.push_back(ref);
}

std::vector<FSRef> references_to(const dv_tree_t* documents, bool many) {
    std::vector<FSRef> refs;
    if (!many) {
        append_reference(documents, refs);
        return refs;
    }
    for (const dv_tree_t* elem = documents; elem; elem = elem->next) {
        if (!(elem->origin & DV_ORIGIN_USER_FOLDER)) append_reference(elem, refs);
    }
    return refs;
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
    // On this path the event is not disposed of.
    if (error != noErr) return error;
    AESend(&event, nullptr, kAENoReply, kAENormalPriority, kAEDefaultTimeout, nullptr, nullptr);
    AEDisposeDesc(&event);
    return noErr;
}

void dv_open_file_with_app(delvio_t*, const dv_tree_t* documents, const dv_tree_t* application,
                           bool many) {
    const std::vector<FSRef> refs = references_to(documents, many);
    if (refs.empty()) return;
    std::vector<FSRef> app;
    append_reference(application, app);
    if (app.empty()) return;

    LSLaunchFSRefSpec request = {};
    request.appRef = app.data();
    request.numDocs = static_cast<UInt32>(refs.size());
    request.itemRefs = refs.data();
    request.passThruParams = nullptr;
    request.launchFlags = kLSLaunchDefaults;
    request.asyncRefCon = nullptr;
    FSRef launched;
    LSOpenFromRefSpec(&request, &launched);
}
