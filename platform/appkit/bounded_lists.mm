// GNUstep reads property lists, such as a bundle's information or the user's defaults, even in a
// folder that somebody only looks at. Here its parser gets no list that would end the process, and
// it reads plain files only.
#include <Foundation/Foundation.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "corefoundation/property_lists.h"
#include "objc/method_patch.h"

namespace {

const off_t largest_file = 4 << 20;

IMP stock_parse, stock_read_dictionary, stock_read_array;

NSError* refusal() {
    NSDictionary* words =
        @{NSLocalizedDescriptionKey : @"The property list is damaged, too large or too deep."};
    return [NSError errorWithDomain:NSCocoaErrorDomain code:0 userInfo:words];
}

id parse(Class self, SEL selector, NSData* data, NSPropertyListReadOptions options,
         NSPropertyListFormat* format, NSError** error) {
    if ([data isKindOfClass:[NSData class]] && !is_bounded_data(data)) {
        if (error) *error = refusal();
        return nil;
    }
    using Parse =
        id (*)(Class, SEL, NSData*, NSPropertyListReadOptions, NSPropertyListFormat*, NSError**);
    return reinterpret_cast<Parse>(stock_parse)(self, selector, data, options, format, error);
}

// -1 unless the path leads to a plain file of at most `largest_file` bytes. Opening a pipe must not
// wait for its writer.
int open_list(NSString* path) {
    const char* name = [path length] > 0 ? [path fileSystemRepresentation] : nullptr;
    struct stat status;
    if (!name || stat(name, &status) != 0 || !S_ISREG(status.st_mode)) return -1;
    const int file = open(name, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (file < 0) return -1;
    if (fstat(file, &status) == 0 && S_ISREG(status.st_mode) && status.st_size <= largest_file) {
        return file;
    }
    close(file);
    return -1;
}

// Reads the very file that was checked, even if the path leads to another one now.
id read_list(id self, SEL selector, NSString* path, IMP stock) {
    const int file = open_list(path);
    if (file < 0) {
        [self release];
        return nil;
    }
    NSString* opened = [NSString stringWithFormat:@"/proc/self/fd/%d", file];
    // GNUstep would log an unreadable list each time that somebody looks at the folder.
    if (is_bounded_data([NSData dataWithContentsOfFile:opened])) {
        self = reinterpret_cast<id (*)(id, SEL, NSString*)>(stock)(self, selector, opened);
    } else {
        [self release];
        self = nil;
    }
    close(file);
    return self;
}

id read_dictionary_file(id self, SEL selector, NSString* path) {
    return read_list(self, selector, path, stock_read_dictionary);
}

id read_array_file(id self, SEL selector, NSString* path) {
    return read_list(self, selector, path, stock_read_array);
}

}  // namespace

@interface BoundedListsInstaller : NSObject
@end

@implementation BoundedListsInstaller

+ (void)load {
    const MethodPatch patches[] = {
        {"NSPropertyListSerialization", "propertyListWithData:options:format:error:",
         reinterpret_cast<IMP>(parse), &stock_parse, true},
        {"NSDictionary", "initWithContentsOfFile:", reinterpret_cast<IMP>(read_dictionary_file),
         &stock_read_dictionary},
        {"NSArray", "initWithContentsOfFile:", reinterpret_cast<IMP>(read_array_file),
         &stock_read_array},
    };
    patch_methods(patches);
}

@end
