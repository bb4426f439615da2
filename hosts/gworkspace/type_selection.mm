#include "gworkspace/type_selection.h"

#include <AppKit/AppKit.h>
#include <objc/runtime.h>

#include "gworkspace/gworkspace_classes.h"

namespace {

using Select = BOOL (*)(id, SEL, NSString*);

Select stock_select;

bool has_cell(NSMatrix* matrix, NSString* prefix) {
    for (NSCell* cell in [matrix cells]) {
        if ([[cell stringValue] hasPrefix:prefix]) return true;
    }
    return false;
}

BOOL select_cell(id column, SEL selector, NSString* prefix) {
    NSMatrix* matrix = [column cmatrix];
    if ([matrix selectedRow] < 0 && !has_cell(matrix, prefix)) return NO;
    return stock_select(column, selector, prefix);
}

}  // namespace

void end_type_selections() {
    Class column = objc_lookUpClass("FSNBrowserColumn");
    Method method = class_getInstanceMethod(column, @selector(selectCellWithPrefix:));
    if (!method) return;
    stock_select = reinterpret_cast<Select>(
        method_setImplementation(method, reinterpret_cast<IMP>(&select_cell)));
}
