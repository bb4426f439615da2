#include "menu_classes/menu_memory.h"

#include <AppKit/AppKit.h>

#include <malloc.h>

namespace {

const NSUInteger many_items = 5000;

NSUInteger opened_items;

}  // namespace

@interface MenuMemory : NSObject
@end

@implementation MenuMemory

+ (void)giveBack {
    malloc_trim(0);
}

@end

void note_opened_items(NSUInteger items) { opened_items += items; }

void give_memory_back_soon() {
    if (opened_items < many_items) return;
    opened_items = 0;
    NSArray* modes = @[ NSDefaultRunLoopMode, NSModalPanelRunLoopMode ];
    [[NSRunLoop currentRunLoop] performSelector:@selector(giveBack)
                                         target:[MenuMemory class]
                                       argument:nil
                                          order:0
                                          modes:modes];
}
