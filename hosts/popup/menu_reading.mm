#include "popup/menu_reading.h"

#include <math.h>
#include <string.h>

#include "finderkit/plug_in_items.h"
#include "popup/host_menu.h"

namespace {

constexpr double highest_component = 255;

// The path of a root element ends with a slash.
std::string without_slash(std::string path) {
    while (path.size() > 1 && path.back() == '/') path.pop_back();
    return path;
}

int byte_of(double component) { return static_cast<int>(lround(component * highest_component)); }

std::string color_of(NSMenuItem* item) {
    NSAttributedString* title = [item attributedTitle];
    if (![title length]) return {};
    NSColor* color = [title attribute:NSForegroundColorAttributeName
                              atIndex:0
                       effectiveRange:nullptr];
    color = [color colorUsingColorSpaceName:NSDeviceRGBColorSpace];
    if (!color) return {};
    char text[sizeof "#rrggbb"];
    snprintf(text, sizeof text, "#%02x%02x%02x", byte_of([color redComponent]) & 0xff,
             byte_of([color greenComponent]) & 0xff, byte_of([color blueComponent]) & 0xff);
    return text;
}

std::unique_ptr<ItemDetails> read_details(NSMenuItem* item) {
    auto details = std::make_unique<ItemDetails>();
    details->color = color_of(item);
    details->tag = [item tag];
    details->plugin = ![HostMenu madeItem:item];
    details->path = without_slash(utf8_text(path_of_item(item)));
    if ([item hasSubmenu]) details->submenu_title = utf8_text([[item submenu] title]);
    return details;
}

}  // namespace

std::string utf8_text(NSString* string) {
    // Without an object. A text with a NUL inside ends there.
    char buffer[1024];
    const BOOL fits = [string getCString:buffer
                               maxLength:sizeof buffer
                                encoding:NSUTF8StringEncoding];
    if (fits && strlen(buffer) >= [string length]) return buffer;
    NSData* data = [string dataUsingEncoding:NSUTF8StringEncoding allowLossyConversion:YES];
    if (!data) return {};
    return {static_cast<const char*>([data bytes]), [data length]};
}

ItemSnapshot read_item(NSMenuItem* item, bool details) {
    ItemSnapshot snapshot;
    snapshot.separator = [item isSeparatorItem];
    snapshot.title = snapshot.separator ? std::string() : utf8_text([item title]);
    snapshot.enabled = !snapshot.separator && [item isEnabled];
    snapshot.alternate = [item isAlternate];
    if (snapshot.alternate) snapshot.modifiers = [item keyEquivalentModifierMask];
    snapshot.image = [item image] != nil;
    snapshot.has_submenu = [item hasSubmenu];
    if (details) snapshot.details = read_details(item);
    return snapshot;
}
