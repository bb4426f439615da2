// The alerts for what did not work, and for what was done. Main thread.
#pragma once

#include <Foundation/Foundation.h>

namespace operations {

// Shows an alert with a sign of caution, and returns when the user has closed it.
void show_caution(NSString* title, NSString* text);
// The same with the sign of a note.
void show_note(NSString* title, NSString* text);

}  // namespace operations
