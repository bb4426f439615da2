// What the desktop's portal says about looks (org.freedesktop.portal.Settings). Main thread.
#pragma once

struct PortalSettings {
    bool has_answered = false;
    bool prefers_dark = false, wants_contrast = false;
};

// Asks a portal that runs already, and waits a tenth of a second at most. Starts none.
PortalSettings portal_settings();
