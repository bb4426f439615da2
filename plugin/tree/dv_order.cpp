#include "tree/dv_scan.h"

#include <string.h>

#include "tree/dv_state.h"

// Rows 2 and 3 put documents first; packages count as documents.
const dv_kind_t sort_orders[DV_SORT_ORDER_COUNT][DV_KIND_COUNT] = {
    {DV_KIND_FOLDER, DV_KIND_APPLICATION, DV_KIND_PACKAGE, DV_KIND_FILE},
    {DV_KIND_APPLICATION, DV_KIND_FOLDER, DV_KIND_PACKAGE, DV_KIND_FILE},
    {DV_KIND_PACKAGE, DV_KIND_FILE, DV_KIND_APPLICATION, DV_KIND_FOLDER},
    {DV_KIND_PACKAGE, DV_KIND_FILE, DV_KIND_FOLDER, DV_KIND_APPLICATION},
};

const dv_kind_t default_sort_order[DV_KIND_COUNT] = {DV_KIND_FOLDER, DV_KIND_APPLICATION,
                                                     DV_KIND_PACKAGE, DV_KIND_FILE};

const dv_kind_t* sort_order = default_sort_order;

namespace {

const UCCollateOptions name_order = kUCCollateComposeInsensitiveMask |
                                    kUCCollateWidthInsensitiveMask | kUCCollateCaseInsensitiveMask |
                                    kUCCollatePunctuationSignificantMask |
                                    kUCCollateDigitsOverrideMask | kUCCollateDigitsAsNumberMask;

enum { BLOCK = 8 };  // characters

void widen_block(const char* bytes, UniChar* text) {
    for (int i = 0; i < BLOCK; i++) text[i] = static_cast<UInt8>(bytes[i]);
}

// A name's bytes as characters with the same values. They are deliberately not decoded.
struct wide_name_t {
    UniChar text[sizeof(dirent::d_name)];
    UniCharCount length;

    // This runs twice per comparison, so it works in blocks of a fixed size. The last block
    // overlaps the one before it.
    explicit wide_name_t(const char* name) : length(strlen(name)) {
        if (length < BLOCK) {
            for (UniCharCount i = 0; i < length; i++) text[i] = static_cast<UInt8>(name[i]);
            return;
        }
        for (UniCharCount i = 0; i + BLOCK <= length; i += BLOCK) widen_block(name + i, text + i);
        widen_block(name + length - BLOCK, text + length - BLOCK);
    }
};

}  // namespace

int dv_sort(const struct dirent** a, const struct dirent** b) {
    const wide_name_t left((*a)->d_name);
    const wide_name_t right((*b)->d_name);
    SInt32 order = 0;
    const OSStatus status = UCCompareTextDefault(name_order, left.text, left.length, right.text,
                                                 right.length, nullptr, &order);
    return status == noErr ? order : 0;
}

void dv_set_sort_order(uint32_t row) { sort_order = sort_orders[row]; }

uint32_t dv_get_flags(const delvio_t* state) {
    uint32_t flags = 0;
    if (state->show_hidden_files == 1 || state->show_hidden_files == 3) flags |= DV_SCAN_DOT_FILES;
    if (state->show_hidden_files == 2 || state->show_hidden_files == 3) flags |= DV_SCAN_INVISIBLE;
    if (state->show_package_contents) flags |= DV_SCAN_PACKAGES;
    if (state->sort_order == 1) flags |= DV_SCAN_MIXED;
    return flags;
}
