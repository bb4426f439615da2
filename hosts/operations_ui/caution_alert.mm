#include "operations_ui/caution_alert.h"

#include <Carbon/Carbon.h>

namespace operations {

void show_caution(NSString* title, NSString* text) {
    DialogRef alert = nullptr;
    if (CreateStandardAlert(kAlertCautionAlert, (CFStringRef)title, (CFStringRef)text, nullptr,
                            &alert) != noErr) {
        return;
    }
    DialogItemIndex item = 0;
    RunStandardAlert(alert, nullptr, &item);
}

}  // namespace operations
