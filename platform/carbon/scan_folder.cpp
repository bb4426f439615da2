#include <dirent.h>
#include <errno.h>
#include <host/name_order.h>

#include <numeric>
#include <vector>

#include "carbon/attributes_ahead.h"
#include "carbon/entry_order.h"
#include "carbon/folder_listing.h"
#include "corefoundation/silent_disks.h"

namespace {

bool (*by_language)();

// The C library's own scandir.
extern "C" int scan_unsorted(const char* path, dirent*** list, int (*filter)(const dirent*),
                             files::EntryComparison compare) __asm__("scandir");

std::vector<uint32_t> sort(dirent** entries, size_t count, files::EntryComparison compare) {
    if (compare && by_language && by_language()) {
        return files::sort_entries_by_language(entries, count);
    }
    if (compare) return files::sort_entries(entries, count, compare);
    std::vector<uint32_t> unchanged(count);
    std::iota(unchanged.begin(), unchanged.end(), 0U);
    return unchanged;
}

}  // namespace

void order_names_by_language(bool (*question)()) { by_language = question; }

int scandir(const char* path, dirent*** list, int (*filter)(const dirent*),
            int (*compare)(const dirent**, const dirent**)) {
    if (files::is_silent_folder(path)) {
        errno = ETIMEDOUT;
        return -1;
    }
    files::FolderListing listing(path);
    const int found = scan_unsorted(path, list, filter, nullptr);
    if (found <= 0) return found;
    const auto count = static_cast<size_t>(found);
    // A disk that begins here may not answer, so its entry is asked about by itself.
    const bool is_kept = listing.is_wanted() && !files::has_disks_within(path);
    files::AttributesAhead attributes(path, *list, is_kept ? count : 0);
    const std::vector<uint32_t> before = sort(*list, count, compare);
    if (is_kept) listing.keep(*list, before, &attributes);
    return found;
}
