// The host's side of the Process and Apple Event Managers. Not a Mac interface: on a Mac the
// signature stands in the program's bundle.
#pragma once

#include <Carbon/Dialogs.h>
#include <Carbon/MacTypes.h>

#ifdef __cplusplus
extern "C" {
#endif

// Declares the four-character signature of this process, for example 'MACS' for a file manager
// that answers the Finder's Apple Events. 0 takes it back.
void declare_process_signature(OSType signature);

// Declares a folder whose applications the user has chosen to trust, beside those that the desktop
// has installed: desktop entries and bundles in it and below it show the names and icons that they
// give themselves, and can be started. The root and the home folder are not taken. Null takes it
// back. Main thread.
void declare_applications_folder(const char* path);

// Whether events that this process has sent still wait for its run loop. Main thread.
Boolean apple_events_are_waiting(void);

// For a host without a user to ask. From now on standard alerts are not shown, and `item` counts as
// hit; kAlertAnswerDefault stands for each alert's default button. With kAlertAnswerAsk alerts are
// shown again. Main thread.
enum { kAlertAnswerAsk = 0, kAlertAnswerDefault = -1 };
void answer_standard_alerts(DialogItemIndex item);

// Ends a modal session, such as a shown alert's, from outside and without an answer. Does nothing
// when there is none. Main thread.
void end_modal_session(void);

// Posts an event without a meaning: a loop of events returns to its caller only with an event. Main
// thread.
void wake_main_loop(void);

#ifdef __cplusplus
}
#endif
