#include "panels/shown_panel.h"

#include <vector>

namespace {

std::vector<WidgetPanel*>& panels() {
    static auto& panels = *new std::vector<WidgetPanel*>;
    return panels;
}

std::vector<void (*)()>& listeners() {
    static auto& listeners = *new std::vector<void (*)()>;
    return listeners;
}

}  // namespace

WidgetPanel* shown_panel() { return panels().empty() ? nil : panels().back(); }

void add_panel_listener(void (*listener)()) { listeners().push_back(listener); }

void tell_panel_listeners() {
    for (void (*const listener)() : listeners()) listener();
}

PanelRun::PanelRun(WidgetPanel* panel) {
    panels().push_back([panel retain]);
    tell_panel_listeners();
}

PanelRun::~PanelRun() {
    WidgetPanel* const panel = panels().back();
    panels().pop_back();
    tell_panel_listeners();
    [panel release];
}
