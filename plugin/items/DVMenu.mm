#include "items/DVMenu.h"

@implementation DVMenu
@synthesize tree = _tree;
@synthesize dvDidPopulate = _dvDidPopulate;
@synthesize dvBeganAsyncPopulate = _dvBeganAsyncPopulate;
@synthesize dvIsPreviewMenu = _dvIsPreviewMenu;
@synthesize dvFolderLevel = _dvFolderLevel;
@synthesize dvOpenWithIsAttachedToRoot = _dvOpenWithIsAttachedToRoot;
@synthesize dvNeedsOpenWithHead = _dvNeedsOpenWithHead;

- (instancetype)initWithTitle:(NSString*)title tree:(dv_tree_t*)tree andLevel:(int32_t)level {
    self = [super initWithTitle:title];
    if (!self) return nil;
    _tree = tree;
    _dvFolderLevel = level;
    [self setAutoenablesItems:NO];
    return self;
}

- (instancetype)initWithTitle:(NSString*)title andTree:(dv_tree_t*)tree {
    return [self initWithTitle:title tree:tree andLevel:0];
}

@end
