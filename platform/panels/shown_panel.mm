#include "panels/shown_panel.h"

#include <vector>

namespace {

std::vector<WidgetPanel*>& panels() {
    static auto& panels = *new std::vector<WidgetPanel*>;
    return panels;
}

// Not retained: a panel is hidden before it goes.
std::vector<WidgetPanel*>& telling_panels() {
    static auto& panels = *new std::vector<WidgetPanel*>;
    return panels;
}

std::vector<void (*)()>& listeners() {
    static auto& listeners = *new std::vector<void (*)()>;
    return listeners;
}

}  // namespace

WidgetPanel* shown_panel() { return panels().empty() ? nil : panels().back(); }

WidgetPanel* telling_panel() { return telling_panels().empty() ? nil : telling_panels().back(); }

void note_telling_panel(WidgetPanel* panel, bool is_shown) {
    const size_t removed = std::erase(telling_panels(), panel);
    if (is_shown) telling_panels().push_back(panel);
    if (is_shown || removed) tell_panel_listeners();
}

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
