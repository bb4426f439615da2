#include "carbon/bundle_names.h"

#import <Foundation/Foundation.h>

#include <stdlib.h>

#include "carbon/small_files.h"
#include "corefoundation/property_lists.h"

namespace files {

namespace {

const size_t largest_list = 1 << 20;

// Where a bundle keeps its information: GNUstep's wrappers, then the Mac's.
const char* const information_files[] = {"/Resources/Info-gnustep.plist", "/Contents/Info.plist"};

NSDictionary* information_in(const std::string& path) {
    std::string content;
    if (!read_small_file(path.c_str(), largest_list, &content)) return nil;
    return read_dictionary([NSData dataWithBytes:content.data() length:content.size()]);
}

NSString* name_in(NSDictionary* information) {
    for (NSString* key in @[ @"CFBundleDisplayName", @"ApplicationName" ]) {
        NSString* name = [information objectForKey:key];
        if ([name isKindOfClass:[NSString class]] && [name length] > 0) return name;
    }
    return nil;
}

}  // namespace

CFStringRef copy_bundle_name(const char* path) {
    @autoreleasepool {
        for (const char* file : information_files) {
            NSString* name = name_in(information_in(std::string(path) + file));
            if (name) return (CFStringRef)[name copy];
        }
    }
    return nullptr;
}

std::string bundle_program(const char* path) {
    @autoreleasepool {
        NSString* folder = [NSString stringWithUTF8String:path];
        NSString* program = nil;
        @try {
            program = [[NSBundle bundleWithPath:folder] executablePath];
        } @catch (NSException*) {
            return {};
        }
        const char* bytes = [program UTF8String];
        char* resolved = bytes ? realpath(bytes, nullptr) : nullptr;
        const std::string result = resolved ? resolved : "";
        free(resolved);
        return result;
    }
}

}  // namespace files
