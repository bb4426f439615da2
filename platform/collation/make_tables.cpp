// Asks ICU for the sort weights of the characters U+0000 to U+00FF and writes them as C++ source to
// the file that its argument names, when the platform is built: asking takes some milliseconds.
#include <stdio.h>
#include <unicode/ucoleitr.h>

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <vector>

#include "collation/tables.h"
#include "collation/root_collator.h"

namespace {

using namespace collation;

// Weights as ICU gives them, before they become ranks.
struct Weight {
    uint32_t primary;
    uint32_t secondary;
};
using Weights = std::vector<Weight>;

struct ElementsClose {
    void operator()(UCollationElements* elements) const { ucol_closeElements(elements); }
};

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

uint8_t rank_in(const std::vector<uint32_t>& sorted, uint32_t weight) {
    const auto found = std::lower_bound(sorted.begin(), sorted.end(), weight);
    return static_cast<uint8_t>(found - sorted.begin());
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
        fill_simple(tables);
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
            if (ranks->size() > 256) throw std::length_error("more ranks than a byte has room for");
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

    void fill_simple(Tables* tables) const {
        tables->usual_secondary = tables->characters[int{'a'}].element.secondary;
        for (int unit = 0; unit < 256; unit++) {
            const Character& character = tables->characters[unit];
            const bool is_one = character.kind == PLAIN || character.kind == CONTEXTUAL;
            const bool is_usual = character.element.secondary == tables->usual_secondary;
            tables->simple[unit] = is_one && is_usual ? character.element.primary : 0;
        }
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
        if (weights.size() > longest_sequence) {
            throw std::length_error("a character stands for more elements than a key has room for");
        }
        if (next_ + weights.size() > std::size(tables->sequences)) {
            throw std::length_error("more elements than the table has room for");
        }
        for (const Weight& weight : weights) tables->sequences[next_++] = element(weight);
        return static_cast<uint8_t>(weights.size());
    }

    std::vector<Weights> all_;
    std::vector<uint32_t> primaries_, secondaries_;
    uint16_t next_ = 0;
};

void print(const Element& element) { printf("{%d,%d}", element.primary, element.secondary); }

void print(uint8_t number) { printf("%d", number); }

void print(const Character& character) {
    printf("{static_cast<Kind>(%d),%d,%d,", character.kind, character.count, character.first);
    print(character.element);
    printf("}");
}

template <size_t count, class Item>
void print(const Item (&items)[count]) {
    printf("{");
    for (const Item& item : items) {
        print(item);
        printf(",\n");
    }
    printf("},\n");
}

void print(const Tables& tables) {
    printf("#include \"collation/tables.h\"\n\n");
    printf("const collation::Tables collation::tables = {\n");
    print(tables.characters);
    print(tables.simple);
    printf("%d,\n", tables.usual_secondary);
    print(tables.sequences);
    printf("%d, %d, %d, %d};\n", tables.contextual_first, tables.contextual_count,
           tables.lowest_digit, tables.highest_digit);
}

}  // namespace

int main(int, char** arguments) {
    if (!freopen(arguments[1], "w", stdout)) throw std::runtime_error("cannot write the file");
    // Digits are compared as digits here, so that each character has one weight.
    const Collator collator = open_root_collator(UCOL_OFF);
    if (!collator) throw std::runtime_error("ICU has no data");
    Tables tables = {};
    Builder(collator.get()).fill(&tables);
    print(tables);
}
