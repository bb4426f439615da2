#include "carbon/entry_order.h"

#include <string.h>

#include <algorithm>
#include <bit>
#include <numeric>
#include <string>
#include <utility>

#include "collation/keys.h"
#include "collation/language_order.h"

namespace files {

namespace {

// An entry by its name's key. Most keys differ within their first bytes, which compare as numbers.
struct Keyed {
    uint64_t first, second;
    uint32_t rest, rest_size;  // of the key, among all rests
    uint32_t index;            // in the folder
};

uint64_t number_at(const uint8_t* bytes) {
    uint64_t number;
    memcpy(&number, bytes, sizeof number);
    return std::endian::native == std::endian::little ? __builtin_bswap64(number) : number;
}

class ByKey {
  public:
    ByKey(dirent* const* entries, size_t count) {
        keyed_.reserve(count);
        for (size_t i = 0; i < count; i++) add(entries[i]->d_name, static_cast<uint32_t>(i));
        std::sort(keyed_.begin(), keyed_.end(),
                  [this](const Keyed& a, const Keyed& b) { return is_less(a, b); });
    }

    std::vector<uint32_t> order() const {
        std::vector<uint32_t> order;
        order.reserve(keyed_.size());
        for (const Keyed& keyed : keyed_) order.push_back(keyed.index);
        return order;
    }

  private:
    void add(const char* name, uint32_t index) {
        uint8_t key[collation::longest_key + 2 * sizeof(uint64_t)];
        const size_t length = strnlen(name, collation::longest_name);
        uint8_t* end = collation::write_key(name, length, key);
        uint8_t* const rest = key + 2 * sizeof(uint64_t);
        if (end < rest) {
            memset(end, 0, static_cast<size_t>(rest - end));
            end = rest;
        }
        const auto size = static_cast<uint32_t>(end - rest);
        keyed_.push_back({number_at(key), number_at(key + sizeof(uint64_t)),
                          static_cast<uint32_t>(rests_.size()), size, index});
        rests_.insert(rests_.end(), rest, end);
    }

    bool is_less(const Keyed& a, const Keyed& b) const {
        if (a.first != b.first) return a.first < b.first;
        if (a.second != b.second) return a.second < b.second;
        const uint32_t shorter = std::min(a.rest_size, b.rest_size);
        const int order =
            shorter ? memcmp(rests_.data() + a.rest, rests_.data() + b.rest, shorter) : 0;
        if (order != 0) return order < 0;
        if (a.rest_size != b.rest_size) return a.rest_size < b.rest_size;
        return a.index < b.index;
    }

    std::vector<Keyed> keyed_;
    std::vector<uint8_t> rests_;
};

// So many entries ahead are fetched from memory.
constexpr size_t fetched_ahead = 8;

// What a comparison sees of two entries.
class Comparison {
  public:
    Comparison(dirent* const* entries, EntryComparison compare)
        : entries_(entries), compare_(compare) {}

    // The entries lie in memory in the folder's order, so most are far from their neighbours.
    void fetch(uint32_t entry) const { __builtin_prefetch(entries_[entry]); }

    int operator()(uint32_t a, uint32_t b) const {
        const dirent *first = entries_[a], *second = entries_[b];
        return compare_(&first, &second);
    }

  private:
    dirent* const* entries_;
    EntryComparison compare_;
};

// Whether `order` is that of a stable sort.
bool is_sorted(const std::vector<uint32_t>& order, const Comparison& compare) {
    for (size_t i = 1; i < order.size(); i++) {
        if (i + fetched_ahead < order.size()) compare.fetch(order[i + fetched_ahead]);
        const int result = compare(order[i - 1], order[i]);
        if (result > 0 || (result == 0 && order[i - 1] > order[i])) return false;
    }
    return true;
}

}  // namespace

std::vector<uint32_t> sort_entries_by_language(dirent** entries, size_t count) {
    const collation::LanguageOrder language(collation::language_of_names());
    std::vector<std::pair<std::string, uint32_t>> keyed;
    keyed.reserve(count);
    for (size_t i = 0; i < count; i++) {
        keyed.emplace_back(language.key(entries[i]->d_name), static_cast<uint32_t>(i));
    }
    std::sort(keyed.begin(), keyed.end());
    const std::vector<dirent*> given(entries, entries + count);
    std::vector<uint32_t> order;
    order.reserve(count);
    for (const auto& [key, index] : keyed) {
        entries[order.size()] = given[index];
        order.push_back(index);
    }
    return order;
}

std::vector<uint32_t> sort_entries(dirent** entries, size_t count, EntryComparison compare) {
    const std::vector<dirent*> given(entries, entries + count);
    const Comparison comparison(given.data(), compare);
    // The keys only guess what `compare` says. So `compare` checks all neighbours; if it
    // contradicts the keys anywhere, it sorts instead.
    std::vector<uint32_t> order = ByKey(entries, count).order();
    if (!is_sorted(order, comparison)) {
        std::iota(order.begin(), order.end(), 0U);
        std::stable_sort(order.begin(), order.end(),
                         [&](uint32_t a, uint32_t b) { return comparison(a, b) < 0; });
    }
    for (size_t i = 0; i < count; i++) entries[i] = given[order[i]];
    return order;
}

}  // namespace files
