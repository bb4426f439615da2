#include <Carbon/AppleEvents.h>

#include "carbon/apple_event_values.h"

using events::Entry;
using events::Value;

namespace {

// A copy of what a descriptor holds. The null descriptor holds the null value.
Value copy_of(const AEDesc* desc) {
    const Value* value = events::value_of(desc);
    return value ? *value : Value();
}

OSErr put_item(AEDescList* list, long index, const Value& item) {
    Value* value = events::value_of(list);
    if (!value || value->type != typeAEList) return errAEWrongDataType;
    const long count = static_cast<long>(value->entries.size());
    if (index < 0 || index > count + 1) return errAEIllegalIndex;
    if (index == 0 || index == count + 1) {
        value->entries.push_back({typeWildCard, item});
    } else {
        value->entries[static_cast<size_t>(index) - 1].value = item;
    }
    return noErr;
}

OSErr put_param(AppleEvent* event, AEKeyword keyword, const Value& param) {
    Value* value = events::value_of(event);
    if (!value || !value->is_keyed()) return errAEWrongDataType;
    events::put(&value->entries, keyword, param);
    return noErr;
}

OSErr nth_entry(const AEDescList* list, long index, const Entry** entry) {
    if (!list) return paramErr;
    const Value* value = events::value_of(list);
    if (!value || !value->is_compound()) return errAEWrongDataType;
    if (index < 1) return errAEIllegalIndex;
    if (static_cast<size_t>(index) > value->entries.size()) return errAEDescNotFound;
    *entry = &value->entries[static_cast<size_t>(index) - 1];
    return noErr;
}

OSErr param_of(const AppleEvent* event, AEKeyword keyword, const Value** param) {
    if (!event) return paramErr;
    Value* value = events::value_of(event);
    if (!value || !value->is_keyed()) return errAEWrongDataType;
    *param = events::find(&value->entries, keyword);
    if (!*param) return errAEDescNotFound;
    return noErr;
}

}  // namespace

OSErr AECreateList(const void*, Size, Boolean isRecord, AEDescList* result) {
    if (!result) return paramErr;
    Value value;
    value.type = isRecord ? typeAERecord : typeAEList;
    *result = events::descriptor_of(value);
    return noErr;
}

OSErr AECountItems(const AEDescList* list, long* count) {
    if (!list || !count) return paramErr;
    const Value* value = events::value_of(list);
    if (!value || !value->is_compound()) return errAEWrongDataType;
    *count = static_cast<long>(value->entries.size());
    return noErr;
}

OSErr AEPutPtr(AEDescList* list, long index, DescType type, const void* data, Size size) {
    if (!list || !events::is_plain(type, data, size)) return paramErr;
    return put_item(list, index, events::make_value(type, data, size));
}

OSErr AEPutDesc(AEDescList* list, long index, const AEDesc* desc) {
    if (!list || !desc) return paramErr;
    return put_item(list, index, copy_of(desc));
}

OSErr AEGetNthPtr(const AEDescList* list, long index, DescType desiredType, AEKeyword* keyword,
                  DescType* actualType, void* data, Size maximumSize, Size* actualSize) {
    const Entry* entry;
    const OSErr error = nth_entry(list, index, &entry);
    if (error != noErr) return error;
    if (keyword) *keyword = entry->keyword;
    return events::give_bytes(entry->value, desiredType, actualType, data, maximumSize, actualSize);
}

OSErr AEGetNthDesc(const AEDescList* list, long index, DescType desiredType, AEKeyword* keyword,
                   AEDesc* result) {
    if (!result) return paramErr;
    const Entry* entry;
    const OSErr error = nth_entry(list, index, &entry);
    AEInitializeDesc(result);
    if (error != noErr) return error;
    if (keyword) *keyword = entry->keyword;
    return events::give_desc(entry->value, desiredType, result);
}

OSErr AEPutParamPtr(AppleEvent* event, AEKeyword keyword, DescType type, const void* data,
                    Size size) {
    if (!event || !events::is_plain(type, data, size)) return paramErr;
    return put_param(event, keyword, events::make_value(type, data, size));
}

OSErr AEPutParamDesc(AppleEvent* event, AEKeyword keyword, const AEDesc* desc) {
    if (!event || !desc) return paramErr;
    return put_param(event, keyword, copy_of(desc));
}

OSErr AEGetParamPtr(const AppleEvent* event, AEKeyword keyword, DescType desiredType,
                    DescType* actualType, void* data, Size maximumSize, Size* actualSize) {
    const Value* param;
    const OSErr error = param_of(event, keyword, &param);
    if (error != noErr) return error;
    return events::give_bytes(*param, desiredType, actualType, data, maximumSize, actualSize);
}

OSErr AEGetParamDesc(const AppleEvent* event, AEKeyword keyword, DescType desiredType,
                     AEDesc* result) {
    if (!result) return paramErr;
    const Value* param;
    const OSErr error = param_of(event, keyword, &param);
    AEInitializeDesc(result);
    return error == noErr ? events::give_desc(*param, desiredType, result) : error;
}
