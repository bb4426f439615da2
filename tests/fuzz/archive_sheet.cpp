// An archive's list, as the decoder of archives draws it. The input is an archive, or a list of
// names that one is made of.
#define main archive_decoder
#include "quicklook/decoder/archive_decoder.cpp"
#undef main

#include <archive.h>

#include "drawn_sheet.h"

using fuzz::require;

namespace {

archive* opened;

// An archive of empty files and of folders, in the format "newc" of cpio, which has no sums.
std::string archive_of(fuzz::Input* input, size_t* members) {
    std::string bytes;
    const auto add = [&bytes](const std::string& name, unsigned mode) {
        char head[111];
        snprintf(head, sizeof head, "070701%08x%08x%08x%08x%08x%08x%08x%08x%08x%08x%08x%08x%08x", 1,
                 mode, 0, 0, 1, 0, 0, 0, 0, 0, 0, static_cast<unsigned>(name.size() + 1), 0);
        bytes += head + name + '\0';
        bytes.resize((bytes.size() + 3) / 4 * 4);
    };
    while (input->left() > 0) {
        const bool is_folder = input->byte() % 2;
        const std::string name = input->word();
        if (name.empty() || name == "TRAILER!!!") continue;
        add(name, is_folder ? 040755 : 0100644);
        ++*members;
    }
    add("TRAILER!!!", 0);
    return bytes;
}

void expect_names(const ArchiveFolder& folder, int depth) {
    require(depth <= 32, "no deeper than the limit");
    for (const auto& [name, entry] : folder.entries) {
        require(!name.empty() && name != "." && name.find('/') == name.npos, "a single name");
        if (entry.folder) expect_names(*entry.folder, depth + 1);
    }
}

// The decoder leaves its reader to the end of the process.
void close_reader() {
    if (opened) archive_read_free(opened);
    opened = nullptr;
}

}  // namespace

extern "C" {
archive* __real_archive_read_new();
archive* __wrap_archive_read_new() { return opened = __real_archive_read_new(); }
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Input input(data, size);
    const bool has_names = input.byte() % 2;
    DecoderCall call = fuzz::call_of(&input, "a.zip");
    call.size_words =
        "%s bytes\n%s byte\n%s bytes\n%s bytes\n%s bytes\n%s bytes\n%s KB\n%s MB\n%s GB\n%s "
        "TB\n1.5";
    size_t members = 0;
    const std::string file = has_names ? archive_of(&input, &members) : input.rest();
    fuzz::expect_answer(file, call, decode);
    close_reader();

    fuzz::refill(file_descriptor, file);
    const ArchiveContents contents = read_archive();
    close_reader();
    expect_names(contents.root, 0);
    require(contents.entries <= 20000, "no more than the limit");
    if (has_names && contents.is_whole) require(contents.entries == members, "every name");
    return 0;
}
