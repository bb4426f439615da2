#include "finderkit/plug_in_items.h"

@interface NSObject (PlugInQuestions)
- (void*)tree;
+ (const char*)nameForTree:(void*)tree;
+ (NSString*)stringPathForTree:(void*)tree;
@end

namespace {

// Null before the plug-in is loaded. A class that was found stays: a search takes longer than most
// questions.
Class item_class() {
    static Class found;
    return found ? found : found = NSClassFromString(@"DVMenuItem");
}
Class controller() {
    static Class found;
    return found ? found : found = NSClassFromString(@"DVDelvio");
}

void* tree_of(NSMenuItem* item) {
    const bool is_plug_ins = item_class() && [item isKindOfClass:item_class()];
    return is_plug_ins ? [(id)item tree] : nullptr;
}

}  // namespace

bool stands_for_file(NSMenuItem* item) { return tree_of(item) != nullptr; }

bool asks_for_operation(NSMenuItem* item) {
    NSArray* titles = @[ @"Move selection here", @"Copy selection here", @"Alias selection here" ];
    return stands_for_file(item) && [titles containsObject:[item title]];
}

const void* file_of_item(NSMenuItem* item) { return tree_of(item); }

NSString* path_of_item(NSMenuItem* item) {
    void* tree = tree_of(item);
    return tree ? [controller() stringPathForTree:tree] : nil;
}

const char* name_of_item(NSMenuItem* item) {
    void* tree = tree_of(item);
    return tree ? [item_class() nameForTree:tree] : nullptr;
}

const char* missing_answer() {
    if (![item_class() instancesRespondToSelector:@selector(tree)]) return "tree";
    if (![item_class() respondsToSelector:@selector(nameForTree:)]) return "nameForTree:";
    if (![controller() respondsToSelector:@selector(stringPathForTree:)]) {
        return "stringPathForTree:";
    }
    return nullptr;
}
