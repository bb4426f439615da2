#include "finder/dv_record.h"

#include <stdlib.h>

#include <vector>

namespace {

const AEKeyword number_keyword = 'cmcd';

void put_name(CFStringRef name, AERecord* record) {
    const CFIndex length = CFStringGetLength(name);
    const UniChar* text = CFStringGetCharactersPtr(name);
    std::vector<UniChar> copy;
    if (!text) {
        copy.resize(static_cast<size_t>(length));
        CFStringGetCharacters(name, {0, length}, copy.data());
        text = copy.data();
    }
    const Size size = length * static_cast<Size>(sizeof *text);
    AEPutKeyPtr(record, pName, typeUnicodeText, text, size);
}

}  // namespace

AERecord* dv_make_AE_record(int32_t number, const char* name) {
    auto* record = static_cast<AERecord*>(calloc(1, sizeof(AERecord)));
    if (!record) return nullptr;
    AEInitializeDesc(record);
    if (AECreateList(nullptr, 0, true, record) != noErr) {
        free(record);
        return nullptr;
    }
    CFStringRef text = CFStringCreateWithCString(kCFAllocatorDefault, name, kCFStringEncodingUTF8);
    if (text) {
        put_name(text, record);
        CFRelease(text);
    }
    AEPutKeyPtr(record, number_keyword, typeSInt32, &number, sizeof number);
    return record;
}
