// The functions of the library in `layer` that the platform calls, by their names.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "wayland/menu_stage.h"
#include "x11/server_monitors.h"

struct StageSettings {
    std::vector<Monitor> monitors;  // of the X server
    void (*tell_symbols)(std::vector<uint32_t>);
};

// Null where no compositor answers, or the one that answers offers no layers.
using OpenLayerStage = MenuStage* (*)(const StageSettings&);
constexpr const char* open_layer_stage_name = "delvio_open_layer_stage";

// See host/session_clipboard.h.
using KeepClipboard = bool (*)(const std::string& text, const std::function<void()>& owned);
constexpr const char* keep_clipboard_name = "delvio_keep_clipboard";
