// The preview panel's protocols. There is no such panel here: nothing sends them.
#pragma once

#include <QuartzCore/QuartzCore.h>

@class QLPreviewPanel;

@protocol QLPreviewItem <NSObject>
- (NSURL*)previewItemURL;
@end

@protocol QLPreviewPanelDataSource
- (NSInteger)numberOfPreviewItemsInPreviewPanel:(QLPreviewPanel*)panel;
- (id<QLPreviewItem>)previewPanel:(QLPreviewPanel*)panel previewItemAtIndex:(NSInteger)index;
@end

@protocol QLPreviewPanelDelegate
@optional
- (BOOL)previewPanel:(QLPreviewPanel*)panel handleEvent:(NSEvent*)event;
- (NSRect)previewPanel:(QLPreviewPanel*)panel
    sourceFrameOnScreenForPreviewItem:(id<QLPreviewItem>)item;
@end
