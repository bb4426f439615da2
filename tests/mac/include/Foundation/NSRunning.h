// What runs: threads, timers, run loops, pools; and the surroundings of the program.
#pragma once

#include <Foundation/NSObject.h>

@class NSNotification, NSUserDefaults;

@interface NSDate : NSObject <NSCopying>
@end

@interface NSException : NSObject
- (NSString*)reason;
@end

@interface NSAutoreleasePool : NSObject
@end

@interface NSThread : NSObject
+ (void)detachNewThreadSelector:(SEL)selector toTarget:(id)target withObject:(id)argument;
@end

@interface NSTimer : NSObject
+ (NSTimer*)timerWithTimeInterval:(NSTimeInterval)seconds
                           target:(id)target
                         selector:(SEL)selector
                         userInfo:(id)userInfo
                          repeats:(BOOL)repeats;
+ (NSTimer*)scheduledTimerWithTimeInterval:(NSTimeInterval)seconds
                                    target:(id)target
                                  selector:(SEL)selector
                                  userInfo:(id)userInfo
                                   repeats:(BOOL)repeats;
- (void)invalidate;
@end

@interface NSRunLoop : NSObject
+ (NSRunLoop*)currentRunLoop;
- (void)addTimer:(NSTimer*)timer forMode:(NSString*)mode;
@end

@interface NSBundle : NSObject
+ (NSBundle*)bundleForClass:(Class)aClass;
+ (NSBundle*)bundleWithPath:(NSString*)path;
- (NSDictionary*)infoDictionary;
- (NSString*)bundleIdentifier;
@end

@interface NSFileManager : NSObject
+ (NSFileManager*)defaultManager;
- (BOOL)fileExistsAtPath:(NSString*)path isDirectory:(BOOL*)isDirectory;
@end
