#pragma once

#include <CoreGraphics/CGBase.h>

extern "C" {

typedef struct CGDataProvider* CGDataProviderRef;

typedef size_t (*CGDataProviderGetBytesCallback)(void* info, void* buffer, size_t count);
typedef void (*CGDataProviderSkipBytesCallback)(void* info, size_t count);
typedef void (*CGDataProviderRewindCallback)(void* info);
typedef void (*CGDataProviderReleaseInfoCallback)(void* info);
typedef const void* (*CGDataProviderGetBytePointerCallback)(void* info);
typedef void (*CGDataProviderReleaseBytePointerCallback)(void* info, const void* pointer);
typedef size_t (*CGDataProviderGetBytesAtOffsetCallback)(void* info, void* buffer, size_t offset,
                                                         size_t count);

struct CGDataProviderCallbacks {
    CGDataProviderGetBytesCallback getBytes;
    CGDataProviderSkipBytesCallback skipBytes;
    CGDataProviderRewindCallback rewind;
    CGDataProviderReleaseInfoCallback releaseProvider;
};
typedef struct CGDataProviderCallbacks CGDataProviderCallbacks;

struct CGDataProviderDirectAccessCallbacks {
    CGDataProviderGetBytePointerCallback getBytePointer;
    CGDataProviderReleaseBytePointerCallback releaseBytePointer;
    CGDataProviderGetBytesAtOffsetCallback getBytes;
    CGDataProviderReleaseInfoCallback releaseProvider;
};
typedef struct CGDataProviderDirectAccessCallbacks CGDataProviderDirectAccessCallbacks;

CGDataProviderRef CGDataProviderCreate(void* info, const CGDataProviderCallbacks* callbacks);
CGDataProviderRef CGDataProviderCreateDirectAccess(
    void* info, size_t size, const CGDataProviderDirectAccessCallbacks* callbacks);
void CGDataProviderRelease(CGDataProviderRef provider);
}
