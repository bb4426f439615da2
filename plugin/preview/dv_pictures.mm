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

}  // namespace

CGImageRef dv_create_thumbnail(NSURL* url, CGSize size) {
    return url ? QLThumbnailImageCreate(kCFAllocatorDefault, (CFURLRef)url, size, nullptr)
               : nullptr;
}

CGImageRef dv_create_text_picture(delvio_t* state, const char* path) {
    prepare_text_preview(state);
    return dv_create_text_preview_from_path(state, path);
}

CGImageRef dv_create_text_picture(delvio_t* state, dv_tree_t* elem) {
    prepare_text_preview(state);
    return dv_create_text_preview(state, elem);
}
