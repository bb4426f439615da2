#include "panels/copied_text.h"

#include <AppKit/AppKit.h>

void copy_text(const std::string& text) {
    NSPasteboard* pasteboard = [NSPasteboard generalPasteboard];
    [pasteboard declareTypes:@[ NSStringPboardType ] owner:nil];
    NSString* string = [NSString stringWithUTF8String:text.c_str()];
    if (string) [pasteboard setString:string forType:NSStringPboardType];
}

std::string copied_text() {
    NSPasteboard* pasteboard = [NSPasteboard generalPasteboard];
    return [[pasteboard stringForType:NSStringPboardType] UTF8String] ?: "";
}
