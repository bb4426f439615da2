#include "quicklook/size_words.h"

#include <host/text.h>

namespace thumbnails {

std::string size_words() {
    std::string words;
    for (const unsigned long count : {0, 1, 2, 3, 11, 100}) {
        words += std::string(translated_count("%s byte", "%s bytes", count)) + "\n";
    }
    for (const char* unit : {to_translate("%s KB"), to_translate("%s MB"), to_translate("%s GB"),
                             to_translate("%s TB")}) {
        words += std::string(translated(unit)) + "\n";
    }
    // Translators: how this number is written. What is between 1 and 5 is the decimal mark.
    return words + translated("1.5");
}

}  // namespace thumbnails
