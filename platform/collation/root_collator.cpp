#include "collation/root_collator.h"

#include <utility>

namespace collation {

Collator open_root_collator(UColAttributeValue numeric) {
    UErrorCode error = U_ZERO_ERROR;
    Collator collator(ucol_open("", &error));
    if (U_FAILURE(error)) return nullptr;
    ucol_setAttribute(collator.get(), UCOL_STRENGTH, UCOL_SECONDARY, &error);
    ucol_setAttribute(collator.get(), UCOL_NUMERIC_COLLATION, numeric, &error);
    ucol_setAttribute(collator.get(), UCOL_ALTERNATE_HANDLING, UCOL_NON_IGNORABLE, &error);
    ucol_setAttribute(collator.get(), UCOL_NORMALIZATION_MODE, UCOL_ON, &error);
    return U_FAILURE(error) ? nullptr : std::move(collator);
}

const UCollator* root_collator() {
    static const UCollator* collator = open_root_collator(UCOL_ON).release();
    return collator;
}

}  // namespace collation
