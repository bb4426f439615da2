// The panels that are shown, for those who watch them. Main thread.
#pragma once

#include "panels/widget_panel.h"

// The innermost modal panel; nil for none.
WidgetPanel* shown_panel();

// The last shown of the panels that wait for nobody, such as those that show progress; nil for
// none.
WidgetPanel* telling_panel();
// Sent by such a panel when it is shown and when it is hidden.
void note_telling_panel(WidgetPanel* panel, bool is_shown);

// The listener is called whenever one of these panels, or what it shows, may have changed.
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
