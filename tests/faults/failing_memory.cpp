// Memory that our own code gets, or does not. A sanitized program gets its memory from the
// sanitizer, so this part is missing there.
#include <dlfcn.h>
#include <errno.h>
#include <link.h>
#include <pthread.h>
#include <stddef.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>
#include <unwind.h>

#include <atomic>
#include <iterator>
#include <new>

#include "faults/failing.h"

extern "C" {
void* __libc_malloc(size_t);
void* __libc_calloc(size_t, size_t);
void* __libc_realloc(void*, size_t);
}

using namespace faults;

namespace {

// The modules of the process, with their code. A module that is loaded later is found when it
// first calls.
struct Module {
    uintptr_t begin, end;
    bool is_ours, is_cxx_library;
};
Module modules[1024];
std::atomic<int> module_count;

// The program itself has no name here.
bool names_ours(const char* name) { return *name == 0 || strstr(name, "elvio"); }

int add_module(dl_phdr_info* info, size_t, void*) {
    for (int i = 0; i < info->dlpi_phnum; i++) {
        const auto& part = info->dlpi_phdr[i];
        if (part.p_type != PT_LOAD || !(part.p_flags & PF_X)) continue;
        const uintptr_t begin = info->dlpi_addr + part.p_vaddr;
        const int at = module_count;
        if (at >= static_cast<int>(std::size(modules))) return 1;
        const char* const slash = strrchr(info->dlpi_name, '/');
        const char* const name = slash ? slash + 1 : info->dlpi_name;
        modules[at] = {begin, begin + part.p_memsz, names_ours(name), !!strstr(name, "libstdc++")};
        module_count = at + 1;
    }
    return 0;
}

const Module* module_of(const void* address) {
    const auto place = reinterpret_cast<uintptr_t>(address);
    for (int i = 0, count = module_count; i < count; i++) {
        if (place >= modules[i].begin && place < modules[i].end) return &modules[i];
    }
    return nullptr;
}

const Module* known_module_of(const void* caller) {
    if (!module_of(caller)) {
        static pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;
        pthread_mutex_lock(&lock);
        module_count = 0;
        dl_iterate_phdr(add_module, nullptr);
        pthread_mutex_unlock(&lock);
    }
    return module_of(caller);
}

bool is_ours(const void* caller) {
    const Module* const module = known_module_of(caller);
    return module && module->is_ours;
}

// The first caller below the C++ library and this one.
_Unwind_Reason_Code note_user(_Unwind_Context* frame, void* user) {
    auto* const found = static_cast<const void**>(user);
    const auto* const place = reinterpret_cast<const void*>(_Unwind_GetIP(frame));
    const Module* const module = known_module_of(place);
    const bool is_passed =
        module &&
        (module->is_cxx_library || module == module_of(reinterpret_cast<const void*>(&note_user)));
    if (is_passed) return _URC_NO_REASON;
    *found = place;
    return _URC_END_OF_STACK;
}

// Who wants an object: our own code asks for many through the C++ library, such as long texts.
const void* user_of_object(const void* caller) {
    const Module* const module = known_module_of(caller);
    if (!module || !module->is_cxx_library) return caller;
    const void* user = caller;
    _Unwind_Backtrace(note_user, &user);
    return user;
}

}  // namespace

EXPORT void* malloc(size_t size) {
    if (control && is_ours(CALLER) && fails(memory, ENOMEM, "malloc", CALLER)) return nullptr;
    return __libc_malloc(size);
}

EXPORT void* calloc(size_t count, size_t size) {
    if (control && is_ours(CALLER) && fails(memory, ENOMEM, "calloc", CALLER)) return nullptr;
    return __libc_calloc(count, size);
}

EXPORT void* realloc(void* block, size_t size) {
    if (control && is_ours(CALLER) && fails(memory, ENOMEM, "realloc", CALLER)) return nullptr;
    return __libc_realloc(block, size);
}

namespace {

// Null when the call fails.
void* make_object(size_t size, size_t alignment, const void* caller) {
    const size_t most = size > 0 ? size : 1;
    if (control && !is_counting) {
        is_counting = true;
        const void* const user = user_of_object(caller);
        const bool counts = is_ours(user);
        is_counting = false;
        if (counts && fails(objects, ENOMEM, "new", user)) return nullptr;
    }
    if (alignment <= alignof(max_align_t)) return __libc_malloc(most);
    void* object = nullptr;
    return posix_memalign(&object, alignment, most) == 0 ? object : nullptr;
}

// As the C++ library does it: the program's own handler may find memory, or throw.
void* make_or_throw(size_t size, size_t alignment, const void* caller) {
    for (;;) {
        if (void* const object = make_object(size, alignment, caller)) return object;
        const std::new_handler handler = std::get_new_handler();
        if (!handler) throw std::bad_alloc();
        handler();
    }
}

}  // namespace

#define NEW __attribute__((visibility("default"))) void* operator new

NEW(size_t size) { return make_or_throw(size, 0, CALLER); }
NEW[](size_t size) { return make_or_throw(size, 0, CALLER); }
NEW(size_t size, const std::nothrow_t&) noexcept { return make_object(size, 0, CALLER); }
NEW[](size_t size, const std::nothrow_t&) noexcept { return make_object(size, 0, CALLER); }
NEW(size_t size, std::align_val_t alignment) {
    return make_or_throw(size, static_cast<size_t>(alignment), CALLER);
}

EXPORT char* strdup(const char* text) {
    if (control && is_ours(CALLER) && fails(memory, ENOMEM, "strdup", CALLER)) return nullptr;
    const size_t size = strlen(text) + 1;
    void* const copy = __libc_malloc(size);
    return static_cast<char*>(copy ? memcpy(copy, text, size) : nullptr);
}
