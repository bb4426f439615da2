#include "popup/menu_reading.h"

#include <math.h>
#include <string.h>

#include "file_steps/path_text.h"
#include "finderkit/plug_in_items.h"
#include "popup/host_menu.h"

namespace {

constexpr double highest_component = 255;

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

void take_text(NSString* string, std::string* text) {
    // Without an object. A text with a NUL inside ends there.
    char buffer[1024];
    const BOOL fits = [string getCString:buffer
                               maxLength:sizeof buffer
                                encoding:NSUTF8StringEncoding];
    const size_t size = fits ? strlen(buffer) : 0;
    if (fits && size >= [string length]) {
        text->assign(buffer, size);
        return;
    }
    NSData* data = [string dataUsingEncoding:NSUTF8StringEncoding allowLossyConversion:YES];
    if (!data) return text->clear();
    text->assign(static_cast<const char*>([data bytes]), [data length]);
}

}  // namespace

std::string utf8_text(NSString* string) {
    std::string text;
    take_text(string, &text);
    return text;
}

// A title never changes: an item that gets another one gets another string.
void ItemReader::read_title(NSString* title) {
    if (title == title_) return;
    [title_ release];
    title_ = [title retain];
    take_text(title, &snapshot_.title);
}

void ItemReader::read_details(NSMenuItem* item) {
    ItemDetails& details = snapshot_.details;
    details.color = color_of(item);
    details.tag = [item tag];
    details.plugin = ![HostMenu madeItem:item];
    const void* const file = file_of_item(item);
    if (file != file_) {
        file_ = file;
        // The path of a root element ends with a slash.
        details.path = operations::without_slash(utf8_text(path_of_item(item)));
    }
    details.submenu_title = snapshot_.has_submenu ? utf8_text([[item submenu] title]) : "";
}

void ItemReader::read_alternate(const AlternateFields& item) {
    snapshot_.separator = false;
    read_title(item.title);
    snapshot_.enabled = item.is_enabled;
    snapshot_.alternate = true;
    snapshot_.modifiers = item.modifiers;
    snapshot_.image = item.has_image;
    snapshot_.has_submenu = item.has_submenu;
}

void ItemReader::read_item(NSMenuItem* item) {
    snapshot_.separator = [item isSeparatorItem];
    read_title(snapshot_.separator ? nil : [item title]);
    snapshot_.enabled = !snapshot_.separator && [item isEnabled];
    snapshot_.alternate = [item isAlternate];
    snapshot_.modifiers = snapshot_.alternate ? [item keyEquivalentModifierMask] : 0;
    snapshot_.image = [item image] != nil;
    snapshot_.has_submenu = [item hasSubmenu];
    if (details_) read_details(item);
}

const ItemSnapshot& ItemReader::read(NSMenu* menu, NSInteger index) {
    AlternateFields alternate;
    if (!details_ && [menu readAlternate:&alternate atIndex:index]) {
        read_alternate(alternate);
    } else {
        read_item([menu glanceAtItemAtIndex:index]);
    }
    return snapshot_;
}
