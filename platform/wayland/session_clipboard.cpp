#include <host/session_clipboard.h>

#include "wayland/stage_module.h"
#include "wayland/wayland_module.h"

bool keep_on_session_clipboard(const std::string& text, const std::function<void()>& owned) {
    const auto keep = reinterpret_cast<KeepClipboard>(wayland_function(keep_clipboard_name));
    return keep && keep(text, owned);
}
