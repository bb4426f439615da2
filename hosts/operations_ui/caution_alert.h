// The alert for what did not work. Main thread.
#pragma once

#include <Foundation/Foundation.h>

namespace operations {

// Shows an alert with a sign of caution, and returns when the user has closed it.
void show_caution(NSString* title, NSString* text);

}  // namespace operations
