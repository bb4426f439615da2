#include "appkit/untrusted_icons.h"

#include <string.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

#include "events/deadline.h"
#include "look/bitmaps.h"
#include "menus/menu_run.h"
#include "quicklook/icon_decoder.h"

namespace {

using thumbnails::DecodedIcon;
using thumbnails::IconStamp;
using thumbnails::Picture;

const int side = 64;
const size_t most_known = 512;
// The time between two looks at a file whose picture is known.
const double seconds_between_looks = 2;

struct Known {
    IconStamp stamp;
    NSBitmapImageRep* bitmap = nil;  // retained; nil: it has none
    bool is_asked = false;
    double asked_at = 0;
    std::vector<NSImage*> waiting;  // retained
};

std::unordered_map<std::string, Known>& known_icons() {
    static auto& icons = *new std::unordered_map<std::string, Known>;
    return icons;
}

// Menus show icons as squares.
NSBitmapImageRep* square_bitmap(const Picture& picture) {
    const int edge = std::max(picture.width, picture.height);
    NSBitmapImageRep* bitmap = make_bitmap(edge, edge, NSAlphaNonpremultipliedBitmapFormat);
    unsigned char* to = [bitmap bitmapData];
    const auto row = static_cast<size_t>([bitmap bytesPerRow]);
    memset(to, 0, row * static_cast<size_t>(edge));
    to += static_cast<size_t>((edge - picture.height) / 2) * row +
          static_cast<size_t>((edge - picture.width) / 2) * 4;
    const size_t width = static_cast<size_t>(picture.width) * 4;
    for (size_t y = 0; y < static_cast<size_t>(picture.height); y++) {
        memcpy(to + y * row, picture.pixels.data() + y * width, width);
    }
    return bitmap;
}

void give(NSImage* image, NSBitmapImageRep* bitmap) {
    for (NSImageRep* rep in [[[image representations] copy] autorelease]) {
        [image removeRepresentation:rep];
    }
    [image addRepresentation:bitmap];
    if (MenuRun* run = MenuRun::current()) run->image_changed(image);
}

void take(Known& known, const DecodedIcon& icon) {
    if (icon.stamp == known.stamp) return;
    known.stamp = icon.stamp;
    [known.bitmap release];
    known.bitmap = icon.picture ? [square_bitmap(icon.picture) retain] : nil;
    if (!known.bitmap) return;
    for (NSImage* image : known.waiting) give(image, known.bitmap);
}

struct Arrival {
    std::string file;
    std::optional<DecodedIcon> icon;
};

void take_arrival(const Arrival& arrival) {
    Known& known = known_icons()[arrival.file];
    known.is_asked = false;
    known.asked_at = seconds_now();
    if (arrival.icon) take(known, *arrival.icon);
    for (NSImage* image : known.waiting) [image release];
    known.waiting.clear();
}

}  // namespace

// An icon on its way to the main thread.
@interface IconArrival : NSObject {
  @private
    Arrival* _arrival;  // freed when it arrives
}
- (instancetype)initWithArrival:(Arrival*)arrival;
- (void)arrive;
@end

@implementation IconArrival

- (instancetype)initWithArrival:(Arrival*)arrival {
    if ((self = [super init])) _arrival = arrival;
    return self;
}

// The decoder's thread may be the last to release this object, and must not free what the main
// thread uses.
- (void)arrive {
    const std::unique_ptr<Arrival> arrival(_arrival);
    take_arrival(*arrival);
}

@end

namespace {

// Delivers also while menus and panels are open.
void send(const std::string& file, const std::optional<DecodedIcon>& icon) {
    @autoreleasepool {
        IconArrival* arrival = [[IconArrival alloc] initWithArrival:new Arrival{file, icon}];
        [arrival performSelectorOnMainThread:@selector(arrive)
                                  withObject:nil
                               waitUntilDone:NO
                                       modes:@[
                                           NSDefaultRunLoopMode, NSEventTrackingRunLoopMode,
                                           NSModalPanelRunLoopMode
                                       ]];
        [arrival release];
    }
}

void ask(const std::string& file, Known& known) {
    known.is_asked = true;
    thumbnails::decode_icon(file, side, known.stamp,
                            [file](const std::optional<DecodedIcon>& icon) { send(file, icon); });
}

void forget_some() {
    auto& icons = known_icons();
    if (icons.size() < most_known) return;
    std::erase_if(icons, [](const auto& entry) {
        if (entry.second.is_asked) return false;
        [entry.second.bitmap release];
        return true;
    });
}

}  // namespace

bool is_systems_own(const std::string& path) {
    return path.starts_with("/usr/") && path.find("/../") == std::string::npos;
}

void show_untrusted_icon(NSImage* image, const std::string& file) {
    forget_some();
    Known& known = known_icons()[file];
    if (known.bitmap) give(image, known.bitmap);
    if (!known.is_asked && seconds_now() - known.asked_at > seconds_between_looks) ask(file, known);
    if (known.is_asked) known.waiting.push_back([image retain]);
}

size_t awaited_icons() {
    const auto& icons = known_icons();
    return static_cast<size_t>(std::count_if(
        icons.begin(), icons.end(), [](const auto& entry) { return entry.second.is_asked; }));
}
