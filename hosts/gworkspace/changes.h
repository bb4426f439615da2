// Tells GWorkspace's windows about changes that GWorkspace did not make itself: the windows do not
// look by themselves. Main thread.
#pragma once

#include "file_steps/request.h"

void tell_gworkspace(const operations::Request& request, const operations::Report& report);
