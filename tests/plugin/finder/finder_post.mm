#include "plugin/finder/finder_post.h"

#include <host/process.h>
#import <Foundation/Foundation.h>
#include <dlfcn.h>
#include <limits.h>
#include <string.h>

#include <deque>

namespace test {

namespace {

std::vector<Letter> arrived;
std::deque<Sending> sent;

std::vector<UInt8> bytes_of(const AEDesc& desc) {
    std::vector<UInt8> bytes(static_cast<size_t>(AEGetDescDataSize(&desc)));
    AEGetDescData(&desc, bytes.data(), static_cast<Size>(bytes.size()));
    return bytes;
}

std::string path_of(const AEDesc& desc) {
    AEDesc list, ref_desc;
    FSRef ref;
    char path[PATH_MAX] = "";
    // Goes through a list, because single descriptors are not coerced.
    AECreateList(nullptr, 0, false, &list);
    AEPutDesc(&list, 0, &desc);
    if (AEGetNthDesc(&list, 1, typeFSRef, nullptr, &ref_desc) == noErr) {
        AEGetDescData(&ref_desc, &ref, sizeof ref);
        FSRefMakePath(&ref, reinterpret_cast<UInt8*>(path), sizeof path);
        AEDisposeDesc(&ref_desc);
    }
    AEDisposeDesc(&list);
    return path;
}

void read_items(const AEDescList& list, Letter* letter) {
    long count = 0;
    AECountItems(&list, &count);
    for (long index = 1; index <= count; index++) {
        AEDesc item;
        AEGetNthDesc(&list, index, typeWildCard, nullptr, &item);
        letter->item_types.push_back(item.descriptorType);
        letter->items.push_back(path_of(item));
        AEDisposeDesc(&item);
    }
}

void read_parameter(AEKeyword keyword, const AEDesc& desc, Letter* letter) {
    letter->parameters.push_back({keyword, desc.descriptorType});
    if (desc.descriptorType == typeAEList) read_items(desc, letter);
    if (keyword == 'insh') letter->destination = path_of(desc);
    if (keyword == 'alrp') letter->replacing = bytes_of(desc);
    if (keyword == 'kocl') letter->kind = bytes_of(desc);
}

FourCharCode attribute(const AppleEvent* event, AEKeyword keyword, DescType* type = nullptr) {
    FourCharCode code = 0;
    AEGetAttributePtr(event, keyword, typeWildCard, type, &code, sizeof code, nullptr);
    return code;
}

OSErr receive(const AppleEvent* event, AppleEvent*, void*) {
    Letter letter;
    letter.event_class = attribute(event, keyEventClassAttr);
    letter.event_id = attribute(event, keyEventIDAttr);
    letter.address = attribute(event, keyAddressAttr, &letter.address_type);
    long count = 0;
    AECountItems(event, &count);
    for (long index = 1; index <= count; index++) {
        AEDesc desc;
        AEKeyword keyword = 0;
        AEGetNthDesc(event, index, typeWildCard, &keyword, &desc);
        read_parameter(keyword, desc, &letter);
        AEDisposeDesc(&desc);
    }
    if (!sent.empty()) {
        letter.sending = sent.front();
        sent.pop_front();
    }
    arrived.push_back(letter);
    return noErr;
}

}  // namespace

FinderPost::FinderPost() {
    declare_process_signature('MACS');
    AEInstallSpecialHandler(keyPreDispatch, receive, false);
    arrived.clear();
    sent.clear();
}

FinderPost::~FinderPost() {
    letters();
    AERemoveSpecialHandler(keyPreDispatch, receive, false);
    declare_process_signature(0);
}

const std::vector<Letter>& FinderPost::letters() {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    while (apple_events_are_waiting()) {
        [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode beforeDate:[NSDate date]];
    }
    [pool release];
    return arrived;
}

void FinderPost::clear() {
    letters();
    arrived.clear();
}

}  // namespace test

// Replaces the platform's function and calls it: the receiver does not see everything that the
// sender says.
extern "C" OSErr AESend(const AppleEvent* event, AppleEvent* reply, AESendMode mode,
                        AESendPriority priority, SInt32 timeOutInTicks, AEIdleUPP idle,
                        AEFilterUPP filter) {
    static auto* next = reinterpret_cast<decltype(&AESend)>(dlsym(RTLD_NEXT, "AESend"));
    const OSErr error = next(event, reply, mode, priority, timeOutInTicks, idle, filter);
    if (error == noErr) {
        test::sent.push_back({reply != nullptr, idle || filter, mode, priority, timeOutInTicks});
    }
    return error;
}
