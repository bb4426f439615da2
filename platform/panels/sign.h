// The sign that an alert begins with. Main thread.
#pragma once

#include "x11/menu_geometry.h"

enum class sign_t { stop, note, caution, none };

struct _cairo;

// `area` is square.
void paint_sign(_cairo* cairo, const area_t& area, sign_t sign);
