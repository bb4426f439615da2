#include "carbon/apple_event_values.h"

#include <host/glib_owners.h>
#include <string.h>

#include <algorithm>
#include <limits>
#include <utility>

#include <glib.h>

#include "carbon/alias_records.h"
#include "carbon/file_references.h"

namespace events {

namespace {

template <typename Integer>
bool read_integer(const std::vector<UInt8>& bytes, SInt64* number) {
    Integer integer;
    if (bytes.size() != sizeof integer) return false;
    memcpy(&integer, bytes.data(), sizeof integer);
    *number = integer;
    return true;
}

template <typename Integer>
bool make_integer(DescType type, SInt64 number, Value* result) {
    using Limits = std::numeric_limits<Integer>;
    if (number < Limits::min() || number > Limits::max()) return false;
    *result = make_plain(type, static_cast<Integer>(number));
    return true;
}

const struct IntegerType {
    DescType type;
    bool (*read)(const std::vector<UInt8>& bytes, SInt64* number);
    bool (*make)(DescType type, SInt64 number, Value* result);
} integer_types[] = {
    {typeSInt16, read_integer<SInt16>, make_integer<SInt16>},
    {typeSInt32, read_integer<SInt32>, make_integer<SInt32>},
    {typeUInt32, read_integer<UInt32>, make_integer<UInt32>},
    {typeSInt64, read_integer<SInt64>, make_integer<SInt64>},
};

const IntegerType* integer_type(DescType type) {
    for (const IntegerType& known : integer_types) {
        if (known.type == type) return &known;
    }
    return nullptr;
}

bool coerce_integer(const Value& value, DescType desired, Value* result) {
    const IntegerType* from = integer_type(value.type);
    const IntegerType* to = integer_type(desired);
    SInt64 number;
    return from && to && from->read(value.bytes, &number) && to->make(desired, number, result);
}

std::string path_of(const Value& value) {
    if (value.type == typeFSRef) return value.path;
    if (value.type != typeAlias) return {};
    return files::path_of_alias(value.bytes.data(), value.bytes.size());
}

OSErr make_reference(const std::string& path, Value* result) {
    FSRef ref;
    const OSErr error = files::make_reference_again(path, &ref);
    if (error == noErr) *result = make_plain(typeFSRef, ref);
    return error;
}

OSErr make_alias(const std::string& path, Value* result) {
    const std::vector<UInt8> bytes = files::alias_of_path(path);
    *result = make_value(typeAlias, bytes.data(), static_cast<Size>(bytes.size()));
    return noErr;
}

OSErr make_url(const std::string& path, Value* result) {
    const std::string url = files::taken_text(g_filename_to_uri(path.c_str(), nullptr, nullptr));
    if (url.empty()) return errAECoercionFail;
    *result = make_value(typeFileURL, url.data(), static_cast<Size>(url.size()));
    return noErr;
}

const struct {
    DescType type;
    OSErr (*make)(const std::string& path, Value* result);
} file_types[] = {{typeFSRef, make_reference}, {typeAlias, make_alias}, {typeFileURL, make_url}};

OSErr coerce_file(const Value& value, DescType desired, Value* result) {
    const std::string path = path_of(value);
    for (const auto& known : file_types) {
        if (known.type == desired && !path.empty()) return known.make(path, result);
    }
    return errAECoercionFail;
}

}  // namespace

bool is_plain(DescType type, const void* data, Size size) {
    const bool compound = type == typeAEList || type == typeAERecord || type == typeAppleEvent;
    return !compound && (size == 0 || (size > 0 && data));
}

Value make_value(DescType type, const void* data, Size size) {
    Value value;
    value.type = type;
    const auto* bytes = static_cast<const UInt8*>(data);
    if (size > 0) value.bytes.assign(bytes, bytes + size);
    if (type == typeFSRef && size == sizeof(FSRef)) {
        FSRef ref;
        memcpy(&ref, data, sizeof ref);
        if (const std::string* path = files::kept_path(ref)) value.path = *path;
    }
    return value;
}

const std::vector<UInt8>& fresh_bytes(Value* value) {
    if (value->path.empty()) return value->bytes;
    FSRef ref;
    memcpy(&ref, value->bytes.data(), sizeof ref);
    // When the file is gone, the old reference stays and answers that.
    if (!files::kept_path(ref) && files::make_reference_again(value->path, &ref) == noErr) {
        memcpy(value->bytes.data(), &ref, sizeof ref);
    }
    return value->bytes;
}

OSErr coerce(const Value& value, DescType desired, Value* result) {
    if (desired == typeWildCard || desired == value.type) {
        *result = value;
        return noErr;
    }
    if (desired == typeAEList && !value.is_keyed()) {
        *result = {};
        result->type = typeAEList;
        result->entries.push_back({typeWildCard, value});
        return noErr;
    }
    if (value.type == typeAEList && value.entries.size() == 1) {
        return coerce(value.entries[0].value, desired, result);
    }
    if (coerce_integer(value, desired, result)) return noErr;
    return coerce_file(value, desired, result);
}

Value* find(std::vector<Entry>* entries, AEKeyword keyword) {
    const auto found = std::find_if(entries->begin(), entries->end(),
                                    [=](const Entry& entry) { return entry.keyword == keyword; });
    return found == entries->end() ? nullptr : &found->value;
}

void put(std::vector<Entry>* entries, AEKeyword keyword, const Value& value) {
    if (Value* known = find(entries, keyword)) {
        *known = value;
    } else {
        entries->push_back({keyword, value});
    }
}

Value* value_of(const AEDesc* desc) {
    return desc ? reinterpret_cast<Value*>(desc->dataHandle) : nullptr;
}

AEDesc descriptor_of(Value value) {
    const DescType type = value.type;
    return {type, reinterpret_cast<AEDataStorage>(new Value(std::move(value)))};
}

OSErr give_desc(const Value& value, DescType desired, AEDesc* result) {
    Value coerced;
    const OSErr error = coerce(value, desired, &coerced);
    if (error == noErr) *result = descriptor_of(std::move(coerced));
    return error;
}

OSErr give_bytes(const Value& value, DescType desired, DescType* actual, void* data, Size maximum,
                 Size* actual_size) {
    Value coerced;
    const OSErr error = coerce(value, desired, &coerced);
    if (error != noErr) return error;
    if (coerced.is_compound()) return errAEWrongDataType;
    const std::vector<UInt8>& bytes = fresh_bytes(&coerced);
    const Size size = static_cast<Size>(bytes.size());
    if (actual) *actual = coerced.type;
    if (actual_size) *actual_size = size;
    const Size given = std::min(size, maximum);
    if (data && given > 0) memcpy(data, bytes.data(), static_cast<size_t>(given));
    return noErr;
}

}  // namespace events
