// What others than GWorkspace have done, told to its windows: they do not look by themselves.
// Main thread.
#pragma once

#include "file_steps/request.h"

void TellGWorkspace(const operations::Request& request, const operations::Report& report);
