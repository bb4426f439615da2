#include "desktop/bundle_names.h"

#import <Foundation/Foundation.h>

#include <host/glib_owners.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <algorithm>
#include <map>
#include <string_view>
#include <vector>

#include "corefoundation/property_lists.h"
#include "desktop/installed_applications.h"
#include "desktop/small_files.h"

namespace files {

namespace {

const size_t largest_list = 1 << 20, largest_known_list = 1 << 14, most_lists = 16;

// Where a bundle keeps its information: GNUstep's wrappers, then the Mac's.
const char* const information_files[] = {"/Resources/Info-gnustep.plist", "/Contents/Info.plist"};

// The lists that were read last: menus ask for the same few bundles each time.
class KnownLists {
  public:
    // Nil when the file holds no list.
    NSDictionary* list_in(const std::string& content) {
        const auto known = lists_.find(content);
        if (known != lists_.end()) return [[known->second retain] autorelease];
        NSData* data = [NSData dataWithBytes:content.data() length:content.size()];
        NSDictionary* list = read_dictionary(data);
        if (content.size() > largest_known_list) return list;
        if (lists_.size() == most_lists) forget();
        return lists_[content] = [list retain];
    }

  private:
    void forget() {
        for (const auto& [content, list] : lists_) [list release];
        lists_.clear();
    }
    std::map<std::string, NSDictionary*> lists_;  // by the content of their files
};

NSDictionary* information_in(const std::string& path) {
    static KnownLists& lists = *new KnownLists;
    std::string content;
    if (!read_small_file(path.c_str(), largest_list, &content)) return nil;
    return lists.list_in(content);
}

NSString* name_in(NSDictionary* information) {
    for (NSString* key in @[ @"CFBundleDisplayName", @"ApplicationName" ]) {
        NSString* name = [information objectForKey:key];
        if ([name isKindOfClass:[NSString class]] && [name length] > 0) return name;
    }
    return nil;
}

bool is_plain_file(const std::string& path) {
    struct stat status;
    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

// The picture of this name, with or without a picture's ending, in one of the bundle's folders.
std::string picture_in(const std::string& path, const std::string& name) {
    for (const char* folder : {"/Resources/", "/Contents/Resources/", "/"}) {
        for (const char* ending : {"", ".png", ".tiff", ".tif", ".icns", ".svg", ".jpg"}) {
            const std::string file = path + folder + name + ending;
            if (is_plain_file(file)) return file;
        }
    }
    return {};
}

std::string icon_name_in(NSDictionary* information) {
    for (NSString* key in @[ @"NSIcon", @"CFBundleIconFile" ]) {
        NSString* name = [information objectForKey:key];
        const bool is_name = [name isKindOfClass:[NSString class]] && [name length] > 0;
        const char* bytes = is_name ? [name UTF8String] : nullptr;
        if (bytes) return bytes;
    }
    return {};
}

// The folders have a slash at their ends. Symbolic links on the way to a folder are resolved: they
// are no part of a bundle's place.
const std::vector<std::string>& application_folders() {
    static const std::vector<std::string>& folders = *[] {
        auto* found = new std::vector<std::string>;
        @autoreleasepool {
            for (NSString* path in NSSearchPathForDirectoriesInDomains(NSAllApplicationsDirectory,
                                                                       NSAllDomainsMask, YES)) {
                const char* bytes = [path UTF8String];
                const TextOwner real(bytes ? realpath(bytes, nullptr) : nullptr);
                if (real) found->push_back(std::string(real.get()) + "/");
            }
        }
        return found;
    }();
    return folders;
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

std::string bundle_icon(const char* path) {
    const std::string bundle = path;
    std::string name;
    @autoreleasepool {
        for (const char* file : information_files) {
            if (name.empty()) name = icon_name_in(information_in(bundle + file));
        }
    }
    if (name.starts_with('/')) return name;
    if (name.empty()) {
        name = bundle.substr(bundle.rfind('/') + 1);
        if (name.ends_with(".app")) name.resize(name.size() - 4);
    }
    return name.find('/') == std::string::npos ? picture_in(bundle, name) : "";
}

bool is_believed_bundle(const std::string& path) {
    const TextOwner real(realpath(path.c_str(), nullptr));
    if (!real) return false;
    if (is_running_application(path) || is_running_application(real.get())) return true;
    if (is_in_declared_folder(real.get())) return true;
    const std::vector<std::string>& folders = application_folders();
    return std::any_of(folders.begin(), folders.end(), [&](const std::string& folder) {
        return std::string_view(real.get()).starts_with(folder);
    });
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
