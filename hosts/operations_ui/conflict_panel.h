// The panel that asks what to do about a name that is taken. Main thread.
#pragma once

#include "file_steps/request.h"

namespace operations {

// Shows the panel and returns the answer; Return skips, Escape stops. With `for_all`, "Apply to
// all" is on at first.
Answer ask_about(const Conflict& conflict, bool for_all);

}  // namespace operations
