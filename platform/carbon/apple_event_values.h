// What Apple Event descriptors hold. Main thread, because they may hold file references.
#pragma once

#include <Carbon/AppleEvents.h>

#include <string>
#include <vector>

namespace events {

struct Entry;

struct Value {
    DescType type = typeNull;
    std::vector<UInt8> bytes;       // the data of a plain type
    std::string path;               // where a file reference led when it was put in
    std::vector<Entry> entries;     // items, fields or parameters
    std::vector<Entry> attributes;  // of events

    bool is_keyed() const { return type == typeAERecord || type == typeAppleEvent; }
    bool is_compound() const { return is_keyed() || type == typeAEList; }
};

struct Entry {
    AEKeyword keyword;
    Value value;
};

// Whether these arguments make a plain value. Types that hold others have functions of their own.
bool is_plain(DescType type, const void* data, Size size);
// Makes a plain value. The value of a file reference also keeps the path.
Value make_value(DescType type, const void* data, Size size);

template <typename Plain>
Value make_plain(DescType type, Plain plain) {
    return make_value(type, &plain, sizeof plain);
}

// The bytes to read. A file reference that has become stale is made anew first.
const std::vector<UInt8>& fresh_bytes(Value* value);

// Answers errAECoercionFail when the value cannot become `desired`, which may be typeWildCard.
OSErr coerce(const Value& value, DescType desired, Value* result);

// Null when no entry has the keyword.
Value* find(std::vector<Entry>* entries, AEKeyword keyword);
void put(std::vector<Entry>* entries, AEKeyword keyword, const Value& value);

// The value that a descriptor owns; null for a null descriptor.
Value* value_of(const AEDesc* desc);
// A descriptor that owns the value.
AEDesc descriptor_of(Value value);

// Hands a value out: as a descriptor, or as bytes.
OSErr give_desc(const Value& value, DescType desired, AEDesc* result);
OSErr give_bytes(const Value& value, DescType desired, DescType* actual, void* data, Size maximum,
                 Size* actual_size);

}  // namespace events
