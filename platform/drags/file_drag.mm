// Drags of files to other programs. GNUstep's own drags speak an old version of the protocol, never
// hand the files out, and miss a release over another program's window when the press was not in a
// window of this program. A drag without files goes GNUstep's way.
#include <host/glib_owners.h>
#include <AppKit/AppKit.h>
#include <host/file_drags.h>
#include <GNUstepGUI/GSDisplayServer.h>
#include <GNUstepGUI/GSDragView.h>

#include <gio/gio.h>
#include <objc/runtime.h>

#include "corefoundation/mach_port.h"
#include "drags/stage_drag.h"
#include "objc/method_patch.h"
#include "wayland/kept_stage.h"
#include "x11/file_offer.h"
#include "x11/pointer_place.h"
#include "x11/server_windows.h"

namespace {

constexpr NSTimeInterval looking = 0.02;
constexpr CGFloat inside = 16;  // from the picture's lower left to the pointer

bool dragging;  // files, with an offer
IMP stock_send, stock_drag, stock_update, stock_order;

std::string uri_list_of(NSPasteboard* pasteboard) {
    std::string list;
    id files = [pasteboard propertyListForType:NSFilenamesPboardType];
    if (![files isKindOfClass:[NSArray class]]) return list;
    for (NSString* file in files) {
        const char* path = [file fileSystemRepresentation];
        const files::TextOwner uri(path ? g_filename_to_uri(path, nullptr, nullptr) : nullptr);
        if (uri) list.append(uri.get()).append("\r\n");
    }
    return list;
}

// The action that the modifier keys ask for; a copy when the target may choose.
unsigned action_for(NSDragOperation operation) {
    if (operation == NSDragOperationLink) {
        return FileOffer::shared()->action_named(FileOffer::link);
    }
    if (operation == NSDragOperationMove) {
        return FileOffer::shared()->action_named(FileOffer::move_files);
    }
    return FileOffer::shared()->action_named(FileOffer::copy);
}

unsigned image_window(GSDragView* view) {
    void* device = [GSCurrentServer() windowDevice:[[view window] windowNumber]];
    return static_cast<unsigned>(reinterpret_cast<uintptr_t>(device));
}

void send_external(GSDragView* self, SEL selector, GSAppKitSubtype subtype, NSDragOperation action,
                   NSPoint position, NSTimeInterval time, int target) {
    FileOffer* offer = dragging ? FileOffer::shared() : nullptr;
    if (!offer) {
        using Send =
            void (*)(id, SEL, GSAppKitSubtype, NSDragOperation, NSPoint, NSTimeInterval, int);
        reinterpret_cast<Send>(stock_send)(self, selector, subtype, action, position, time, target);
        return;
    }
    if (!target) return;  // nobody there takes a drop
    const unsigned window = static_cast<unsigned>(target), source = image_window(self);
    const int x = static_cast<int>(position.x);
    const int y = pointer_place().display_height - static_cast<int>(position.y);
    switch (subtype) {
        case GSAppKitDraggingEnter:
            offer->enter(window, source);
            offer->move(window, source, x, y, action_for(action));
            break;
        case GSAppKitDraggingUpdate:
            offer->move(window, source, x, y, action_for(action));
            break;
        case GSAppKitDraggingExit:
            offer->leave(window, source);
            break;
        case GSAppKitDraggingDrop:
            offer->drop(window, source);
            break;
        default:
            break;
    }
}

MachPort* offer_port;

// A connection whose display has gone would stay readable for ever, so it is served no more.
void answer_requests(void*) {
    if (!FileOffer::shared()) [offer_port invalidate];
}

// Answers requests from now on: a program may ask for dropped files long after the drag.
bool serve_offer() {
    FileOffer* offer = FileOffer::shared();
    if (!offer) return false;
    if (offer_port) return true;
    offer_port = [[MachPort alloc] initWithDescriptor:offer->descriptor()
                                              handler:answer_requests
                                                 info:nullptr];
    for (NSString *mode in
         [NSArray arrayWithObjects:NSDefaultRunLoopMode, NSEventTrackingRunLoopMode,
                                   NSModalPanelRunLoopMode, nil]) {
        [offer_port serveInMode:mode];
    }
    return true;
}

// One of the drag view's own variables; null in a toolkit that does not have it.
template <typename type>
type* variable(GSDragView* view, const char* name) {
    const Ivar found = class_getInstanceVariable([view class], name);
    if (!found) return nullptr;
    return reinterpret_cast<type*>(reinterpret_cast<char*>(view) + ivar_getOffset(found));
}

// With Command alone GNUstep asks for an operation that other programs do not know and so cannot
// accept. Without the keyboard, GNUstep also does not see that the key is let go.
BOOL update_operations(GSDragView* self, SEL selector, NSEvent* event) {
    using Update = BOOL (*)(id, SEL, NSEvent*);
    const BOOL changed = reinterpret_cast<Update>(stock_update)(self, selector, event);
    auto* operations = variable<NSDragOperation>(self, "operationMask");
    if (!dragging || !operations) return changed;
    if (*operations == NSDragOperationGeneric) {
        *operations = NSDragOperationGeneric | NSDragOperationCopy | NSDragOperationMove;
    }
    return changed;
}

// GNUstep has the window manager manage the image's window as a dialog. A window is managed from
// when it is mapped, and this method maps it; then it takes back that the window is unmanaged.
void order_image(NSWindow* self, SEL selector, NSWindowOrderingMode place, NSInteger other) {
    [self setTitle:@"Dragged Image"];
    free_from_window_manager(self);
    using Order = void (*)(id, SEL, NSWindowOrderingMode, NSInteger);
    reinterpret_cast<Order>(stock_order)(self, selector, place, other);
    free_from_window_manager(self);
    set_window_type(self, "_NET_WM_WINDOW_TYPE_DND");
}

void install_on(GSDragView* view) {
    static bool done;
    if (done) return;
    done = true;
    const MethodPatch patches[] = {
        {class_getName([view class]), "sendExternalEvent:action:position:timestamp:toWindow:",
         reinterpret_cast<IMP>(send_external), &stock_send},
        {class_getName([[view window] class]),
         "orderWindow:relativeTo:", reinterpret_cast<IMP>(order_image), &stock_order},
        {"GSDragView", "_updateOperationMask:", reinterpret_cast<IMP>(update_operations),
         &stock_update},
    };
    patch_methods(patches);
}

}  // namespace

// A private method of the toolkit.
@interface GSDragView (LocalTargets)
- (void)_sendLocalEvent:(GSAppKitSubtype)subtype
                 action:(NSDragOperation)action
               position:(NSPoint)position
              timestamp:(NSTimeInterval)time
               toWindow:(NSWindow*)window;
@end

// Ends GNUstep's drag loop at Escape, and when the button is let go where the loop does not see it.
@interface ReleaseWatch : NSObject {
  @private
    GSDragView* _view;  // not retained
    NSTimer* _timer;
    bool _wasUp;
}
- (instancetype)initWithView:(GSDragView*)view;
- (void)start;
- (void)stop;
@end

namespace {

// Makes the drag allow no operation, so that it ends without a drop. The drag leaves a target in
// this program here; the offer leaves a target in another program.
void drop_nothing(GSDragView* view) {
    if (auto* allowed = variable<NSDragOperation>(view, "dragMask")) *allowed = NSDragOperationNone;
    const BOOL* external = variable<BOOL>(view, "destExternal");
    NSWindow* target = [view draggingDestinationWindow];
    if (!target || !external || *external) return;
    [view _sendLocalEvent:GSAppKitDraggingExit
                   action:NSDragOperationNone
                 position:NSZeroPoint
                timestamp:[[NSProcessInfo processInfo] systemUptime]
                 toWindow:target];
}

}  // namespace

@implementation ReleaseWatch

- (instancetype)initWithView:(GSDragView*)view {
    if (!(self = [super init])) return nil;
    _view = view;
    return self;
}

- (void)start {
    _timer = [NSTimer timerWithTimeInterval:looking
                                     target:self
                                   selector:@selector(look:)
                                   userInfo:nil
                                    repeats:YES];
    [[NSRunLoop currentRunLoop] addTimer:_timer forMode:NSEventTrackingRunLoopMode];
}

- (void)stop {
    [_timer invalidate];
    _timer = nil;
}

// Acts at the second look that finds the button up: the loop's own event, if any, comes first.
- (void)look:(NSTimer*)timer {
    (void)timer;
    FileOffer* offer = FileOffer::shared();
    const bool cancelled = offer && offer->cancelled();
    const bool up = !offer || offer->released() || !offer->button_is_down();
    if (!cancelled && (!up || !_wasUp)) {
        _wasUp = up;
        return;
    }
    [self stop];
    if (cancelled) drop_nothing(_view);
    NSEvent* release = [NSEvent mouseEventWithType:NSLeftMouseUp
                                          location:[NSEvent mouseLocation]
                                     modifierFlags:0
                                         timestamp:[[NSProcessInfo processInfo] systemUptime]
                                      windowNumber:0
                                           context:nil
                                       eventNumber:0
                                        clickCount:1
                                          pressure:0];
    [NSApp postEvent:release atStart:cancelled];
}

@end

namespace {

void end_drag(id source, NSImage* image, NSDragOperation result) {
    if ([source respondsToSelector:@selector(draggedImage:endedAt:operation:)]) {
        [source draggedImage:image endedAt:[NSEvent mouseLocation] operation:result];
    }
}

// The place of the picture, where the pointer is in it. The pointer may have moved since the place
// was chosen, as the pasteboard's server takes its time, and the picture would follow it far away.
NSPoint place_at_pointer(NSImage* image, NSPoint at, NSEvent* event) {
    const NSPoint pointer = [event locationInWindow];
    const NSRect area = {at, [image size]};
    return NSPointInRect(pointer, area) ? at : NSMakePoint(pointer.x - inside, pointer.y - inside);
}

// The compositor carries the files. A stage that cannot have it do so stays until the X server's
// drag is over: see the docs on Wayland.
void drag_image(NSWindow* self, SEL selector, NSImage* image, NSPoint at, NSSize offset,
                NSEvent* event, NSPasteboard* pasteboard, id source, BOOL slide_back) {
    using Drag = void (*)(id, SEL, NSImage*, NSPoint, NSSize, NSEvent*, NSPasteboard*, id, BOOL);
    at = place_at_pointer(image, at, event);
    const auto stock = [&] {
        reinterpret_cast<Drag>(stock_drag)(self, selector, image, at, offset, event, pasteboard,
                                           source, slide_back);
    };
    const std::string files = uri_list_of(pasteboard);
    if (files.empty() || dragging) return stock();
    const std::unique_ptr<KeptStage> kept = take_kept_stage();
    NSDragOperation result = NSDragOperationNone;
    if (kept && drag_on_stage(*kept->stage, files, image, &result)) {
        return end_drag(source, image, result);
    }
    if (!serve_offer()) return stock();
    FileOffer* offer = FileOffer::shared();
    const bool held = offer->hold_pointer();
    if (!offer->button_is_down()) {
        // The button was let go before the drag began, so the user did not mean to drop anything.
        if (held) offer->let_pointer_go();
        return end_drag(source, image, NSDragOperationNone);
    }
    GSDragView* view = (GSDragView*)[GSServerForWindow(self) dragInfo];
    install_on(view);
    offer->begin(files, image_window(view));
    offer->watch_for_escape();
    ReleaseWatch* watch = [[[ReleaseWatch alloc] initWithView:view] autorelease];
    dragging = true;
    [watch start];
    @try {
        stock();
    } @finally {
        [watch stop];
        offer->leave_escape_alone();
        dragging = false;
        offer->end(image_window(view));
        if (held) offer->let_pointer_go();
    }
}

// A target that has asked for the files while the drag was above it only says that it is done.
bool target_is_done() {
    NSEvent* event = [NSApp nextEventMatchingMask:NSAppKitDefinedMask
                                        untilDate:[NSDate dateWithTimeIntervalSinceNow:looking]
                                           inMode:NSDefaultRunLoopMode
                                          dequeue:YES];
    return [event subtype] == GSAppKitDraggingFinished;
}

}  // namespace

void finish_file_drops(NSTimeInterval limit) {
    if (!offer_port) return;
    NSDate* end = [NSDate dateWithTimeIntervalSinceNow:limit];
    for (;;) {
        const FileOffer* offer = FileOffer::shared();
        if (!offer || !offer->is_awaited() || [end timeIntervalSinceNow] <= 0) return;
        @autoreleasepool {
            if (target_is_done()) return;
        }
    }
}

@interface FileDragInstaller : NSObject
@end

@implementation FileDragInstaller

+ (void)load {
    const MethodPatch patches[] = {
        {"NSWindow", "dragImage:at:offset:event:pasteboard:source:slideBack:",
         reinterpret_cast<IMP>(drag_image), &stock_drag},
    };
    patch_methods(patches);
}

@end
