#include "carbon/entries_of_files.h"

#include "carbon/file_references.h"

namespace files {

const DesktopEntry& desktop_entry(const File& file) {
    static DesktopEntry& entry = *new DesktopEntry;
    static uint64_t generation = 0;
    static int64_t seen_at = 0;
    if (file.generation == generation && file.seen_at == seen_at) return entry;
    entry = desktop_entry_at(file.path);
    generation = file.generation;
    seen_at = file.seen_at;
    return entry;
}

}  // namespace files
