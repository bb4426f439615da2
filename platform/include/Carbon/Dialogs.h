// Dialog Manager: standard alerts. Main thread.
#pragma once

#include <Carbon/MacTypes.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef SInt16 AlertType;
enum { kAlertStopAlert = 0, kAlertNoteAlert = 1, kAlertCautionAlert = 2, kAlertPlainAlert = 3 };

typedef SInt16 DialogItemIndex;
enum { kAlertStdAlertOKButton = 1, kAlertStdAlertCancelButton = 2, kAlertStdAlertOtherButton = 3 };

enum { kStdCFStringAlertVersionOne = 1 };
enum { kWindowDefaultPosition = 0 };

// The buttons. A null text leaves a button out, except that the default button then says "OK" in
// the user's language.
// `defaultButton` is the item that Return hits, `cancelButton` the one that Escape hits; 0 is none.
// Narrower than the Mac's: `movable`, `position` and `flags` are ignored (an alert stands in the
// middle of the screen, and the window manager lets it be moved), and there is no help button.
typedef struct AlertStdCFStringAlertParamRec {
    UInt32 version;
    Boolean movable;
    Boolean helpButton;
    CFStringRef defaultText;
    CFStringRef cancelText;
    CFStringRef otherText;
    SInt16 defaultButton;
    SInt16 cancelButton;
    UInt16 position;
    OptionBits flags;
} AlertStdCFStringAlertParamRec;

typedef struct OpaqueDialogPtr* DialogRef;
typedef void* ModalFilterUPP;

// An alert that RunStandardAlert shows and disposes of. `explanation` and `parameters` may be null.
// paramErr for parameters of another version.
OSStatus CreateStandardAlert(AlertType type, CFStringRef message, CFStringRef explanation,
                             const AlertStdCFStringAlertParamRec* parameters, DialogRef* alert);
// Shows the alert and returns when a button has been hit; `itemHit` tells which. `filter` is not
// called. The run loop runs in the mode for modal panels until then. Answers memFullErr when there
// is no display to show the alert on, and userCanceledErr when the application ended the modal
// session.
OSStatus RunStandardAlert(DialogRef alert, ModalFilterUPP filter, DialogItemIndex* itemHit);

#ifdef __cplusplus
}
#endif
