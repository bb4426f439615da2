#pragma once

#include <MacTypes.h>

extern "C" {

typedef UInt32 UCCollateOptions;
enum {
    kUCCollateComposeInsensitiveMask = 1L << 1,
    kUCCollateWidthInsensitiveMask = 1L << 2,
    kUCCollateCaseInsensitiveMask = 1L << 3,
    kUCCollateDiacritInsensitiveMask = 1L << 4,
    kUCCollatePunctuationSignificantMask = 1L << 15,
    kUCCollateDigitsOverrideMask = 1L << 16,
    kUCCollateDigitsAsNumberMask = 1L << 17
};

OSStatus UCCompareTextDefault(UCCollateOptions options, const UniChar* text1Ptr,
                              UniCharCount text1Length, const UniChar* text2Ptr,
                              UniCharCount text2Length, Boolean* equivalent, SInt32* order);
}
