#include "popup/fonts_ahead.h"

#include <fontconfig/fontconfig.h>

namespace {

void* read_fonts(void*) {
    FcInit();
    return nullptr;
}

}  // namespace

FontsAhead::FontsAhead()
    : has_thread_(pthread_create(&thread_, nullptr, read_fonts, nullptr) == 0) {}

FontsAhead::~FontsAhead() {
    if (has_thread_) pthread_join(thread_, nullptr);
}
