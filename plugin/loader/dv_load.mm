#include "loader/dv_load.h"

#include <Foundation/Foundation.h>
#include <objc/runtime.h>

#include "controller/DVDelvio.h"
#include "finder/dv_finder.h"
#include "input/DVControlFreePopup.h"
#include "loader/method_swizzle.h"
#include "support/dv_log.h"
#include "tree/dv_prefs.h"

int is_loaded = 0;

namespace {

constexpr int is_64_bit = sizeof(void*) == 8;

enum exchange_kind_t { CLASS_METHODS = 0, INSTANCE_METHODS = 1 };

struct exchange_t {
    const char* class_name;
    const char* original;
    const char* replacement;
    exchange_kind_t kind;
};

const exchange_t toolkit_exchanges[] = {
    {"NSMenu", "popUpContextMenu:withEvent:forView:", "dvClassPopUpContextMenu:withEvent:forView:",
     CLASS_METHODS},
    {"NSMenu", "popUpContextMenu:withEvent:forView:withFont:",
     "dvClassPopUpContextMenu:withEvent:forView:withFont:", CLASS_METHODS},
    {"NSMenu", "_popUpContextMenu:withEvent:forView:withFont:",
     "dvInstancePopUpContextMenu:withEvent:forView:withFont:", INSTANCE_METHODS},
    {"NSMenu", "_setContextMenuPluginAEDesc:", "dvSetContextMenuPluginAEDesc:", INSTANCE_METHODS},
    {"NSPasteboard", "writeObjects:", "dvWriteObjects:", INSTANCE_METHODS},
};

constexpr const char* context_menu_class = "TContextMenu";
constexpr const char* configure_replacement = "dvConfigureWithNodes:windowController:container:";

const exchange_t host_exchanges[] = {
    {context_menu_class, "configureWithNodes:windowController:container:", configure_replacement,
     INSTANCE_METHODS},
    {context_menu_class, "removeAllItems", "dvRemoveAllItems", INSTANCE_METHODS},
};

void exchange(const exchange_t& row) {
    MethodSwizzle(objc_getClass(row.class_name), sel_registerName(row.original),
                  sel_registerName(row.replacement), row.kind);
}

// HOST: the host's contextual-menu class is private, and our replacements are methods of its
// superclass. The class gets its own copy of the replacement, so the exchange does not change other
// menus.
void exchange_host_methods() {
    Class menu_class = objc_getClass(context_menu_class);
    if (!menu_class) {
        if (dvEnableDebugOutput) dvdprintf("Delvio: No TContextMenu class found?\n");
        return;
    }
    if (dvEnableDebugOutput) dvdprintf("Delvio: Got TContextMenu class: %p\n", menu_class);
    SEL selector = sel_registerName(configure_replacement);
    Method configure = class_getInstanceMethod(objc_getClass("NSMenu"), selector);
    if (!configure) return;
    class_addMethod(menu_class, selector, method_getImplementation(configure),
                    method_getTypeEncoding(configure));
    for (const exchange_t& row : host_exchanges) exchange(row);
    if (dvEnableDebugOutput) dvdprintf("Delvio: Successfully swizzled TContextMenu's method.\n");
}

void log_version() {
    NSDictionary* info = [[NSBundle bundleForClass:[DVDelvio class]] infoDictionary];
    NSString* version = [info objectForKey:@"CFBundleVersion"];
    dvdprintf("Delvio: Version %s loading..\n", [version UTF8String]);
    dvdprintf("Delvio-SLSA: Swizzling\n");
}

}  // namespace

int dv_load_delvio(void) {
    dv_read_pref(CFSTR(DV_PREFS_DOMAIN), CFSTR("logLevel"), &dvEnableDebugOutput, 0);
    if (dvEnableDebugOutput) {
        dvdprintf("Delvio-SLSA! Is loaded: %d Is Finder: %d Is 64-bit: %d\n", is_loaded,
                  dv_is_finder(), is_64_bit);
    }
    if (is_loaded) return 0;
    if (!dv_is_finder()) return 0;
    if (dvEnableDebugOutput) log_version();
    for (const exchange_t& row : toolkit_exchanges) exchange(row);
    exchange_host_methods();
    [DVDelvio sharedDelvio];
    [DVControlFreePopup sharedControlFreePopup];
    is_loaded = 1;
    if (dvEnableDebugOutput) dvdprintf("Delvio-SLSA: The deed is done.\n");
    return 0;
}
