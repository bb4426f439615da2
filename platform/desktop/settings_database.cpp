#include "desktop/settings_database.h"

#include <host/glib_owners.h>
#include <glib.h>
#include <stdint.h>
#include <string.h>

#include <string_view>

#include "desktop/small_files.h"

namespace files {

namespace {

const size_t largest_database = 4 << 20;
const int deepest_key = 64;
const uint32_t no_item = UINT32_MAX;

// The layout of the file, in this machine's byte order: a header points to a table, which has a
// filter and buckets before its items.
struct Span {
    uint32_t start, end;
};
struct Header {
    char signature[8];
    uint32_t version, options;
    Span table;
};
struct TableHeader {
    uint32_t filter_words, buckets;
};
struct Item {
    uint32_t hash, parent, name_start;
    uint16_t name_size;
    char type, unused;
    Span value;
};

const uint32_t filter_mask = (1u << 27) - 1;
const char value_type = 'v';

class Database {
  public:
    explicit Database(const std::string& content) : content_(content) {
        Header header;
        if (!read(0, &header) || memcmp(header.signature, "GVariant", 8) != 0 ||
            header.version != 0) {
            return;
        }
        TableHeader table;
        if (!read(header.table.start, &table)) return;
        const uint64_t before_items =
            sizeof table + 4 * (uint64_t{table.filter_words & filter_mask} + table.buckets);
        const uint64_t size = uint64_t{header.table.end} - header.table.start;
        if (header.table.end < header.table.start || header.table.end > content.size() ||
            before_items > size) {
            return;
        }
        items_at_ = header.table.start + before_items;
        items_ = (size - before_items) / sizeof(Item);
    }

    // A key holds only the part of its name that follows its parent's name.
    std::string_view value(const std::string& key) const {
        for (uint64_t i = 0; i < items_; i++) {
            Item item;
            if (!read_item(i, &item) || item.type != value_type) continue;
            if (!is_named(item, key)) continue;
            return part(item.value.start, uint64_t{item.value.end} - item.value.start);
        }
        return {};
    }

  private:
    template <typename Record>
    bool read(uint64_t at, Record* record) const {
        if (at > content_.size() || content_.size() - at < sizeof *record) return false;
        memcpy(record, content_.data() + at, sizeof *record);
        return true;
    }
    bool read_item(uint64_t number, Item* item) const {
        return number < items_ && read(items_at_ + number * sizeof *item, item);
    }
    std::string_view part(uint64_t start, uint64_t size) const {
        if (start > content_.size() || size > content_.size() - start) return {};
        return std::string_view(content_).substr(start, size);
    }
    // Compares from the end of the name to its beginning.
    bool is_named(Item item, std::string_view name) const {
        for (int depth = 0; depth < deepest_key; depth++) {
            const std::string_view last = part(item.name_start, item.name_size);
            if (!name.ends_with(last)) return false;
            name.remove_suffix(last.size());
            if (item.parent == no_item) return name.empty();
            if (!read_item(item.parent, &item)) return false;
        }
        return false;
    }

    const std::string& content_;
    uint64_t items_at_ = 0, items_ = 0;
};

// GLib checks data that it is not told to trust.
std::string text_of(std::string_view value) {
    const TextOwner copy(static_cast<char*>(g_memdup2(value.data(), value.size())));
    const VariantOwner boxed(g_variant_ref_sink(g_variant_new_from_data(
        G_VARIANT_TYPE_VARIANT, copy.get(), value.size(), FALSE, nullptr, nullptr)));
    const VariantOwner variant(g_variant_get_variant(boxed.get()));
    switch (g_variant_classify(variant.get())) {
        case G_VARIANT_CLASS_STRING:
            return g_variant_get_string(variant.get(), nullptr);
        case G_VARIANT_CLASS_BOOLEAN:
        case G_VARIANT_CLASS_INT32:
        case G_VARIANT_CLASS_UINT32:
        case G_VARIANT_CLASS_DOUBLE:
            return taken_text(g_variant_print(variant.get(), FALSE));
        default:
            return {};
    }
}

}  // namespace

std::string text_in_settings_database(const std::string& file, const std::string& key) {
    std::string content;
    if (!read_small_file(file.c_str(), largest_database, &content)) return {};
    const std::string_view value = Database(content).value(key);
    return value.empty() ? std::string() : text_of(value);
}

}  // namespace files
