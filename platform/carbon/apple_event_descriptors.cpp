#include <Carbon/AppleEvents.h>

#include "carbon/apple_event_values.h"

using events::Value;

void AEInitializeDesc(AEDesc* desc) { *desc = {typeNull, nullptr}; }

OSErr AECreateDesc(DescType type, const void* data, Size size, AEDesc* result) {
    if (!result) return paramErr;
    AEInitializeDesc(result);
    if (!events::is_plain(type, data, size)) return paramErr;
    if (type == typeNull) return noErr;
    *result = events::descriptor_of(events::make_value(type, data, size));
    return noErr;
}

OSErr AEDisposeDesc(AEDesc* desc) {
    if (!desc) return paramErr;
    delete events::value_of(desc);
    AEInitializeDesc(desc);
    return noErr;
}

OSErr AECoerceDesc(const AEDesc* desc, DescType type, AEDesc* result) {
    if (!desc || !result) return paramErr;
    const Value* value = events::value_of(desc);
    AEInitializeDesc(result);
    if (value) return events::give_desc(*value, type, result);
    return type == typeNull || type == typeWildCard ? OSErr{noErr} : OSErr{errAECoercionFail};
}

OSErr AEDuplicateDesc(const AEDesc* desc, AEDesc* result) {
    if (!desc || !result) return paramErr;
    const Value* value = events::value_of(desc);
    AEInitializeDesc(result);
    if (value) *result = events::descriptor_of(*value);
    return noErr;
}

Size AEGetDescDataSize(const AEDesc* desc) {
    const Value* value = events::value_of(desc);
    return value ? static_cast<Size>(value->bytes.size()) : 0;
}

OSErr AEGetDescData(const AEDesc* desc, void* data, Size maximumSize) {
    if (!desc || (!data && maximumSize > 0)) return paramErr;
    const Value* value = events::value_of(desc);
    if (!value) return noErr;
    return events::give_bytes(*value, typeWildCard, nullptr, data, maximumSize, nullptr);
}
