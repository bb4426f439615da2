#include "corefoundation/property_lists.h"

NSDictionary* read_dictionary(NSData* data) {
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
