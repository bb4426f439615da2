// The check of property lists before the toolkit's parser sees them.
#include "corefoundation/list_limits.h"

#include <string>

#include "require.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // A copy of its own, so that a read beyond the end is seen.
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    is_bounded_text_list(bytes);
    is_bounded_xml_list(bytes);
    is_bounded_binary_list(bytes);
    is_bounded_list(bytes);
    if (bytes.starts_with('(')) {
        fuzz::require(!is_bounded_list(std::string(deepest_list + 1, '(') + bytes),
                      "a list that nests too deep is refused");
    }
    return 0;
}
