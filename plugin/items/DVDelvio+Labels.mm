#include "items/DVDelvio+Labels.h"

#include "tree/dv_state.h"

@implementation DVDelvio (LabelAdditions)

- (int32_t)showLabels {
    return dv->showLabels;
}

+ (NSColor*)colorForLabel:(NSInteger)label {
    static NSArray* colors;
    if (!colors) {
        colors = [@[
            [NSColor clearColor], [NSColor grayColor], [NSColor greenColor], [NSColor purpleColor],
            [NSColor blueColor], [NSColor yellowColor], [NSColor redColor], [NSColor orangeColor]
        ] retain];
    }
    const uint8_t index = static_cast<uint8_t>(label);
    return index < [colors count] ? [colors objectAtIndex:index] : [NSColor clearColor];
}

@end
