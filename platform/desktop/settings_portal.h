// What the desktop's portal says about looks (org.freedesktop.portal.Settings). Main thread.
#pragma once

struct PortalSettings {
    bool has_answered = false;
    bool prefers_dark = false, wants_contrast = false;
};

// Asks a portal that runs already, and waits a tenth of a second at most. Starts none. A process
// that calls this again goes on to watch the portal: from then on it asks only after the portal has
// told of a change, or has come or gone.
PortalSettings portal_settings();
