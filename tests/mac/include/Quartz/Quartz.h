// The preview panel's protocols.
#pragma once

#include <AppKit/AppKit.h>
#include <QuartzCore/QuartzCore.h>

@class QLPreviewPanel;

@protocol QLPreviewItem <NSObject>
@required
@property (readonly) NSURL* previewItemURL;
@optional
@property (readonly) NSString* previewItemTitle;
@end

@protocol QLPreviewPanelDataSource
@required
- (NSInteger)numberOfPreviewItemsInPreviewPanel:(QLPreviewPanel*)panel;
- (id<QLPreviewItem>)previewPanel:(QLPreviewPanel*)panel previewItemAtIndex:(NSInteger)index;
@end

@protocol QLPreviewPanelDelegate <NSWindowDelegate>
@optional
- (BOOL)previewPanel:(QLPreviewPanel*)panel handleEvent:(NSEvent*)event;
- (NSRect)previewPanel:(QLPreviewPanel*)panel
    sourceFrameOnScreenForPreviewItem:(id<QLPreviewItem>)item;
- (id)previewPanel:(QLPreviewPanel*)panel
    transitionImageForPreviewItem:(id<QLPreviewItem>)item
                      contentRect:(NSRect*)contentRect;
@end
