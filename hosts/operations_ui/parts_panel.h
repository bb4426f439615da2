// A small window of texts, icons, a bar, buttons and a check box, in the look of the menus: light
// or dark as they are, and sharp at every scale. Tab and the arrows lead a focus along the buttons
// and check boxes; Space hits the one that has it. Main thread.
#pragma once

#include <AppKit/AppKit.h>

#include <functional>
#include <string>
#include <vector>

#include "panels/dialog_panel.h"

namespace operations {

enum class PartKind { Text, Icon, Bar, Button, Check };

// Measures are in points, from the content's upper left corner.
struct Part {
    PartKind kind;
    double left, top, width, height;
    std::string text;  // UTF-8; of an icon the path of its file; shortened in its middle
    int item = 0;      // what is hit, of a button or check box
    double size = 12;
    bool bold = false, dim = false;
    bool chief = false;     // of a button: Return hits it
    unichar key = 0;        // hits it too
    bool disabled = false;  // cannot be hit
    bool on = false;        // of a check box
    double value = 0;       // of a bar, from 0 to 1; negative while there is no telling
};

// Escape: the button of this key is also what the window's close button hits.
constexpr unichar cancel_key = 0x1b;

// Sent with the item of a button or check box.
using Hit = std::function<void(int)>;

}  // namespace operations

@interface PartsPanel : DialogPanel {
  @private
    BOOL _isModal;
}
- (instancetype)initWithTitle:(NSString*)title
                        width:(double)width
                       height:(double)height
                        parts:(const std::vector<operations::Part>&)parts
                          hit:(const operations::Hit&)hit;
// May be changed; then sent `partsChanged`.
- (std::vector<operations::Part>&)parts;
- (operations::Part*)partOfItem:(int)item;
- (void)partsChanged;
// Where the part is in the window, in its base coordinates.
- (NSRect)areaOfPart:(const operations::Part&)part;
@end
