#include "appkit/hidden_icons.h"

#include <AppKit/AppKit.h>

#include <objc/runtime.h>

#include "carbon/finder_information.h"

// An image with a mark: nothing is added, so that any image can become one.
@interface HiddenFileIcon : NSImage
@end

@implementation HiddenFileIcon
@end

namespace {

// Each row of a menu asks for its file's icon a few times in turn.
bool is_hidden_now(const std::string& path) {
    static std::string last_path;
    static bool last_answer;
    static NSTimeInterval asked_at;
    const NSTimeInterval now = [NSDate timeIntervalSinceReferenceDate];
    if (path != last_path || now - asked_at > 0.5 || now < asked_at) {
        last_path = path;
        last_answer = files::is_hidden(path);
        asked_at = now;
    }
    return last_answer;
}

}  // namespace

NSImage* marked_if_hidden(NSImage* icon, const std::string& path) {
    if ([icon class] == [NSImage class] && is_hidden_now(path)) {
        object_setClass(icon, [HiddenFileIcon class]);
    }
    return icon;
}

bool is_icon_of_hidden_file(NSImage* icon) { return [icon isKindOfClass:[HiddenFileIcon class]]; }
