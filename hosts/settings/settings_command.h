// delvio settings.
#pragma once

#include "command/command_line.h"

// Returns the exit status.
int RunSettingsCommand(const SettingsRequest& request);
