// The sign that an alert begins with. Main thread.
#pragma once

#include "x11/menu_geometry.h"

enum class Sign { stop, note, caution, none };

struct _cairo;

// `area` is square.
void paint_sign(_cairo* cairo, const Area& area, Sign sign);
