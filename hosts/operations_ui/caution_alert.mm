#include "operations_ui/caution_alert.h"

#include <Carbon/Carbon.h>

namespace operations {

namespace {

void show_alert(AlertType type, NSString* title, NSString* text) {
    DialogRef alert = nullptr;
    if (CreateStandardAlert(type, (CFStringRef)title, (CFStringRef)text, nullptr, &alert) !=
        noErr) {
        return;
    }
    DialogItemIndex item = 0;
    RunStandardAlert(alert, nullptr, &item);
}

}  // namespace

void show_caution(NSString* title, NSString* text) { show_alert(kAlertCautionAlert, title, text); }

void show_note(NSString* title, NSString* text) { show_alert(kAlertNoteAlert, title, text); }

}  // namespace operations
