#include "preview/dv_pictures.h"

#include <QuickLook/QuickLook.h>

#include "support/dv_log.h"
#include "tree/dv_state.h"

namespace {

void prepare_text_preview(delvio_t* state) {
    if (dvEnableDebugOutput) dvdprintf("Delvio: Falling back to old-skool text preview\n");
    if (state->preview_context && state->preview_context_size == state->preview_size) return;
    dv_create_preview_context(state);
}

CGImageRef create_text_picture(delvio_t* state, NSURL* url, dv_tree_t* elem) {
    prepare_text_preview(state);
    return elem ? dv_create_text_preview(state, elem)
                : dv_create_text_preview_from_path(state, [[url path] UTF8String]);
}

}  // namespace

CGImageRef dv_create_picture(delvio_t* state, NSURL* url, CGFloat side, dv_tree_t* elem) {
    CGImageRef image = url ? QLThumbnailImageCreate(kCFAllocatorDefault, (CFURLRef)url,
                                                    CGSizeMake(side, side), nullptr)
                           : nullptr;
    return image ? image : create_text_picture(state, url, elem);
}
