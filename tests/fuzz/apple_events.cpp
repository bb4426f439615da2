// Apple Event descriptors, as a handler finds them: each byte of the input chooses a call.
#include <Carbon/Carbon.h>

#include <vector>

#include "input.h"
#include "require.h"

using fuzz::require;

namespace {

constexpr DescType types[] = {typeNull,     typeWildCard,   typeBoolean,     typeSInt16,
                              typeSInt32,   typeUInt32,     typeSInt64,      typeChar,
                              typeFSRef,    typeAlias,      typeFileURL,     typeAEList,
                              typeAERecord, typeAppleEvent, typeUnicodeText, 'what'};
constexpr size_t most_descriptors = 4;

struct Descriptors {
    AEDesc all[most_descriptors];
    Descriptors() {
        for (AEDesc& one : all) AEInitializeDesc(&one);
    }
    ~Descriptors() {
        for (AEDesc& one : all) AEDisposeDesc(&one);
    }
    // Disposes of what it held, as callers must before it becomes a result.
    AEDesc* fresh(unsigned char which) {
        AEDesc* one = &all[which % most_descriptors];
        AEDisposeDesc(one);
        return one;
    }
};

void look_at(const AEDesc& desc) {
    std::vector<UInt8> bytes(static_cast<size_t>(AEGetDescDataSize(&desc)));
    AEGetDescData(&desc, bytes.data(), static_cast<Size>(bytes.size()));
    long count = 0;
    if (AECountItems(&desc, &count) != noErr) return;
    require(count >= 0, "a count");
    UInt8 room[16];
    for (long i = 0; i <= count + 1; i++) {
        DescType type;
        AEKeyword keyword;
        Size size = 0;
        AEGetNthPtr(&desc, i, typeWildCard, &keyword, &type, room, sizeof room, &size);
    }
}

void step(fuzz::Input& input, Descriptors& descriptors) {
    const UInt8 what = input.byte() % 10, one = input.byte() % most_descriptors,
                other = input.byte() % most_descriptors;
    const DescType type = types[input.byte() % std::size(types)];
    const AEKeyword keyword = types[input.byte() % std::size(types)];
    AEDesc* const desc = &descriptors.all[one];
    const AEDesc* const source = &descriptors.all[other];
    const std::string bytes = input.text(input.byte() % 96);
    const auto size = static_cast<Size>(bytes.size());
    UInt8 room[16];
    DescType actual;
    Size actual_size;
    switch (what) {
        case 0:
            AECreateDesc(type, bytes.data(), size, descriptors.fresh(one));
            break;
        case 1:
            AECreateList(nullptr, 0, input.byte() & 1, descriptors.fresh(one));
            break;
        case 2:
            AECreateAppleEvent('aevt', 'odoc', source, -1, 0,
                               one == other ? nullptr : descriptors.fresh(one));
            break;
        case 3:
            AEPutPtr(desc, input.byte(), type, bytes.data(), size);
            break;
        case 4:
            AEPutDesc(desc, input.byte(), source);
            break;
        case 5:
            AEPutParamPtr(desc, keyword, type, bytes.data(), size);
            break;
        case 6:
            AEPutParamDesc(desc, keyword, source);
            break;
        case 7:
            AEGetParamPtr(desc, keyword, type, &actual, room, input.byte() % sizeof room,
                          &actual_size);
            AEGetAttributePtr(desc, keyword, type, &actual, room, sizeof room, &actual_size);
            break;
        case 8:
            if (one != other) AECoerceDesc(source, type, descriptors.fresh(one));
            break;
        case 9:
            if (one != other) AEGetParamDesc(source, keyword, type, descriptors.fresh(one));
            break;
    }
    look_at(*desc);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Input input(data, size);
    Descriptors descriptors;
    // Lists that hold themselves double with each step.
    for (int steps = 0; steps < 12 && input.left(); steps++) step(input, descriptors);
    return 0;
}
