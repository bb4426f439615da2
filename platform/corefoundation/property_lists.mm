#include "corefoundation/property_lists.h"

#include "corefoundation/list_limits.h"

bool is_bounded_data(NSData* data) {
    return is_bounded_list({static_cast<const char*>([data bytes]), [data length]});
}

NSDictionary* read_dictionary(NSData* data) {
    if (!is_bounded_data(data)) return nil;
    id list = nil;
    @try {
        list = [NSPropertyListSerialization propertyListWithData:data
                                                         options:NSPropertyListImmutable
                                                          format:nullptr
                                                           error:nullptr];
    } @catch (NSException*) {
        return nil;
    }
    return [list isKindOfClass:[NSDictionary class]] ? list : nil;
}
