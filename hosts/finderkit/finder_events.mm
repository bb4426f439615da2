#include "finderkit/finder_events.h"

#include <AppKit/AppKit.h>
#include <Carbon/Carbon.h>
#include <host/process.h>

#include <limits.h>
#include <stdlib.h>

#include "finderkit/event_trace.h"
#include "finderkit/file_operations.h"
#include "finderkit/open_problems.h"

namespace {

OSErr open_document(const AEDescList* documents, long index) {
    FSRef ref;
    OSStatus error =
        AEGetNthPtr(documents, index, typeFSRef, nullptr, nullptr, &ref, sizeof ref, nullptr);
    char path[PATH_MAX];
    if (error == noErr) error = FSRefMakePath(&ref, reinterpret_cast<UInt8*>(path), sizeof path);
    if (error != noErr) return static_cast<OSErr>(error);
    return open_picked_file(path) ? OSErr{noErr} : OSErr{errAEEventNotHandled};
}

// If a document cannot be opened, goes on with the next; returns the first error.
OSErr open_documents(const AppleEvent* event, AppleEvent*, void*) {
    AEDescList documents;
    OSErr result = AEGetParamDesc(event, keyDirectObject, typeAEList, &documents);
    if (result != noErr) return result;
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    long count = 0;
    AECountItems(&documents, &count);
    for (long index = 1; index <= count; index++) {
        const OSErr error = open_document(&documents, index);
        if (result == noErr) result = error;
    }
    AEDisposeDesc(&documents);
    [pool release];
    return result;
}

const struct {
    AEEventClass event_class;
    AEEventID event_id;
    AEEventHandlerUPP handler;
} answers[] = {
    {kCoreEventClass, kAEOpenDocuments, open_documents},
    {kAECoreSuite, kAEMove, answer_file_operation},
    {kAECoreSuite, kAEClone, answer_file_operation},
    {kAECoreSuite, kAECreateElement, answer_file_operation},
    {kAECoreSuite, kAEDelete, answer_file_operation},
};

}  // namespace

bool answer_finder_events(std::string* problem) {
    for (const auto& answer : answers) {
        AEInstallEventHandler(answer.event_class, answer.event_id, answer.handler, nullptr, false);
    }
    const char* trace = getenv("DELVIO_TRACE");
    return !trace || !*trace || trace_events(trace, problem);
}

void finish_finder_events() {
    while (apple_events_are_waiting()) {
        [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode beforeDate:[NSDate date]];
    }
}
