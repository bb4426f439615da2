#pragma once

#include <AppKit/NSDrawing.h>

enum {
    NSApplicationActivationPolicyRegular,
    NSApplicationActivationPolicyAccessory,
    NSApplicationActivationPolicyProhibited
};
typedef NSInteger NSApplicationActivationPolicy;

@interface NSWorkspace : NSObject
+ (NSWorkspace*)sharedWorkspace;
- (BOOL)openFile:(NSString*)fullPath;
- (NSImage*)iconForFile:(NSString*)fullPath;
- (NSArray*)runningApplications;
@end

@interface NSRunningApplication : NSObject
@property (readonly) NSApplicationActivationPolicy activationPolicy;
@property (readonly) NSURL* bundleURL;
@property (readonly) NSURL* executableURL;
@end
