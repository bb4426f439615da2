// delvio settings.
#pragma once

#include "command/command_line.h"

// Returns the exit status.
int run_settings_command(const SettingsRequest& request);
