#include "wayland/stage_events.h"

#include <host/modifier_keys.h>

#include "x11/screens.h"

// Xlib's headers come after AppKit's, as some of their names are the same.
#include <X11/keysym.h>

namespace {

// Keys that a menu knows and that type no text.
const struct FunctionKey {
    uint32_t symbol;
    unichar character;
} function_keys[] = {
    {XK_Up, NSUpArrowFunctionKey},
    {XK_KP_Up, NSUpArrowFunctionKey},
    {XK_Down, NSDownArrowFunctionKey},
    {XK_KP_Down, NSDownArrowFunctionKey},
    {XK_Left, NSLeftArrowFunctionKey},
    {XK_KP_Left, NSLeftArrowFunctionKey},
    {XK_Right, NSRightArrowFunctionKey},
    {XK_KP_Right, NSRightArrowFunctionKey},
    {XK_Page_Up, NSPageUpFunctionKey},
    {XK_KP_Page_Up, NSPageUpFunctionKey},
    {XK_Page_Down, NSPageDownFunctionKey},
    {XK_KP_Page_Down, NSPageDownFunctionKey},
    {XK_Home, NSHomeFunctionKey},
    {XK_KP_Home, NSHomeFunctionKey},
    {XK_End, NSEndFunctionKey},
    {XK_KP_End, NSEndFunctionKey},
    {XK_Delete, NSDeleteFunctionKey},
    {XK_KP_Delete, NSDeleteFunctionKey},
    {XK_KP_Enter, NSEnterCharacter},
};

NSString* characters_of(const StageEvent& event) {
    for (const FunctionKey& key : function_keys) {
        if (key.symbol != event.symbol) continue;
        return [NSString stringWithCharacters:&key.character length:1];
    }
    return [NSString stringWithUTF8String:event.text.c_str()] ?: @"";
}

bool is_modifier(uint32_t symbol) {
    return (symbol >= XK_Shift_L && symbol <= XK_Hyper_R) || symbol == XK_ISO_Level3_Shift ||
           symbol == XK_Mode_switch;
}

NSEvent* key_event(const StageEvent& event, NSWindow* window) {
    const bool modifier = is_modifier(event.symbol);
    const NSEventType pressed = event.kind == StageEvent::key_down ? NSKeyDown : NSKeyUp;
    NSString* characters = modifier ? @"" : characters_of(event);
    return [NSEvent keyEventWithType:modifier ? NSFlagsChanged : pressed
                            location:NSZeroPoint
                       modifierFlags:current_modifier_flags()
                           timestamp:[[NSProcessInfo processInfo] systemUptime]
                        windowNumber:[window windowNumber]
                             context:nil
                          characters:characters
         charactersIgnoringModifiers:characters
                           isARepeat:event.repeats
                             keyCode:0];
}

NSEventType type_of_motion(int held) {
    switch (held) {
        case 0:
            return NSMouseMoved;
        case 1:
            return NSLeftMouseDragged;
        case 3:
            return NSRightMouseDragged;
        default:
            return NSOtherMouseDragged;
    }
}

NSEventType type_of(const StageEvent& event) {
    if (event.kind == StageEvent::pointer_moved) return type_of_motion(event.button);
    if (event.kind == StageEvent::wheel_turned) return NSScrollWheel;
    const bool down = event.kind == StageEvent::button_down;
    switch (event.button) {
        case 1:
            return down ? NSLeftMouseDown : NSLeftMouseUp;
        case 3:
            return down ? NSRightMouseDown : NSRightMouseUp;
        default:
            return down ? NSOtherMouseDown : NSOtherMouseUp;
    }
}

NSEvent* pointer_event(const StageEvent& event, NSWindow* window) {
    const NSPoint place = screen_point({event.at.x, event.at.y});
    const bool clicks =
        event.kind == StageEvent::button_down || event.kind == StageEvent::button_up;
    return [NSEvent mouseEventWithType:type_of(event)
                              location:[window convertScreenToBase:place]
                         modifierFlags:current_modifier_flags()
                             timestamp:[[NSProcessInfo processInfo] systemUptime]
                          windowNumber:[window windowNumber]
                               context:nil
                           eventNumber:0
                            clickCount:clicks ? 1 : 0
                              pressure:clicks ? 1 : 0
                          buttonNumber:event.button
                                deltaX:0
                                deltaY:event.steps
                                deltaZ:0];
}

}  // namespace

NSEvent* event_of_stage(const StageEvent& event, NSWindow* window) {
    const bool key = event.kind == StageEvent::key_down || event.kind == StageEvent::key_up;
    return key ? key_event(event, window) : pointer_event(event, window);
}
