// Previews of the file under the pointer: when the hover window appears, and for which file. The
// controller is also what a preview panel would show. Main thread.
#pragma once

#include <Quartz/Quartz.h>

#include "controller/DVDelvio.h"

@interface DVDelvio (HoverPreview) <QLPreviewItem, QLPreviewPanelDataSource, QLPreviewPanelDelegate>
// The pointer has moved while a menu is open: the wait for it to rest begins anew, and a window in
// its way moves.
- (void)dvPointerMoved;
// The hover timer's action: shows the window when the pointer has rested on a file.
- (void)showPreviewWindow:(NSTimer*)timer;
- (void)handleMouseMovedForPreviewWindow;
// The file of the highlighted item; nil without one.
- (NSURL*)previewItemURL;
// Called when another item is highlighted. The pointer's rest decides, so nothing happens yet.
- (void)updatePreview;
@end
