// ICU's root order: case ignored, accents and punctuation significant.
#pragma once

#include <unicode/ucol.h>

#include <memory>

namespace collation {

struct CollatorClose {
    void operator()(UCollator* collator) const { ucol_close(collator); }
};
using Collator = std::unique_ptr<UCollator, CollatorClose>;

// Null when ICU has no data. `numeric` says whether digits compare as numbers.
Collator open_root_collator(UColAttributeValue numeric);

// The collator that compares digits as numbers. The first call opens it, which takes some
// milliseconds. Null when ICU has no data. Any thread.
const UCollator* root_collator();

}  // namespace collation
