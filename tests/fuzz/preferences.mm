// The settings' domain with values of every type, or any bytes in place of its file, as the plug-in
// reads it before each menu.
#import <Foundation/Foundation.h>

#include <fcntl.h>
#include <sys/stat.h>

#include "input.h"
#include "no_folders.h"
#include "require.h"
#include "scratch.h"
#include "support/dv_log.h"
#include "tree/dv_prefs.h"
#include "tree/dv_roots.h"
#include "tree/dv_state.h"

using fuzz::Input;
using fuzz::require;

namespace {

NSString* const keys[] = {@"folders",
                          @"open_with_path",
                          @"logLevel",
                          @"sort_order",
                          @"intra_sort_order",
                          @"rootMenuCollapseThreshold",
                          @"preview_size",
                          @"font_size",
                          @"placement",
                          @"delvio_is_on",
                          @"control_free_delay_usec",
                          @"somebody_elses"};

NSString* string_of(const std::string& bytes) {
    NSString* text = [NSString stringWithUTF8String:bytes.c_str()];
    return text ? text : [NSString stringWithFormat:@"%lu", (unsigned long)bytes.size()];
}

id value_from(Input& input, int depth) {
    switch (input.byte() % 9) {
        case 0:
            return @(input.number<int64_t>());
        case 1:
            return @(input.number<int32_t>());
        case 2:
            return @(input.number<double>());
        case 3:
            return [NSNumber numberWithBool:input.byte() & 1];
        case 4:
            return [NSDate dateWithTimeIntervalSince1970:input.number<int32_t>()];
        case 5: {
            const std::string bytes = input.word();
            return [NSData dataWithBytes:bytes.data() length:bytes.size()];
        }
        case 6: {
            NSMutableArray* list = [NSMutableArray array];
            for (int left = depth ? input.byte() % 8 : 0; left > 0; left--) {
                [list addObject:value_from(input, depth - 1)];
            }
            return list;
        }
        case 7: {
            NSMutableDictionary* dictionary = [NSMutableDictionary dictionary];
            for (int left = depth ? input.byte() % 4 : 0; left > 0; left--) {
                NSString* key = string_of(input.word());
                [dictionary setObject:value_from(input, depth - 1) forKey:key];
            }
            return dictionary;
        }
        default:
            return string_of(input.word());
    }
}

NSData* domain_from(Input& input) {
    NSMutableDictionary* domain = [NSMutableDictionary dictionary];
    // GNUstep itself cannot write every number in binary.
    const NSPropertyListFormat format =
        input.byte() & 1 ? NSPropertyListXMLFormat_v1_0 : NSPropertyListOpenStepFormat;
    while (input.left() > 0) {
        NSString* key = keys[input.byte() % std::size(keys)];
        [domain setObject:value_from(input, 3) forKey:key];
    }
    return [NSPropertyListSerialization dataWithPropertyList:domain
                                                      format:format
                                                     options:0
                                                       error:nullptr];
}

// Each with a time of its own, by which a change is seen.
void write_domain(const std::string& bytes) {
    static const std::string& path = *[] {
        const std::string folder = [GSDefaultsRootForUser(NSUserName()) fileSystemRepresentation];
        mkdir(folder.c_str(), 0755);
        return new std::string(folder + "/" DV_PREFS_DOMAIN ".plist");
    }();
    static time_t now = 1000000000;
    fuzz::write_file(path, bytes);
    now++;
    const timespec times[2] = {{now, 0}, {now, 0}};
    require(utimensat(AT_FDCWD, path.c_str(), times, 0) == 0, "no time");
}

delvio_t& state() {
    static delvio_t& only = *[] {
        auto* made = new delvio_t{};
        made->path_buffer = new char[DV_PATH_BUFFER_SIZE];
        return made;
    }();
    return only;
}

void read_and_build(bool write_back) {
    dv_read_prefs(&state(), write_back);
    dvEnableDebugOutput = 0;  // a line for each would only take time
    require(state().rootMenuCollapseThreshold >= 1, "a threshold");
    require(state().intra_sort_order < DV_SORT_ORDER_COUNT, "an order");
    const uint32_t made = alloc_count - free_count;
    dv_tree_t *current = nullptr, *tail = nullptr, *head = nullptr;
    dv_add_user_directories(&state(), &current, &tail, &head, 0, 0);
    dv_update_ptrs(dv_build_open_with_tree(&state()), &tail, &head);
    dv_free_tree(head);
    require(alloc_count - free_count == made, "every element is freed");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    const uint8_t kind = input.byte();
    @autoreleasepool {
        const bool is_raw = kind & 1;
        NSData* domain = is_raw ? nil : domain_from(input);
        write_domain(is_raw ? input.rest()
                            : std::string((const char*)[domain bytes], [domain length]));
        read_and_build(false);
        if (!(kind & 2)) return 0;
        // By their text, as a number may be none and then equals nothing.
        const auto folders = [] {
            const char* text = [[(NSObject*)state().folders description] UTF8String];
            return std::string(text ? text : "");
        };
        const std::string before = folders();
        read_and_build(true);
        read_and_build(false);
        require(before == folders(), "what is written back leaves the other keys");
    }
    return 0;
}
