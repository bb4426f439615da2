#include "carbon/apple_event_handlers.h"

#include <map>
#include <utility>

namespace {

using Kind = std::pair<AEEventClass, AEEventID>;

struct Handler {
    AEEventHandlerUPP call;
    void* refcon;
};

std::map<Kind, Handler>& handlers() {
    static auto& handlers = *new std::map<Kind, Handler>;
    return handlers;
}

AEEventHandlerUPP first_look;

OSErr code_attribute(const AppleEvent& event, AEKeyword keyword, FourCharCode* code) {
    return AEGetAttributePtr(&event, keyword, typeType, nullptr, code, sizeof *code, nullptr);
}

void dispatch(const AppleEvent& event) {
    AppleEvent reply = {typeNull, nullptr};
    if (first_look && first_look(&event, &reply, nullptr) != errAEEventNotHandled) return;
    Kind kind;
    code_attribute(event, keyEventClassAttr, &kind.first);
    code_attribute(event, keyEventIDAttr, &kind.second);
    const auto found = handlers().find(kind);
    if (found == handlers().end()) return;
    // A handler may remove itself.
    const Handler handler = found->second;
    handler.call(&event, &reply, handler.refcon);
}

}  // namespace

void events::handle(Value value) {
    AppleEvent event = descriptor_of(std::move(value));
    dispatch(event);
    AEDisposeDesc(&event);
}

OSErr AEInstallEventHandler(AEEventClass eventClass, AEEventID eventID, AEEventHandlerUPP handler,
                            void* refcon, Boolean) {
    if (!handler) return paramErr;
    handlers()[{eventClass, eventID}] = {handler, refcon};
    return noErr;
}

OSErr AERemoveEventHandler(AEEventClass eventClass, AEEventID eventID, AEEventHandlerUPP handler,
                           Boolean) {
    const auto found = handlers().find({eventClass, eventID});
    if (found == handlers().end()) return errAEHandlerNotFound;
    if (handler && handler != found->second.call) return errAEHandlerNotFound;
    handlers().erase(found);
    return noErr;
}

OSErr AEInstallSpecialHandler(AEKeyword function, AEEventHandlerUPP handler, Boolean) {
    if (function != keyPreDispatch || !handler) return paramErr;
    first_look = handler;
    return noErr;
}

OSErr AERemoveSpecialHandler(AEKeyword function, AEEventHandlerUPP handler, Boolean) {
    if (function != keyPreDispatch) return paramErr;
    if (!first_look || (handler && handler != first_look)) return errAEHandlerNotFound;
    first_look = nullptr;
    return noErr;
}
