#include "service/giving_way.h"

#include <AppKit/AppKit.h>
#include <host/menu_tracking.h>

bool open_menu_gives_way() {
    MenuSession* const open = [MenuSession current];
    return open && ![open pickedItem] && ![NSApp modalWindow];
}
