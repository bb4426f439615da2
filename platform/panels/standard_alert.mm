#include <Carbon/Dialogs.h>
#include <host/process.h>
#include <host/text.h>

#import <Foundation/Foundation.h>

#include <memory>

#include "panels/alert_panel.h"

struct OpaqueDialogPtr {
    AlertWords words;
};

namespace {

DialogItemIndex host_answer = kAlertAnswerAsk;

const struct {
    AlertType type;
    Sign sign;
} signs[] = {
    {kAlertStopAlert, Sign::stop},
    {kAlertNoteAlert, Sign::note},
    {kAlertCautionAlert, Sign::caution},
};

Sign sign_of(AlertType type) {
    for (const auto& known : signs) {
        if (known.type == type) return known.sign;
    }
    return Sign::none;
}

std::string text_of(CFStringRef string) { return [(NSString*)string UTF8String] ?: ""; }

void add_buttons(const AlertStdCFStringAlertParamRec& parameters, AlertWords* words) {
    const struct {
        int item;
        CFStringRef text;
    } buttons[] = {{kAlertStdAlertOKButton, parameters.defaultText},
                   {kAlertStdAlertCancelButton, parameters.cancelText},
                   {kAlertStdAlertOtherButton, parameters.otherText}};
    for (const auto& button : buttons) {
        if (button.text) words->buttons.push_back({button.item, text_of(button.text)});
    }
    words->default_item = parameters.defaultButton;
    words->cancel_item = parameters.cancelButton;
}

}  // namespace

OSStatus CreateStandardAlert(AlertType type, CFStringRef message, CFStringRef explanation,
                             const AlertStdCFStringAlertParamRec* parameters, DialogRef* alert) {
    if (!alert) return paramErr;
    *alert = nullptr;
    AlertStdCFStringAlertParamRec given = {};
    given.defaultButton = kAlertStdAlertOKButton;
    if (parameters) {
        if (parameters->version != kStdCFStringAlertVersionOne) return paramErr;
        given = *parameters;
    }
    if (!given.defaultText) {
        given.defaultText = (CFStringRef)[NSString stringWithUTF8String:translated("OK")];
    }
    auto made = std::make_unique<OpaqueDialogPtr>();
    made->words.sign = sign_of(type);
    made->words.message = text_of(message);
    made->words.explanation = text_of(explanation);
    add_buttons(given, &made->words);
    *alert = made.release();
    return noErr;
}

OSStatus RunStandardAlert(DialogRef alert, ModalFilterUPP, DialogItemIndex* itemHit) {
    if (!alert || !itemHit) return paramErr;
    const std::unique_ptr<OpaqueDialogPtr> owned(alert);
    const int default_item = owned->words.default_item;
    *itemHit = 0;
    if (host_answer != kAlertAnswerAsk) {
        const bool by_default = host_answer == kAlertAnswerDefault;
        *itemHit = by_default ? static_cast<DialogItemIndex>(default_item) : host_answer;
        return noErr;
    }
    if (!NSApp || ![NSScreen mainScreen]) return memFullErr;
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    *itemHit = static_cast<DialogItemIndex>([AlertPanel runWithWords:owned->words]);
    [pool release];
    return *itemHit ? OSStatus{noErr} : OSStatus{userCanceledErr};
}

void answer_standard_alerts(DialogItemIndex item) { host_answer = item; }

void end_modal_session() {
    if (![NSApp modalWindow]) return;
    [NSApp stopModalWithCode:NSRunAbortedResponse];
    // The modal loop notices the stop only when it gets an event.
    wake_main_loop();
}
