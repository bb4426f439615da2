// Standard alerts, and the theme's cursors.
#pragma once

#include <CoreFoundation/CFBase.h>

extern "C" {

#pragma pack(push, 2)

typedef SInt16 AlertType;
typedef SInt16 DialogItemIndex;
typedef struct OpaqueDialogPtr* DialogPtr;
typedef DialogPtr DialogRef;
struct EventRecord;
typedef Boolean (*ModalFilterProcPtr)(DialogRef dialog, EventRecord* event, DialogItemIndex* hit);
typedef ModalFilterProcPtr ModalFilterUPP;

enum { kAlertStopAlert = 0, kAlertNoteAlert = 1, kAlertCautionAlert = 2, kAlertPlainAlert = 3 };
enum { kAlertStdAlertOKButton = 1, kAlertStdAlertCancelButton = 2, kAlertStdAlertOtherButton = 3 };
enum { kStdCFStringAlertVersionOne = 1 };
enum { kWindowDefaultPosition = 0x0000 };

struct AlertStdCFStringAlertParamRec {
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
};
typedef struct AlertStdCFStringAlertParamRec AlertStdCFStringAlertParamRec;

OSStatus CreateStandardAlert(AlertType type, CFStringRef error, CFStringRef explanation,
                             const AlertStdCFStringAlertParamRec* parameters, DialogRef* alert);
OSStatus RunStandardAlert(DialogRef alert, ModalFilterUPP filter, DialogItemIndex* itemHit);

typedef UInt32 ThemeCursor;
enum { kThemeContextualMenuArrowCursor = 3 };
OSStatus SetThemeCursor(ThemeCursor cursor);

#pragma pack(pop)
}
