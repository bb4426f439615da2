#include "wayland/layer/shared_picture.h"

#include <sys/mman.h>
#include <unistd.h>

wl_buffer* new_shared_picture(wl_shm* shm, int width, int height, const uint32_t* pixels) {
    const int stride = width * 4, size = stride * height;
    const int file = memfd_create("delvio-picture", MFD_CLOEXEC);
    if (file < 0) return nullptr;
    wl_buffer* buffer = nullptr;
    // A new file reads as zeros, which are transparent pixels.
    const bool filled =
        ftruncate(file, size) == 0 && (!pixels || write(file, pixels, size) == size);
    if (filled) {
        wl_shm_pool* pool = wl_shm_create_pool(shm, file, size);
        buffer = wl_shm_pool_create_buffer(pool, 0, width, height, stride, WL_SHM_FORMAT_ARGB8888);
        wl_shm_pool_destroy(pool);
    }
    close(file);
    return buffer;
}
