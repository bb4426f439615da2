// Unicode text comparison.
#pragma once

#include <Carbon/MacTypes.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef UInt32 UCCollateOptions;
enum {
    kUCCollateComposeInsensitiveMask = 1 << 1,
    kUCCollateWidthInsensitiveMask = 1 << 2,
    kUCCollateCaseInsensitiveMask = 1 << 3,
    kUCCollatePunctuationSignificantMask = 1 << 15,
    kUCCollateDigitsOverrideMask = 1 << 16,
    kUCCollateDigitsAsNumberMask = 1 << 17
};

// Compares two texts of UTF-16 units in ICU's root order with the given options. *order is
// negative, 0 or positive; *equivalent tells whether it is 0. Either may be null. Any thread.
// Narrower than the Mac's: the only supported set of options is case-insensitive with digits as
// numbers and punctuation significant (0x3800E); any other answers paramErr. Answers
// kTECMissingTableErr when ICU's data is missing.
OSStatus UCCompareTextDefault(UCCollateOptions options, const UniChar* text1, UniCharCount length1,
                              const UniChar* text2, UniCharCount length2, Boolean* equivalent,
                              SInt32* order);

enum { kTECMissingTableErr = -8745 };

#ifdef __cplusplus
}
#endif
