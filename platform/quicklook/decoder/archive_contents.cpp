#include "quicklook/decoder/archive_contents.h"

#include <archive.h>
#include <archive_entry.h>
#include <errno.h>
#include <locale.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <string_view>

#include "quicklook/reply.h"

namespace thumbnails {

namespace {

const size_t most_entries = 20000, most_depth = 32, longest_path = 4096;
// In seconds of the processor's time, as a slow disk is not the archive's fault.
const double patience = 1.5;

bool is_too_slow() { return clock() > static_cast<clock_t>(patience * CLOCKS_PER_SEC); }

// Reads the file for libarchive, until the time is up: a small file may hold very much.
struct Input {
    std::array<char, 64 * 1024> buffer;
};

la_ssize_t read_block(archive* archive, void* data, const void** block) {
    auto* input = static_cast<Input*>(data);
    *block = input->buffer.data();
    if (is_too_slow()) {
        archive_set_error(archive, ETIME, "too slow");
        return ARCHIVE_FATAL;
    }
    ssize_t count;
    do {
        count = read(file_descriptor, input->buffer.data(), input->buffer.size());
    } while (count < 0 && errno == EINTR);
    return count;
}

la_int64_t seek_in_file(archive*, void*, la_int64_t offset, int from) {
    const off_t place = lseek(file_descriptor, offset, from);
    return place < 0 ? ARCHIVE_FATAL : place;
}

la_int64_t skip_in_file(archive*, void*, la_int64_t count) {
    const off_t before = lseek(file_descriptor, 0, SEEK_CUR),
                end = lseek(file_descriptor, 0, SEEK_END);
    const off_t after = lseek(file_descriptor, std::min<off_t>(before + count, end), SEEK_SET);
    return before < 0 || after < 0 ? 0 : after - before;
}

// Formats and filters that need no other program and no file besides.
archive* open_archive(Input* input) {
    archive* reader = archive_read_new();
    for (const auto support :
         {archive_read_support_filter_gzip, archive_read_support_filter_bzip2,
          archive_read_support_filter_xz, archive_read_support_filter_lzma,
          archive_read_support_filter_zstd, archive_read_support_filter_lz4,
          archive_read_support_filter_compress, archive_read_support_filter_rpm,
          archive_read_support_format_tar, archive_read_support_format_zip,
          archive_read_support_format_7zip, archive_read_support_format_rar,
          archive_read_support_format_rar5, archive_read_support_format_cpio,
          archive_read_support_format_ar, archive_read_support_format_iso9660,
          archive_read_support_format_cab, archive_read_support_format_lha}) {
        support(reader);
    }
    archive_read_set_read_callback(reader, read_block);
    archive_read_set_seek_callback(reader, seek_in_file);
    archive_read_set_skip_callback(reader, skip_in_file);
    archive_read_set_callback_data(reader, input);
    return archive_read_open1(reader) == ARCHIVE_OK ? reader : nullptr;
}

void add(ArchiveFolder& root, std::string_view path, bool is_folder, int64_t size) {
    ArchiveFolder* folder = &root;
    for (size_t depth = 0; depth < most_depth && !path.empty(); depth++) {
        const size_t slash = std::min(path.find('/'), path.size());
        const std::string_view name = path.substr(0, slash);
        path.remove_prefix(std::min(slash + 1, path.size()));
        if (name.empty() || name == ".") continue;
        ArchiveEntry& entry = folder->entries[std::string(name)];
        if (path.empty() && !is_folder) {
            if (!entry.folder) entry.size = size;
            return;
        }
        if (!entry.folder) entry.folder = std::make_unique<ArchiveFolder>();
        folder = entry.folder.get();
    }
}

void add(ArchiveFolder& root, archive_entry* entry) {
    const char* text = archive_entry_pathname_utf8(entry);
    if (!text) text = archive_entry_pathname(entry);
    const std::string_view path = text ? text : "";
    if (path.empty() || path.size() > longest_path) return;
    const bool is_folder = archive_entry_filetype(entry) == AE_IFDIR || path.ends_with('/');
    add(root, path, is_folder, archive_entry_size_is_set(entry) ? archive_entry_size(entry) : -1);
}

}  // namespace

ArchiveContents read_archive() {
    // libarchive gives no names that the locale cannot hold.
    setlocale(LC_CTYPE, "C.UTF-8");
    ArchiveContents contents;
    Input input;
    archive* reader = open_archive(&input);
    if (!reader) return contents;
    int state = ARCHIVE_OK;
    while (contents.entries < most_entries && !is_too_slow()) {
        archive_entry* entry = nullptr;
        state = archive_read_next_header(reader, &entry);
        if (state == ARCHIVE_EOF || state == ARCHIVE_FATAL) break;
        if (state == ARCHIVE_RETRY) continue;
        add(contents.root, entry);
        contents.entries++;
    }
    contents.is_whole = state == ARCHIVE_EOF;
    // The reader is left to the end of the process.
    return contents;
}

}  // namespace thumbnails
