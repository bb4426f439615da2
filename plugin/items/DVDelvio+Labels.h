// The colours of the Finder's labels.
#pragma once

#include "controller/DVDelvio.h"

@interface DVDelvio (LabelAdditions)
// The preference "showLabels".
- (int32_t)showLabels;
// The colour of label 1 to 7; clearColor for any other number. Only the low 8 bits count.
+ (NSColor*)colorForLabel:(NSInteger)label;
@end
