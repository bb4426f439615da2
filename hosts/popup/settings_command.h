// delvio settings.
#pragma once

#include "popup/command_line.h"

// Returns the exit status.
int RunSettingsCommand(const SettingsRequest& request);
