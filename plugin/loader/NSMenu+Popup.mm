#include "loader/NSMenu+Popup.h"

#include "controller/DVDelvio.h"
#include "support/dv_log.h"

uint8_t dvIsActive = 0;

namespace {

const char* description_of(id object) { return [[object description] UTF8String]; }

NSFont* preferred_font(NSFont* font) {
    const int32_t size = static_cast<int32_t>(dvFontSize);
    return size ? [NSFont systemFontOfSize:size] : font;
}

// `name` is the kind of popup in the log: empty or " no-font".
void log_reentrance(NSMenu* receiver, NSMenu* menu, const char* name) {
    dvdprintf(
        "Delvio: Re-entrant%s [self = %p, menu = %p, self-delegate = %p, delegate = %p, dvdv = "
        "%p]\n",
        name, receiver, menu, [receiver delegate], [menu delegate], [DVDelvio sharedDelvio]);
}

void log_instance_info(NSMenu* receiver, NSMenu* menu) {
    dvdprintf(
        "Delvio: Info: [self = %p, menu = %p, self-delegate = %p, delegate = %p, dvdv = %p]\n",
        receiver, menu, [receiver delegate], [menu delegate], [DVDelvio sharedDelvio]);
}

void log_class_popup(NSMenu* menu, const char* name) {
    dvdprintf("Delvio: Class popup%s %p : %s\n", name, [menu delegate],
              description_of([menu class]));
    dvdprintf("Delvio: Info: [menu = %p, delegate = %p, dvdv = %p]\n", menu, [menu delegate],
              [DVDelvio sharedDelvio]);
}

NSMenu* take_over(NSMenu* menu) {
    return [[DVDelvio sharedDelvio] setCurrentMenu:menu
                                 withProxyDelegate:[menu delegate]
                                         withClass:[menu class]];
}

// Ends a popup and clears dvIsActive, even when the release raises. The popup's caller gets the
// exception.
void leave_instance_popup(NSMenu* receiver, const char* name) {
    @try {
        [[DVDelvio sharedDelvio] removeMenuAndDelegate];
        if (dvEnableDebugOutput) {
            dvdprintf("Delvio: Menu is now%s: %s\n", name, description_of(receiver));
        }
    } @finally {
        dvIsActive = 0;
    }
}

void leave_class_popup(const char* name) {
    @try {
        [[DVDelvio sharedDelvio] removeMenuAndDelegate];
        if (dvEnableDebugOutput) dvdprintf("Delvio: Class popup%s out\n", name);
    } @finally {
        dvIsActive = 0;
    }
}

}  // namespace

@implementation NSMenu (DVDelvioAdditions)

- (void)dvInstancePopUpContextMenu:(NSMenu*)menu
                         withEvent:(NSEvent*)event
                           forView:(NSView*)view
                          withFont:(NSFont*)font {
    DVDelvio* controller = [DVDelvio sharedDelvio];
    if (dvIsActive) {
        if (dvEnableDebugOutput) {
            log_reentrance(self, menu, "");
            dvdprintf("Delvio: Menu is [r]: %s\n", description_of(self));
        }
        [controller forceFinderMenuUpdate:nil];
        [self dvInstancePopUpContextMenu:menu withEvent:event forView:view withFont:font];
        if (dvEnableDebugOutput) dvdprintf("Delvio: Menu is now [r]: %s\n", description_of(self));
        return;
    }
    dvIsActive = 1;
    @try {
        if (dvEnableDebugOutput) {
            dvdprintf("Delvio: Menu is: %s\n", description_of(self));
            log_instance_info(self, menu);
        }
        NSMenu* proxy = [controller setCurrentMenu:self withProxyDelegate:[self delegate]];
        [proxy dvInstancePopUpContextMenu:proxy
                                withEvent:event
                                  forView:view
                                 withFont:preferred_font(font)];
    } @finally {
        leave_instance_popup(self, "");
    }
}

- (void)dvInstancePopUpContextMenu:(NSMenu*)menu withEvent:(NSEvent*)event forView:(NSView*)view {
    DVDelvio* controller = [DVDelvio sharedDelvio];
    if (dvIsActive) {
        if (dvEnableDebugOutput) log_reentrance(self, menu, " no-font");
        [controller forceFinderMenuUpdate:nil];
        [self dvInstancePopUpContextMenu:menu withEvent:event forView:view];
        return;
    }
    dvIsActive = 1;
    @try {
        if (dvEnableDebugOutput) {
            dvdprintf("Delvio: Menu is [nofont]: %s\n", description_of(self));
            log_instance_info(self, menu);
        }
        NSMenu* proxy = [controller setCurrentMenu:self withProxyDelegate:[self delegate]];
        [proxy dvInstancePopUpContextMenu:proxy withEvent:event forView:view];
    } @finally {
        leave_instance_popup(self, " [nofont]");
    }
}

+ (void)dvClassPopUpContextMenu:(NSMenu*)menu
                      withEvent:(NSEvent*)event
                        forView:(NSView*)view
                       withFont:(NSFont*)font {
    if (dvIsActive) {
        if (dvEnableDebugOutput) {
            dvdprintf("Delvio: Re-entrant class [delegate = %p, dvdv = %p]\n", [menu delegate],
                      [DVDelvio sharedDelvio]);
        }
        [self dvClassPopUpContextMenu:menu withEvent:event forView:view withFont:font];
        return;
    }
    dvIsActive = 1;
    @try {
        if (dvEnableDebugOutput) log_class_popup(menu, "");
        NSMenu* proxy = take_over(menu);
        [self dvClassPopUpContextMenu:proxy
                            withEvent:event
                              forView:view
                             withFont:preferred_font(font)];
    } @finally {
        leave_class_popup("");
    }
}

+ (void)dvClassPopUpContextMenu:(NSMenu*)menu withEvent:(NSEvent*)event forView:(NSView*)view {
    if (dvIsActive) {
        if (dvEnableDebugOutput) {
            dvdprintf("Delvio: Re-entrant class no-font [delegate = %p, dvdv = %p]\n",
                      [menu delegate], [DVDelvio sharedDelvio]);
        }
        [self dvClassPopUpContextMenu:menu withEvent:event forView:view];
        return;
    }
    dvIsActive = 1;
    @try {
        if (dvEnableDebugOutput) log_class_popup(menu, " no font");
        NSMenu* proxy = take_over(menu);
        if (NSFont* font = preferred_font(nil)) {
            [self dvClassPopUpContextMenu:proxy withEvent:event forView:view withFont:font];
        } else {
            [self dvClassPopUpContextMenu:proxy withEvent:event forView:view];
        }
    } @finally {
        leave_class_popup(" no-font");
    }
}

- (void)dvSetContextMenuPluginAEDesc:(const AEDesc*)descriptor {
    if (dvEnableDebugOutput) dvdprintf("Delvio: Setting AEDesc for menu! %p\n", descriptor);
}

@end
