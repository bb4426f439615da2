#include "items/DVMenuItem.h"

// A null tree ends the process in release builds too.
#undef NDEBUG
#include <assert.h>
#include <stdlib.h>
#include <string.h>

#include "controller/DVDelvio.h"
#include "items/DVDelvio+Labels.h"
#include "tree/dv_state.h"
#include "tree/dv_tree.h"

namespace {

constexpr int32_t default_icon_side = 16, icon_margin = 3;
constexpr uint32_t default_label_font_size = 14;

NSString* title_for_tree(dv_tree_t* tree) {
    NSString* title = [NSString stringWithUTF8String:[DVMenuItem nameForTree:tree]];
    return title ? title : [NSString stringWithFormat:@"Delvio: No name found? %p", tree];
}

// An element's items are made one after another, so the last path is kept as a string. A path that
// is not valid UTF-8 cannot become one.
NSString* string_of_path(const char* path) {
    static char* last;
    static NSString* string;
    if (last && strcmp(last, path) == 0) return string;
    free(last);
    last = strdup(path);
    [string release];
    return string = [[NSString alloc] initWithUTF8String:path];
}

// A path that is no string gets the icon of an unknown file.
NSImage* icon_for_path(const char* path) {
    NSString* string = path ? string_of_path(path) : nil;
    NSImage* icon = [[NSWorkspace sharedWorkspace] iconForFile:string ? string : @""];
    const int32_t size = static_cast<int32_t>(dvFontSize);
    const CGFloat side = size ? size + icon_margin : default_icon_side;
    [icon setSize:NSMakeSize(side, side)];
    return icon;
}

NSAttributedString* labelled_title(NSString* title, uint8_t label) {
    const uint32_t preferred = [[DVDelvio sharedDelvio] getDV]->font_size;
    NSFont* font = [NSFont fontWithName:@"Lucida Grande"
                                   size:preferred ? preferred : default_label_font_size];
    NSDictionary* attributes = @{
        NSFontAttributeName : font,
        NSForegroundColorAttributeName : [DVDelvio colorForLabel:label]
    };
    return [[[NSAttributedString alloc] initWithString:title attributes:attributes] autorelease];
}

}  // namespace

@implementation DVMenuItem
@synthesize tree = _tree;

- (instancetype)initWithTree:(dv_tree_t*)theTree
                      target:(id)target
                       title:(NSString*)title
                    useImage:(BOOL)useImage {
    // An item without an element is a programming error: it ends the process, in release builds
    // too.
    assert(theTree != 0);  // NOLINT(modernize-use-nullptr): the message shows this text.
    if (!title) title = title_for_tree(theTree);
    self = [super initWithTitle:title action:@selector(dvItemSelected:) keyEquivalent:@""];
    if (!self) return nil;

    char* path = dv_path_for_elem(theTree, 0, 0);
    _tree = theTree;
    [self setTarget:target];
    [self setEnabled:YES];
    if (useImage) [self setImage:icon_for_path(path)];
    if (theTree->label && [[DVDelvio sharedDelvio] showLabels]) {
        [self setAttributedTitle:labelled_title(title, theTree->label)];
    }
    free(path);
    return self;
}

+ (const char*)nameForTree:(dv_tree_t*)tree {
    if (!tree) return "Delvio: No tree specified; should not happen.";
    if (tree->owns_display_name && tree->display_name) return tree->display_name;
    if (tree->name_len > 0) return tree->display_name;
    return tree->dir->path + tree->dir->name_offset;
}

- (instancetype)initWithTree:(dv_tree_t*)tree target:(id)target title:(NSString*)title {
    return [self initWithTree:tree target:target title:title useImage:YES];
}

- (instancetype)initWithTree:(dv_tree_t*)tree target:(id)target {
    return [self initWithTree:tree target:target title:nil];
}

+ (DVMenuItem*)createAutoreleasedItemForTree:(dv_tree_t*)tree
                                      target:(id)target
                                   withTitle:(NSString*)title
                                andModifiers:(NSUInteger)modifiers
                                    useImage:(BOOL)useImage {
    DVMenuItem* item = [[self alloc] initWithTree:tree target:target title:title useImage:useImage];
    if (modifiers) {
        [item setAlternate:YES];
        [item setKeyEquivalentModifierMask:modifiers];
    }
    return [item autorelease];
}

+ (DVMenuItem*)createAutoreleasedItemForTree:(dv_tree_t*)tree
                                      target:(id)target
                                   withTitle:(NSString*)title
                                andModifiers:(NSUInteger)modifiers {
    return [self createAutoreleasedItemForTree:tree
                                        target:target
                                     withTitle:title
                                  andModifiers:modifiers
                                      useImage:YES];
}

@end
