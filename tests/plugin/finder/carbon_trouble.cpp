#include "plugin/finder/carbon_trouble.h"

#include <dlfcn.h>

test::CarbonTrouble test::carbon_trouble;

test::CarbonTrouble test::failing(const std::string& function, OSErr error, FourCharCode about) {
    return [=](const std::string& called, FourCharCode what) -> OSErr {
        return called == function && (about == 0 || what == about) ? error : noErr;
    };
}

namespace {

OSErr trouble_with(const char* function, FourCharCode about = 0) {
    return test::carbon_trouble ? test::carbon_trouble(function, about) : noErr;
}

template <typename Function>
Function* platforms(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

#define CALL_NEXT(function, about, ...)                                 \
    static auto* const next = platforms<decltype(function)>(#function); \
    const OSErr trouble = trouble_with(#function, about);               \
    return trouble == noErr ? next(__VA_ARGS__) : trouble

extern "C" {

OSErr AECreateDesc(DescType type, const void* data, Size size, AEDesc* result) {
    CALL_NEXT(AECreateDesc, type, type, data, size, result);
}

OSErr AECreateList(const void* factoring, Size size, Boolean is_record, AEDescList* result) {
    CALL_NEXT(AECreateList, is_record, factoring, size, is_record, result);
}

OSErr AEPutDesc(AEDescList* list, long index, const AEDesc* desc) {
    CALL_NEXT(AEPutDesc, desc->descriptorType, list, index, desc);
}

OSErr AEPutParamDesc(AppleEvent* event, AEKeyword keyword, const AEDesc* desc) {
    CALL_NEXT(AEPutParamDesc, keyword, event, keyword, desc);
}

OSErr AECreateAppleEvent(AEEventClass event_class, AEEventID id, const AEAddressDesc* target,
                         AEReturnID return_id, AETransactionID transaction, AppleEvent* result) {
    CALL_NEXT(AECreateAppleEvent, id, event_class, id, target, return_id, transaction, result);
}

OSErr FSNewAliasMinimal(const FSRef* target, AliasHandle* alias) {
    CALL_NEXT(FSNewAliasMinimal, 0, target, alias);
}

OSErr GetCurrentProcess(ProcessSerialNumber* process) { CALL_NEXT(GetCurrentProcess, 0, process); }

OSErr GetFrontProcess(ProcessSerialNumber* process) { CALL_NEXT(GetFrontProcess, 0, process); }

}  // extern "C"
