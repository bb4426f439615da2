// Drags that come from other programs. GNUstep drops the drag's pasteboard whenever a drag leaves a
// window, and asks the pasteboard server for it again when the drag enters the next one. While
// GNUstep waits for the answer it handles further events, so it can take up a pasteboard that is
// just going away, which ends the program. A pasteboard that is held here does not go away.
#include <AppKit/AppKit.h>

#include "objc/method_patch.h"

namespace {

IMP stock_setup;

void set_up_drag(id self, SEL selector, void* event) {
    static NSPasteboard* held;
    if (!held) held = [[NSPasteboard pasteboardWithName:NSDragPboard] retain];
    using Setup = void (*)(id, SEL, void*);
    reinterpret_cast<Setup>(stock_setup)(self, selector, event);
}

}  // namespace

@interface DroppedFilesInstaller : NSObject
@end

@implementation DroppedFilesInstaller

// The class belongs to the back end, which may load after this library.
+ (void)load {
    if (objc_getClass("XGDragView")) return [self install];
    [[NSNotificationCenter defaultCenter] addObserver:self
                                             selector:@selector(install)
                                                 name:NSApplicationWillFinishLaunchingNotification
                                               object:nil];
}

+ (void)install {
    if (stock_setup) return;
    const MethodPatch patches[] = {
        {"XGDragView", "setupDragInfoFromXEvent:", reinterpret_cast<IMP>(set_up_drag),
         &stock_setup},
    };
    patch_methods(patches);
}

@end
