// Where an image's bytes come from. Any thread, as far as a provider's callbacks allow: those are
// its maker's.
#pragma once

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct CGDataProvider* CGDataProviderRef;

typedef size_t (*CGDataProviderGetBytesCallback)(void* info, void* buffer, size_t count);
typedef void (*CGDataProviderSkipBytesCallback)(void* info, size_t count);
typedef void (*CGDataProviderRewindCallback)(void* info);
typedef void (*CGDataProviderReleaseInfoCallback)(void* info);

typedef struct CGDataProviderCallbacks {
    CGDataProviderGetBytesCallback getBytes;
    CGDataProviderSkipBytesCallback skipBytes;
    CGDataProviderRewindCallback rewind;
    CGDataProviderReleaseInfoCallback releaseProvider;
} CGDataProviderCallbacks;

typedef const void* (*CGDataProviderGetBytePointerCallback)(void* info);
typedef void (*CGDataProviderReleaseBytePointerCallback)(void* info, const void* pointer);
typedef size_t (*CGDataProviderGetBytesAtOffsetCallback)(void* info, void* buffer, size_t offset,
                                                         size_t count);

// A provider has either the two byte-pointer callbacks or getBytes.
typedef struct CGDataProviderDirectAccessCallbacks {
    CGDataProviderGetBytePointerCallback getBytePointer;
    CGDataProviderReleaseBytePointerCallback releaseBytePointer;
    CGDataProviderGetBytesAtOffsetCallback getBytes;
    CGDataProviderReleaseInfoCallback releaseProvider;
} CGDataProviderDirectAccessCallbacks;

typedef void (*CGDataProviderReleaseDataCallback)(void* info, const void* data, size_t size);

// Reads in sequence; each reading of the whole rewinds first. The callbacks are copied. Null when
// `callbacks` is null.
CGDataProviderRef CGDataProviderCreate(void* info, const CGDataProviderCallbacks* callbacks);
// Reads `size` bytes in place. Each use asks the callbacks for the bytes again.
CGDataProviderRef CGDataProviderCreateDirectAccess(
    void* info, size_t size, const CGDataProviderDirectAccessCallbacks* callbacks);
// Reads memory that must stay until `releaseData`, which may be null, is called with it.
CGDataProviderRef CGDataProviderCreateWithData(void* info, const void* data, size_t size,
                                               CGDataProviderReleaseDataCallback releaseData);
CGDataProviderRef CGDataProviderRetain(CGDataProviderRef provider);
// The last release calls the release callback. Null is ignored.
void CGDataProviderRelease(CGDataProviderRef provider);

#ifdef __cplusplus
}
#endif
