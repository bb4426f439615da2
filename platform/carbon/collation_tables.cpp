#include "carbon/collation_tables.h"

#include <unicode/ucoleitr.h>

#include <assert.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <vector>

namespace collation {

namespace {

// As ICU gives them, before they become ranks.
struct Weight {
    uint32_t primary;
    uint32_t secondary;
};
using Weights = std::vector<Weight>;

struct CollatorClose {
    void operator()(UCollator* collator) const { ucol_close(collator); }
};
using Collator = std::unique_ptr<UCollator, CollatorClose>;

struct ElementsClose {
    void operator()(UCollationElements* elements) const { ucol_closeElements(elements); }
};

Collator open_collator(UColAttributeValue numeric) {
    UErrorCode error = U_ZERO_ERROR;
    Collator collator(ucol_open("", &error));
    if (U_FAILURE(error)) return nullptr;
    ucol_setAttribute(collator.get(), UCOL_STRENGTH, UCOL_SECONDARY, &error);
    ucol_setAttribute(collator.get(), UCOL_NUMERIC_COLLATION, numeric, &error);
    ucol_setAttribute(collator.get(), UCOL_ALTERNATE_HANDLING, UCOL_NON_IGNORABLE, &error);
    ucol_setAttribute(collator.get(), UCOL_NORMALIZATION_MODE, UCOL_ON, &error);
    return U_FAILURE(error) ? nullptr : std::move(collator);
}

// ICU hands out long weights in two halves, the second marked in its lowest byte.
bool is_second_half(int32_t order) { return (order & 0xC0) == 0xC0; }

Weights weights_of(const UCollator* collator, const UChar* text, int32_t length) {
    Weights result;
    UErrorCode error = U_ZERO_ERROR;
    const std::unique_ptr<UCollationElements, ElementsClose> elements(
        ucol_openElements(collator, text, length, &error));
    for (int32_t order;
         U_SUCCESS(error) && (order = ucol_next(elements.get(), &error)) != UCOL_NULLORDER;) {
        const auto primary = static_cast<uint32_t>(ucol_primaryOrder(order));
        const auto secondary = static_cast<uint32_t>(ucol_secondaryOrder(order));
        if (is_second_half(order) && !result.empty()) {
            result.back().primary |= primary;
            result.back().secondary |= secondary;
        } else if (primary || secondary) {
            result.push_back({primary << 16, secondary << 8});
        }
    }
    return result;
}

uint16_t rank_in(const std::vector<uint32_t>& sorted, uint32_t weight) {
    const auto found = std::lower_bound(sorted.begin(), sorted.end(), weight);
    return static_cast<uint16_t>(found - sorted.begin());
}

class Builder {
  public:
    explicit Builder(const UCollator* collator) {
        for (UChar unit = 0; unit < 256; unit++) all_.push_back(weights_of(collator, &unit, 1));
        const UChar contextual[] = {'l', MIDDLE_DOT};
        all_.push_back(weights_of(collator, contextual, 2));
        collect_ranks();
    }

    void fill(Tables* tables) {
        for (int unit = 0; unit < 256; unit++) fill_character(unit, tables);
        tables->contextual_first = next_;
        tables->contextual_count = append(all_[256], tables);
        tables->lowest_digit = element(all_[int{'0'}][0]).primary;
        tables->highest_digit = element(all_[int{'9'}][0]).primary;
    }

  private:
    void collect_ranks() {
        // Rank 0 is "no weight".
        primaries_ = {0};
        secondaries_ = {0};
        for (const Weights& weights : all_) {
            for (const Weight& weight : weights) {
                primaries_.push_back(weight.primary);
                secondaries_.push_back(weight.secondary);
            }
        }
        for (auto* ranks : {&primaries_, &secondaries_}) {
            std::sort(ranks->begin(), ranks->end());
            ranks->erase(std::unique(ranks->begin(), ranks->end()), ranks->end());
        }
    }

    Element element(const Weight& weight) const {
        return {rank_in(primaries_, weight.primary), rank_in(secondaries_, weight.secondary)};
    }

    void fill_character(int unit, Tables* tables) {
        const Weights& weights = all_[static_cast<size_t>(unit)];
        Character& character = tables->characters[unit];
        character = {PLAIN, 0, 0, {}};
        character.kind = kind_of(unit, weights);
        if (character.kind != SEQUENCE) {
            character.element = element(weights[0]);
            return;
        }
        character.first = next_;
        character.count = append(weights, tables);
    }

    Kind kind_of(int unit, const Weights& weights) const {
        if (weights.size() != 1 || !weights[0].primary) return SEQUENCE;
        if (unit >= '0' && unit <= '9') return DIGIT;
        if (unit == 'l' || unit == 'L') return CONTEXTUAL;
        const bool among_digits = weights[0].primary >= all_[int{'0'}][0].primary &&
                                  weights[0].primary <= all_[int{'9'}][0].primary;
        return among_digits ? SEQUENCE : PLAIN;
    }

    uint8_t append(const Weights& weights, Tables* tables) {
        assert(next_ + weights.size() <= std::size(tables->sequences));
        for (const Weight& weight : weights) tables->sequences[next_++] = element(weight);
        return static_cast<uint8_t>(weights.size());
    }

    std::vector<Weights> all_;
    std::vector<uint32_t> primaries_, secondaries_;
    uint16_t next_ = 0;
};

const Tables* build() {
    // With digits as digits: one weight a character.
    const Collator collator = open_collator(UCOL_OFF);
    if (!collator) return nullptr;
    auto* tables = new Tables;
    Builder(collator.get()).fill(tables);
    return tables;
}

}  // namespace

const UCollator* root_collator() {
    static const UCollator* collator = open_collator(UCOL_ON).release();
    return collator;
}

const Tables* tables() {
    static const Tables* tables = build();
    return tables;
}

}  // namespace collation
