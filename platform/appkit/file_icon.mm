#include "appkit/file_icon.h"

#include "appkit/icon_pictures.h"
#include "appkit/workspace_paths.h"
#include "carbon/finder_information.h"
#include "look/image_questions.h"

namespace {

const CGFloat default_size = 48;

// Items of one file ask in turn: they share one string.
NSString* shared_path(NSString* path) {
    static NSString* last;
    if (!path || [path isEqualToString:last]) return path ? last : nil;
    [last release];
    return last = [path copy];
}

NSColor* clear_color() {
    static NSColor* const color = [[NSColor clearColor] retain];
    return color;
}

}  // namespace

// What GNUstep does with images that only name their file: the first look at the representations
// loads them.
@interface NSImage (FileReference)
- (BOOL)_loadFromFile:(NSString*)fileName;
@end

@interface NSImage (PlainObject)
- (instancetype)initAsPlainObject;
@end

@implementation NSImage (PlainObject)
- (instancetype)initAsPlainObject {
    return [super init];
}
@end

@implementation FileIcon

// Not by the stock method, which makes an array for the representations.
- (instancetype)initWithPath:(NSString*)path {
    if (!(self = [self initAsPlainObject])) return nil;
    _size = NSMakeSize(default_size, default_size);
    _flags.sizeWasExplicitlySet = YES;
    _flags.colorMatchPreferred = YES;
    _flags.multipleResolutionMatching = YES;
    _flags.syncLoad = YES;
    _color = [clear_color() retain];
    _fileName = [shared_path(path) retain];
    _hidden = -1;
    return self;
}

- (BOOL)_loadFromFile:(NSString*)fileName {
    if (!_flags.syncLoad) return YES;
    _flags.syncLoad = NO;  // before: what gives pictures adds them
    [_reps release];
    _reps = [NSMutableArray new];
    give_pictures(self, fileName);
    return [_reps count] > 0;
}

- (void)addRepresentation:(NSImageRep*)representation {
    [self _loadFromFile:_fileName];
    [super addRepresentation:representation];
}

- (void)addRepresentations:(NSArray*)representations {
    [self _loadFromFile:_fileName];
    [super addRepresentations:representations];
}

- (void)removeRepresentation:(NSImageRep*)representation {
    [self _loadFromFile:_fileName];
    [super removeRepresentation:representation];
}

- (void)encodeWithCoder:(NSCoder*)coder {
    [self _loadFromFile:_fileName];
    [super encodeWithCoder:coder];
}

// An archive holds a plain image.
- (Class)classForCoder {
    return [NSImage class];
}

- (BOOL)mayChangeAfterFirstLook {
    return _flags.syncLoad && may_have_untrusted_picture(path_bytes(_fileName));
}

- (BOOL)isOfHiddenFile {
    if (_hidden < 0) _hidden = files::is_hidden(path_bytes(_fileName));
    return _hidden;
}

@end
