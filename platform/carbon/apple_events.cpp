#include <Carbon/AppleEvents.h>

#include "carbon/apple_event_values.h"

using events::Value;

namespace {

AEReturnID next_return_id() {
    static AEReturnID last = 0;
    // Positive, so that it is never kAutoGenerateReturnID.
    last = last == INT16_MAX ? 1 : static_cast<AEReturnID>(last + 1);
    return last;
}

OSErr attribute_of(const AppleEvent* event, AEKeyword keyword, const Value** attribute) {
    if (!event) return paramErr;
    Value* value = events::value_of(event);
    if (!value || value->type != typeAppleEvent) return errAENotAppleEvent;
    *attribute = events::find(&value->attributes, keyword);
    if (!*attribute) return errAEDescNotFound;
    return noErr;
}

}  // namespace

OSErr AECreateAppleEvent(AEEventClass eventClass, AEEventID eventID, const AEAddressDesc* target,
                         AEReturnID returnID, AETransactionID transactionID, AppleEvent* result) {
    if (!result) return paramErr;
    const Value* address = events::value_of(target);
    AEInitializeDesc(result);
    if (!target) return paramErr;
    if (returnID == kAutoGenerateReturnID) returnID = next_return_id();

    Value event;
    event.type = typeAppleEvent;
    event.attributes = {
        {keyEventClassAttr, events::make_plain(typeType, eventClass)},
        {keyEventIDAttr, events::make_plain(typeType, eventID)},
        {keyAddressAttr, address ? *address : Value()},
        {keyReturnIDAttr, events::make_plain(typeSInt16, returnID)},
        {keyTransactionIDAttr, events::make_plain(typeSInt32, transactionID)},
    };
    *result = events::descriptor_of(event);
    return noErr;
}

OSErr AEGetAttributePtr(const AppleEvent* event, AEKeyword keyword, DescType desiredType,
                        DescType* actualType, void* data, Size maximumSize, Size* actualSize) {
    const Value* attribute;
    const OSErr error = attribute_of(event, keyword, &attribute);
    if (error != noErr) return error;
    return events::give_bytes(*attribute, desiredType, actualType, data, maximumSize, actualSize);
}

OSErr AEGetAttributeDesc(const AppleEvent* event, AEKeyword keyword, DescType desiredType,
                         AEDesc* result) {
    if (!result) return paramErr;
    const Value* attribute;
    const OSErr error = attribute_of(event, keyword, &attribute);
    AEInitializeDesc(result);
    return error == noErr ? events::give_desc(*attribute, desiredType, result) : error;
}
