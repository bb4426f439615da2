// The pasteboard of drags. GNUstep keeps it in a server, and gives each question to the server two
// seconds. On a machine that is too busy for an answer, a drag would not begin, or would carry
// nothing. So this process keeps what it drags itself. The server gets a copy, for the other
// programs that GNUstep runs, and is asked only for what others drag.
#include <AppKit/AppKit.h>
#include <GNUstepGUI/GSPasteboardServer.h>

#include <unistd.h>

#include "objc/method_patch.h"

namespace {

constexpr NSTimeInterval patience = 2, longest_start = 5;

}  // namespace

// What NSPasteboard talks to in place of the server's own object.
@interface DragBoard : NSObject <GSPasteboardObj> {
  @private
    bool _own;  // whether this process made the last drag that it knows of
    NSArray* _types;
    NSMutableDictionary* _data;
    id _owner;
    NSPasteboard* _pasteboard;  // not retained; it is never released
    int _count;

    id<GSPasteboardObj> _server;
    int _serverCount;
    bool _silent;  // whether the server has left a question of this drag without an answer
}
// Another program drags from now on.
- (void)disown;
@end

namespace {

NSConnection* connection_to_server() {
    return [NSConnection connectionWithRegisteredName:PBSNAME host:@""];
}

// Starts the server where none runs. The toolkit would start it too, but then wait five seconds for
// a notification that some programs never get.
void start_server() {
    static bool tried;
    NSString* tool = [NSTask launchPathForTool:@"gpbs"];
    if (tried || !tool || connection_to_server()) return;
    tried = true;
    NSTask* task = [[NSTask new] autorelease];
    [task setLaunchPath:tool];
    [task setArguments:[NSArray arrayWithObject:@"--auto"]];
    [task setStandardOutput:[NSFileHandle fileHandleWithNullDevice]];
    [task setStandardError:[NSFileHandle fileHandleWithNullDevice]];
    [task launch];
    NSDate* end = [NSDate dateWithTimeIntervalSinceNow:longest_start];
    while (!connection_to_server() && [end timeIntervalSinceNow] > 0) usleep(10000);
}

// The server's object for drags; nil when no server runs.
id<GSPasteboardObj> find_server() {
    NSConnection* connection = connection_to_server();
    if (!connection) return nil;
    [connection setRequestTimeout:patience];
    [connection setReplyTimeout:patience];
    id server = [connection rootProxy];
    [server setProtocolForProxy:objc_getProtocol("GSPasteboardSvr")];
    id board = [server pasteboardWithName:NSDragPboard];
    [board setProtocolForProxy:objc_getProtocol("GSPasteboardObj")];
    return board;
}

}  // namespace

@implementation DragBoard

- (void)connect {
    if (_server && ![[(id)_server connectionForProxy] isValid]) {
        [(id)_server release];  // that server has gone
        _server = nil;
    }
    if (_server || _silent) return;
    @try {
        _server = [(id)find_server() retain];
    } @catch (NSException*) {
        _silent = true;
    }
}

// A server that did not answer is asked again at the next drag, so that one drag waits only once.
- (void)disconnect {
    [(id)_server release];
    _server = nil;
    _silent = true;
}

- (void)disown {
    _own = _silent = false;
}

- (int)declareTypes:(in bycopy NSArray*)types owner:(id)owner pasteboard:(NSPasteboard*)pasteboard {
    _own = true;
    [_types release];
    _types = [types copy];
    [_data release];
    _data = [NSMutableDictionary new];
    [_owner autorelease];
    _owner = [owner retain];
    _pasteboard = pasteboard;
    _count++;
    _silent = false;
    start_server();
    [self connect];
    @try {
        if (_server) {
            _serverCount = [_server declareTypes:types owner:owner pasteboard:pasteboard];
            _count = MAX(_count, _serverCount);
        }
    } @catch (NSException*) {
        [self disconnect];
    }
    return _count;
}

- (int)addTypes:(in bycopy NSArray*)types
          owner:(id)owner
     pasteboard:(NSPasteboard*)pasteboard
       oldCount:(int)count {
    (void)count;
    if (!_own) return 0;
    NSMutableArray* all = [NSMutableArray arrayWithArray:_types];
    for (id type in types) {
        if (![all containsObject:type]) [all addObject:type];
    }
    [_types release];
    _types = [all copy];
    [_owner autorelease];
    _owner = [owner retain];
    @try {
        [_server addTypes:types owner:owner pasteboard:pasteboard oldCount:_serverCount];
    } @catch (NSException*) {
        [self disconnect];
    }
    return _count;
}

- (BOOL)setData:(in bycopy NSData*)data
        forType:(in bycopy NSString*)type
         isFile:(BOOL)is_file
       oldCount:(int)count {
    (void)count;
    if (!_own || ![_types containsObject:type]) return NO;
    if (data) [_data setObject:data forKey:type];
    @try {
        [_server setData:data forType:type isFile:is_file oldCount:_serverCount];
    } @catch (NSException*) {
        [self disconnect];
    }
    return YES;
}

- (NSData*)dataForType:(in bycopy NSString*)type oldCount:(int)count mustBeCurrent:(BOOL)current {
    if (_own) {
        if (![_data objectForKey:type] && [_types containsObject:type]) {
            [_owner pasteboard:_pasteboard provideDataForType:type];
        }
        return [[[_data objectForKey:type] retain] autorelease];
    }
    [self connect];
    @try {
        return [_server dataForType:type oldCount:count mustBeCurrent:current];
    } @catch (NSException*) {
        [self disconnect];
    }
    return nil;
}

- (bycopy NSArray*)typesAndChangeCount:(int*)count {
    *count = _count;
    if (_own) return [[_types retain] autorelease];
    [self connect];
    @try {
        int newest = 0;  // asks for the last drag; another number asks for an earlier one
        NSArray* types = [_server typesAndChangeCount:&newest];
        if (newest) *count = _count = newest;
        return types;
    } @catch (NSException*) {
        [self disconnect];
    }
    return nil;
}

- (NSString*)availableTypeFromArray:(in bycopy NSArray*)types changeCount:(int*)count {
    return [types firstObjectCommonWithArray:[self typesAndChangeCount:count]];
}

- (int)changeCount {
    int count = 0;
    [self typesAndChangeCount:&count];
    return count;
}

- (NSString*)name {
    return NSDragPboard;
}

// The pasteboard of drags stays, and keeps the last drag only.
- (void)releaseGlobally {
}

- (void)setHistory:(unsigned)length {
    (void)length;
}

@end

// A private method of the toolkit.
@interface NSPasteboard (Targets)
+ (NSPasteboard*)_pasteboardWithTarget:(id<GSPasteboardObj>)target name:(NSString*)name;
@end

namespace {

IMP stock_named, stock_setup;

DragBoard* board() {
    static DragBoard* const only = [DragBoard new];
    return only;
}

// While GNUstep waits for an answer of the server, it handles further events, so it could take up a
// pasteboard that is just going away, which ends the program. One that is held does not go away.
id pasteboard_named(Class self, SEL selector, NSString* name) {
    static NSPasteboard* held;
    if (![name isEqual:NSDragPboard] ||
        ![self respondsToSelector:@selector(_pasteboardWithTarget:name:)]) {
        return reinterpret_cast<id (*)(Class, SEL, NSString*)>(stock_named)(self, selector, name);
    }
    NSPasteboard* pasteboard = [self _pasteboardWithTarget:board() name:name];
    if (!held) held = [pasteboard retain];
    return pasteboard;
}

// A drag of another program enters a window of this one.
void set_up_drag(id self, SEL selector, void* event) {
    [board() disown];
    reinterpret_cast<void (*)(id, SEL, void*)>(stock_setup)(self, selector, event);
}

}  // namespace

@interface DragPasteboardInstaller : NSObject
@end

@implementation DragPasteboardInstaller

// XGDragView belongs to the back end, which may load after this library.
+ (void)load {
    const MethodPatch patches[] = {
        {"NSPasteboard", "pasteboardWithName:", reinterpret_cast<IMP>(pasteboard_named),
         &stock_named, true},
    };
    patch_methods(patches);
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
