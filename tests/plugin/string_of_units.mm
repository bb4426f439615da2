#include <Foundation/Foundation.h>

#include "plugin/file_manager.h"

CFStringRef test::string_of_units(const std::u16string& units) {
    return (CFStringRef)
        [[NSString alloc] initWithCharacters:reinterpret_cast<const unichar*>(units.data())
                                      length:units.size()];
}
