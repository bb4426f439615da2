#include "appkit/file_icon.h"

#include "appkit/icon_pictures.h"
#include "appkit/workspace_paths.h"
#include "carbon/finder_information.h"
#include "corefoundation/patient_stat.h"
#include "corefoundation/silent_disks.h"
#include "look/image_questions.h"
#include "look/shared_strings.h"

#include <sys/stat.h>

#include <atomic>

namespace {

const CGFloat default_size = 48;

// A path in two parts, as thousands of icons share the folder. Joined, the parts are the path
// again.
struct SplitPath {
    NSString *folder, *leaf;
};

SplitPath split_anew(NSString* path) {
    const NSUInteger length = [path length], most_characters = 4096;
    if (length > most_characters) return {[[path copy] autorelease], @""};
    unichar characters[most_characters];
    [path getCharacters:characters range:NSMakeRange(0, length)];
    NSUInteger end = length;
    while (end > 0 && characters[end - 1] != '/') end--;
    return {shared_string(characters, end), shared_string(characters + end, length - end)};
}

void exchange(NSString** kept, NSString* text) {
    if (*kept == text) return;
    [*kept release];
    *kept = [text retain];
}

// Icons of the same file are asked for one after another, often with the same string. A string that
// may change is copied here, and so is never found again.
const SplitPath& split(NSString* path) {
    static NSString* last;
    static SplitPath parts;
    if (path == last) return parts;
    const SplitPath next = split_anew(path);
    exchange(&parts.folder, next.folder);
    exchange(&parts.leaf, next.leaf);
    [last release];
    last = [path copy];
    return parts;
}

enum LinkState : signed char { is_no_link, is_link, is_broken_link };

// A target on a disk that does not answer in time counts as missing.
LinkState link_state(std::string path) {
    struct stat entry;
    while (path.ends_with('/')) path.pop_back();  // a slash would lead to the target
    if (path.empty() || files::is_silent_entry(path) || lstat(path.c_str(), &entry) != 0 ||
        !S_ISLNK(entry.st_mode)) {
        return is_no_link;
    }
    return files::patient_stat(path, 0.2) ? is_link : is_broken_link;
}

// Released icons that nobody had looked at. They keep their texts and colour, because the next icon
// mostly has the same ones. Any thread may release an icon.
std::atomic<void*> spares[2];

bool keep_spare(void* icon) {
    for (std::atomic<void*>& spare : spares) {
        void* none = nullptr;
        if (spare.compare_exchange_strong(none, icon)) return true;
    }
    return false;
}

void* take_spare() {
    for (std::atomic<void*>& spare : spares) {
        if (void* const icon = spare.exchange(nullptr)) return icon;
    }
    return nullptr;
}

NSColor* clear_color() {
    static NSColor* const color = [[NSColor clearColor] retain];
    return color;
}

}  // namespace

// GNUstep's method for images that only name their file: it loads them at the first look at the
// representations.
@interface NSImage (FileReference)
- (BOOL)_loadFromFile:(NSString*)fileName;
@end

@interface NSImage (PlainObject)
- (instancetype)initAsPlainObject;
- (void)deallocAsPlainObject;
@end

@implementation NSImage (PlainObject)
- (instancetype)initAsPlainObject {
    return [super init];
}

- (void)deallocAsPlainObject {
    [super dealloc];
}
@end

@implementation FileIcon

// The state in which nobody has looked at the icon.
static void begin(FileIcon* self, NSString* path) {
    self->_size = NSMakeSize(default_size, default_size);
    self->_flags = {};
    self->_flags.sizeWasExplicitlySet = YES;
    self->_flags.colorMatchPreferred = YES;
    self->_flags.multipleResolutionMatching = YES;
    self->_flags.syncLoad = YES;
    self->_hidden = -1;
    self->_link = is_no_link;
    const SplitPath parts = path ? split(path) : SplitPath();
    exchange(&self->_fileName, parts.folder);
    exchange(&self->_leaf, parts.leaf);
}

// Avoids the stock initializer, which makes an array for the representations.
- (instancetype)initWithPath:(NSString*)path {
    if (!(self = [self initAsPlainObject])) return nil;
    _color = [clear_color() retain];
    begin(self, path);
    return self;
}

+ (instancetype)iconOfPath:(NSString*)path {
    FileIcon* icon = static_cast<FileIcon*>(take_spare());
    if (icon) {
        begin(icon, path);
    } else {
        icon = [[FileIcon alloc] initWithPath:path];
    }
    return [icon autorelease];
}

// Whether the icon differs from a new one only in its size.
static bool is_as_new(FileIcon* self) {
    return self->_flags.syncLoad && !self->_reps && !self->_name && !self->_delegate &&
           !self->_lockedView && self->_cacheMode == 0 && self->_color == clear_color();
}

- (void)dealloc {
    static const Class own_class = [FileIcon class];
    const bool is_simple = object_getClass(self) == own_class && is_as_new(self);
    if (is_simple && keep_spare(self)) return;
    [_leaf release];
    if (!is_simple) return [super dealloc];
    // The stock method would look for what such an icon does not have.
    [_fileName release];
    [_color release];
    [self deallocAsPlainObject];
}

- (id)copyWithZone:(NSZone*)zone {
    FileIcon* copy = [super copyWithZone:zone];
    [copy->_leaf retain];  // the fields were copied as they are
    return copy;
}

- (NSString*)path {
    return _leaf ? [_fileName stringByAppendingString:_leaf] : nil;
}

// Items that are alternates of one file get their icons one after the other. Nobody can tell apart
// two icons of the same path that have not been looked at, so such items share one.
- (NSImage*)imageForMenuItem {
    static FileIcon* last;
    if (self == last || !_flags.syncLoad || _name) return self;
    const bool is_equal = last && last->_leaf == _leaf && last->_fileName == _fileName &&
                          last->_flags.syncLoad && NSEqualSizes(last->_size, _size);
    if (is_equal) return last;
    [last release];
    return last = [self retain];
}

- (BOOL)_loadFromFile:(NSString*)fileName {
    (void)fileName;
    if (!_flags.syncLoad) return YES;
    _flags.syncLoad = NO;  // first, as give_pictures() adds representations
    [_reps release];
    _reps = [NSMutableArray new];
    give_pictures(self, [self path]);
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
    return _flags.syncLoad && may_have_untrusted_picture(_leaf);
}

- (void)askDisk {
    if (_hidden >= 0) return;
    const std::string path = path_bytes([self path]);
    _hidden = files::is_hidden(path);
    _link = link_state(path);
}

- (NSImage*)emblem {
    [self askDisk];
    return _link == is_broken_link ? broken_link_emblem() : _link ? link_emblem() : nil;
}

- (NSImage*)emblemOfLinks {
    return link_emblem();
}

- (BOOL)isOfHiddenFile {
    [self askDisk];
    return _hidden;
}

@end
