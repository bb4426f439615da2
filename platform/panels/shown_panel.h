// The panel that waits for the user, for those who watch it. Main thread.
#pragma once

#include "panels/widget_panel.h"

// The innermost modal panel; nil for none.
WidgetPanel* shown_panel();

// The listener is called whenever that panel, or what it shows, may have changed.
void add_panel_listener(void (*listener)());
void tell_panel_listeners();

// While it lives, this panel is the innermost one.
class PanelRun {
  public:
    explicit PanelRun(WidgetPanel* panel);
    ~PanelRun();
    PanelRun(const PanelRun&) = delete;
    PanelRun& operator=(const PanelRun&) = delete;
};
