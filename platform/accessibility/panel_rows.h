// A panel as assistive technology sees it: a level whose rows are the widgets that say or do
// something. Main thread.
#pragma once

#include "accessibility/open_menus.h"
#include "panels/text_edit.h"
#include "panels/widget_panel.h"

OpenLevel level_of(WidgetPanel* panel);
OpenRow row_of(WidgetPanel* panel, int row);
Area area_of(WidgetPanel* panel);
Area row_area_of(WidgetPanel* panel, int row);
RowPlace row_place_of(WidgetPanel* panel, int row);
int row_at(WidgetPanel* panel, MenuPoint point);
// Of a field, in bytes of its text.
Area text_area_of(WidgetPanel* panel, int row, size_t begin, size_t end);
size_t text_at(WidgetPanel* panel, int row, MenuPoint point);
bool write_row(WidgetPanel* panel, int row, const TextEdit& written);
bool focus_row(WidgetPanel* panel, int row);
bool hit_row(WidgetPanel* panel, int row);
