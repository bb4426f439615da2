#include <Carbon/UnicodeUtilities.h>

#include <string.h>

#include <algorithm>
#include <bit>

#include "collation/tables.h"
#include "collation/root_collator.h"

namespace {

using collation::Character;
using collation::Element;
using collation::Tables;

const UCCollateOptions served_options =
    kUCCollateComposeInsensitiveMask | kUCCollateWidthInsensitiveMask |
    kUCCollateCaseInsensitiveMask | kUCCollatePunctuationSignificantMask |
    kUCCollateDigitsOverrideMask | kUCCollateDigitsAsNumberMask;

// ICU cuts longer numbers into pieces.
const ptrdiff_t longest_number = 254;

// The result when the tables cannot tell.
const int undecided = 2;

bool is_digit(UniChar unit) { return unit >= '0' && unit <= '9'; }

// Digits without leading zeros; the number 0 has one digit.
struct Number {
    const UniChar* first;
    const UniChar* last;
};

// The number that begins at `text`.
Number number_at(const UniChar* text, const UniChar* end) {
    const UniChar* last = text;
    while (last != end && is_digit(*last)) last++;
    while (last - text > 1 && *text == '0') text++;
    return {text, last};
}

int compare(const Number& a, const Number& b) {
    const auto length_a = a.last - a.first, length_b = b.last - b.first;
    if (length_a != length_b) return length_a < length_b ? -1 : 1;
    for (auto i = decltype(length_a){0}; i < length_a; i++) {
        if (a.first[i] != b.first[i]) return a.first[i] < b.first[i] ? -1 : 1;
    }
    return 0;
}

// Walks over a text's elements; a run of digits counts as one.
class Walker {
  public:
    Walker(const Tables& tables, const UniChar* text, const UniChar* end)
        : tables_(tables), at_(text), end_(end) {}

    // False at the end of the text.
    bool next() {
        for (;;) {
            if (sequence_ != sequence_end_) return element = *sequence_++, true;
            is_number = false;
            if (at_ == end_) return false;
            const Character& character = tables_.characters[*at_];
            if (character.kind == collation::PLAIN) {
                at_++;
                return element = character.element, true;
            }
            if (character.kind == collation::DIGIT) return take_number(), true;
            take(character);
        }
    }

    Element element = {};
    bool is_number = false;
    Number number = {};

  private:
    void take(const Character& character) {
        at_++;
        if (character.kind == collation::SEQUENCE) {
            sequence_ = tables_.sequences + character.first;
            sequence_end_ = sequence_ + character.count;
        } else if (at_ != end_ && *at_ == collation::MIDDLE_DOT) {
            at_++;
            sequence_ = tables_.sequences + tables_.contextual_first;
            sequence_end_ = sequence_ + tables_.contextual_count;
        } else {
            sequence_ = &character.element;
            sequence_end_ = sequence_ + 1;
        }
    }

    void take_number() {
        number = number_at(at_, end_);
        is_number = true;
        element = tables_.characters[int{'0'}].element;
        at_ = number.last;
    }

    const Tables& tables_;
    const UniChar* at_;
    const UniChar* end_;
    const Element* sequence_ = nullptr;
    const Element* sequence_end_ = nullptr;
};

struct Text {
    const UniChar* units;
    const UniChar* end;
};

// As next(), but marks are passed over and noted.
bool next_primary(Walker* walker, bool* has_marks) {
    while (walker->next()) {
        if (walker->element.primary) return true;
        *has_marks = true;
    }
    return false;
}

int compare_primaries(const Tables& tables, const Walker& a, const Walker& b) {
    if (a.is_number && b.is_number) return compare(a.number, b.number);
    const uint8_t primary_a = a.element.primary, primary_b = b.element.primary;
    if (a.is_number != b.is_number) {
        const uint8_t other = a.is_number ? primary_b : primary_a;
        if (other >= tables.lowest_digit && other <= tables.highest_digit) return undecided;
    }
    return primary_a == primary_b ? 0 : primary_a < primary_b ? -1 : 1;
}

// *differ is set when equal texts may still differ in their marks.
int compare_letters(const Tables& tables, const Text& text1, const Text& text2, bool* differ) {
    Walker a(tables, text1.units, text1.end), b(tables, text2.units, text2.end);
    for (;;) {
        const bool more_a = next_primary(&a, differ), more_b = next_primary(&b, differ);
        if (!more_a || !more_b) return more_a - more_b;
        const int order = compare_primaries(tables, a, b);
        if (order) return order;
        if (a.element.secondary != b.element.secondary) *differ = true;
    }
}

int compare_marks(const Tables& tables, const Text& text1, const Text& text2) {
    Walker a(tables, text1.units, text1.end), b(tables, text2.units, text2.end);
    for (;;) {
        const bool more_a = a.next(), more_b = b.next();
        if (!more_a || !more_b) return more_a - more_b;
        const uint8_t mark_a = a.element.secondary, mark_b = b.element.secondary;
        if (mark_a != mark_b) return mark_a < mark_b ? -1 : 1;
    }
}

// Texts are short and compared often, so they are walked four units at a time.
const ptrdiff_t units_in_word = 4;

uint64_t word_at(const UniChar* units) {
    uint64_t word;
    memcpy(&word, units, sizeof word);
    return word;
}

// How many units both texts begin with.
ptrdiff_t common_length(const Text& text1, const Text& text2) {
    const auto shorter = std::min(text1.end - text1.units, text2.end - text2.units);
    ptrdiff_t at = 0;
    for (; shorter - at >= units_in_word; at += units_in_word) {
        const uint64_t difference = word_at(text1.units + at) ^ word_at(text2.units + at);
        if (!difference) continue;
        const bool little = std::endian::native == std::endian::little;
        return at + (little ? std::countr_zero(difference) : std::countl_zero(difference)) / 16;
    }
    while (at != shorter && text1.units[at] == text2.units[at]) at++;
    return at;
}

// Drops the start that both texts share, except characters whose meaning depends on what follows.
void drop_common_start(Text* text1, Text* text2) {
    const UniChar* const start = text1->units;
    const UniChar* at = start + common_length(*text1, *text2);
    if (at != start && (at[-1] == 'l' || at[-1] == 'L')) at--;
    while (at != start && is_digit(at[-1])) at--;
    text2->units += at - start;
    text1->units = at;
}

// The character or number at the start of a text, if it stands for one element whatever follows.
struct First {
    const Character* character;
    Number number;  // of a DIGIT
};

bool take_first(const Tables& tables, const Text& text, First* first) {
    if (text.units == text.end || *text.units >= 0x100) return false;
    first->character = &tables.characters[*text.units];
    const collation::Kind kind = first->character->kind;
    if (kind == collation::SEQUENCE) return false;

    const UniChar* next = text.units + 1;
    if (kind == collation::DIGIT) {
        first->number = number_at(text.units, text.end);
        if (first->number.last - first->number.first > longest_number) return false;
        next = first->number.last;
    }
    if (next == text.end) return true;
    // A wide unit may be an accent.
    return *next < 0x100 && !(kind == collation::CONTEXTUAL && *next == collation::MIDDLE_DOT);
}

// The answer when the texts' first characters already give it, as they mostly do.
int compare_first(const Tables& tables, const Text& text1, const Text& text2) {
    First a, b;
    if (!take_first(tables, text1, &a) || !take_first(tables, text2, &b)) return undecided;
    int order = a.character->element.primary - b.character->element.primary;
    if (a.character->kind == collation::DIGIT && b.character->kind == collation::DIGIT) {
        order = compare(a.number, b.number);
    }
    return order == 0 ? undecided : order < 0 ? -1 : 1;
}

int compare_all(const Tables& tables, const Text& text1, const Text& text2) {
    bool differ = false;
    const int order = compare_letters(tables, text1, text2, &differ);
    return order || !differ ? order : compare_marks(tables, text1, text2);
}

bool is_byte_wide(const Text& text) {
    const UniChar* at = text.units;
    uint64_t all = 0;
    for (; text.end - at >= units_in_word; at += units_in_word) all |= word_at(at);
    for (; at != text.end; at++) all |= *at;
    return (all & 0xFF00FF00FF00FF00) == 0;
}

bool fit_tables(const Text& text1, const Text& text2) {
    const auto longest = std::max(text1.end - text1.units, text2.end - text2.units);
    return longest <= longest_number && is_byte_wide(text1) && is_byte_wide(text2);
}

int compare_by_icu(const UCollator* collator, const Text& text1, const Text& text2) {
    static_assert(sizeof(UniChar) == sizeof(UChar));
    return ucol_strcoll(collator, reinterpret_cast<const UChar*>(text1.units),
                        static_cast<int32_t>(text1.end - text1.units),
                        reinterpret_cast<const UChar*>(text2.units),
                        static_cast<int32_t>(text2.end - text2.units));
}

int compare_by_tables(const Tables& tables, const Text& text1, const Text& text2) {
    Text rest1 = text1, rest2 = text2;
    drop_common_start(&rest1, &rest2);
    // What a wide unit means may depend on what follows it.
    const bool after_wide = rest1.units != text1.units && rest1.units[-1] >= 0x100;
    const int order = after_wide ? undecided : compare_first(tables, rest1, rest2);
    if (order != undecided) return order;
    return fit_tables(text1, text2) ? compare_all(tables, rest1, rest2) : undecided;
}

}  // namespace

OSStatus UCCompareTextDefault(UCCollateOptions options, const UniChar* text1, UniCharCount length1,
                              const UniChar* text2, UniCharCount length2, Boolean* equivalent,
                              SInt32* order) {
    const bool missing = (!text1 && length1) || (!text2 && length2);
    if (options != served_options || missing) return paramErr;

    const Text first = {text1, text1 + length1}, second = {text2, text2 + length2};
    int result = compare_by_tables(collation::tables, first, second);
    if (result == undecided) {
        const UCollator* collator = collation::root_collator();
        if (!collator) return kTECMissingTableErr;
        result = compare_by_icu(collator, first, second);
    }
    if (equivalent) *equivalent = result == 0;
    if (order) *order = result;
    return noErr;
}
