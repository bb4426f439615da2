#include "gworkspace/local_symbols.h"

#include <elf.h>
#include <link.h>
#include <string.h>

#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

namespace {

struct Library {
    std::string_view ending;
    std::string path;
    ElfW(Addr) base = 0;
};

int look_at(dl_phdr_info* info, size_t, void* data) {
    auto* wanted = static_cast<Library*>(data);
    if (!std::string_view(info->dlpi_name).ends_with(wanted->ending)) return 0;
    wanted->path = info->dlpi_name;
    wanted->base = info->dlpi_addr;
    return 1;
}

std::vector<char> content_of(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// The symbol's value in the file's table, or 0.
ElfW(Addr) value_of(const std::vector<char>& file, std::string_view name) {
    if (file.size() < sizeof(ElfW(Ehdr))) return 0;
    const auto* header = reinterpret_cast<const ElfW(Ehdr)*>(file.data());
    const auto* sections = reinterpret_cast<const ElfW(Shdr)*>(file.data() + header->e_shoff);
    for (int i = 0; i < header->e_shnum; i++) {
        if (sections[i].sh_type != SHT_SYMTAB) continue;
        const char* names = file.data() + sections[sections[i].sh_link].sh_offset;
        const auto* symbols =
            reinterpret_cast<const ElfW(Sym)*>(file.data() + sections[i].sh_offset);
        for (size_t s = 0; s < sections[i].sh_size / sizeof *symbols; s++) {
            if (names + symbols[s].st_name == name) return symbols[s].st_value;
        }
    }
    return 0;
}

}  // namespace

const void* find_local_symbol(const char* library, const char* name) {
    Library wanted{library, {}, 0};
    dl_iterate_phdr(look_at, &wanted);
    const ElfW(Addr) value = wanted.path.empty() ? 0 : value_of(content_of(wanted.path), name);
    return value ? reinterpret_cast<const void*>(wanted.base + value) : nullptr;
}
