#include "plugin/finder/shown_alert.h"

#include <dlfcn.h>

test::ShownAlert test::shown_alert;

namespace {

std::string text_of(CFStringRef string) {
    char text[1024] = "(null)";
    if (string) CFStringGetCString(string, text, sizeof text, kCFStringEncodingUTF8);
    return text;
}

}  // namespace

extern "C" OSStatus CreateStandardAlert(AlertType type, CFStringRef message,
                                        CFStringRef explanation,
                                        const AlertStdCFStringAlertParamRec* parameters,
                                        DialogRef* alert) {
    test::ShownAlert& shown = test::shown_alert;
    shown.type = type;
    shown.message = text_of(message);
    shown.explanation = text_of(explanation);
    shown.default_text = text_of(parameters->defaultText);
    shown.cancel_text = text_of(parameters->cancelText);
    shown.has_other_text = parameters->otherText != nullptr;
    shown.parameters = *parameters;
    if (shown.creation_error != noErr) return shown.creation_error;
    static auto* next =
        reinterpret_cast<decltype(&CreateStandardAlert)>(dlsym(RTLD_NEXT, "CreateStandardAlert"));
    return next(type, message, explanation, parameters, alert);
}

extern "C" OSStatus RunStandardAlert(DialogRef alert, ModalFilterUPP filter, DialogItemIndex* hit) {
    test::ShownAlert& shown = test::shown_alert;
    shown.count++;
    shown.has_filter = filter != nullptr;
    if (shown.while_shown) shown.while_shown();
    static auto* next =
        reinterpret_cast<decltype(&RunStandardAlert)>(dlsym(RTLD_NEXT, "RunStandardAlert"));
    return next(alert, filter, hit);
}
