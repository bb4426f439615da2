// A plug-in that leaves the host's menu alone and reports that it was entered. It asks the host to
// open the file that PROBE_DOCUMENT names.
#include <Carbon/Carbon.h>
#include <stdlib.h>

static void send_open_event(const char* path) {
    const OSType signature = 'MACS';
    FSRef ref;
    FSPathMakeRef(reinterpret_cast<const UInt8*>(path), &ref, nullptr);
    AEAddressDesc host;
    AECreateDesc(typeApplSignature, &signature, sizeof signature, &host);
    AppleEvent event;
    AECreateAppleEvent(kCoreEventClass, kAEOpenDocuments, &host, kAutoGenerateReturnID,
                       kAnyTransactionID, &event);
    AEPutParamPtr(&event, keyDirectObject, typeFSRef, &ref, sizeof ref);
    AESend(&event, nullptr, kAENoReply, kAENormalPriority, kAEDefaultTimeout, nullptr, nullptr);
    AEDisposeDesc(&event);
    AEDisposeDesc(&host);
}

extern "C" __attribute__((visibility("default"))) int dv_load_delvio() {
    if (const char* document = getenv("PROBE_DOCUMENT")) send_open_event(document);
    return setenv("PROBE_PLUG_IN", "entered", 1);
}
