// Previews of the file under the pointer: when the hover window appears, and for which file. The
// controller also answers for a preview panel. Main thread.
#pragma once

#include <Quartz/Quartz.h>

#include "controller/DVDelvio.h"

@interface DVDelvio (HoverPreview) <QLPreviewItem, QLPreviewPanelDataSource, QLPreviewPanelDelegate>
// The pointer has moved while a menu is open. The wait for it to rest starts again, and the hover
// window moves if it is in the pointer's way.
- (void)dvPointerMoved;
// The hover timer's action: shows the window when the pointer has rested on a file.
- (void)showPreviewWindow:(NSTimer*)timer;
- (void)handleMouseMovedForPreviewWindow;
// The file of the highlighted item; nil without one.
- (NSURL*)previewItemURL;
// Called when another item is highlighted. Does nothing yet, because the preview waits until the
// pointer rests.
- (void)updatePreview;
@end
