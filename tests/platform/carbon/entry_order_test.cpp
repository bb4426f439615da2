#include "carbon/entry_order.h"

#include <gtest/gtest.h>
#include <string.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "support/icu_collator.h"
#include "tree/dv_scan.h"

namespace {

int comparisons;

int counted(const dirent** a, const dirent** b) {
    comparisons++;
    return dv_sort(a, b);
}

int backwards(const dirent** a, const dirent** b) { return strcmp((*b)->d_name, (*a)->d_name); }

int all_alike(const dirent**, const dirent**) { return 0; }

int icu_order(const char* a, const char* b) {
    return test::icu_order(test::widened(a), test::widened(b));
}

class Folder {
  public:
    explicit Folder(const std::vector<std::string>& names) : storage_(names.size()) {
        for (size_t i = 0; i < names.size(); i++) {
            strncpy(storage_[i].d_name, names[i].c_str(), sizeof storage_[i].d_name - 1);
            entries_.push_back(&storage_[i]);
        }
    }

    std::vector<uint32_t> sort(files::EntryComparison compare) {
        return files::sort_entries(entries_.data(), entries_.size(), compare);
    }

    const std::vector<dirent*>& entries() const { return entries_; }
    // The position that an entry had before.
    uint32_t place(const dirent* entry) const {
        return static_cast<uint32_t>(entry - storage_.data());
    }

  private:
    std::vector<dirent> storage_;
    std::vector<dirent*> entries_;
};

std::vector<uint32_t> stable_order(const std::vector<std::string>& names,
                                   files::EntryComparison compare) {
    const Folder folder(names);
    std::vector<uint32_t> order(names.size());
    std::iota(order.begin(), order.end(), 0U);
    std::stable_sort(order.begin(), order.end(), [&](uint32_t a, uint32_t b) {
        const dirent *first = folder.entries()[a], *second = folder.entries()[b];
        return compare(&first, &second) < 0;
    });
    return order;
}

// Sorts, and checks the result in every way.
void expect_stable_order(const std::vector<std::string>& names, files::EntryComparison compare) {
    Folder folder(names);
    const std::vector<uint32_t> before = folder.sort(compare);
    ASSERT_EQ(before, stable_order(names, compare));
    for (size_t i = 0; i < names.size(); i++) {
        ASSERT_EQ(folder.place(folder.entries()[i]), before[i]);
    }
}

std::string random_name(std::mt19937& random, const std::string& alphabet, size_t longest) {
    std::string name(1 + random() % longest, ' ');
    for (char& byte : name) byte = alphabet[random() % alphabet.size()];
    return name;
}

std::vector<std::string> random_names(const std::string& alphabet, size_t longest) {
    std::mt19937 random(7);
    std::vector<std::string> names;
    for (int i = 0; i < 5000; i++) names.push_back(random_name(random, alphabet, longest));
    return names;
}

std::string all_bytes() {
    std::string all;
    for (int byte = 1; byte < 256; byte++) all += static_cast<char>(byte);
    return all;
}

// Names as people choose them.
std::vector<std::string> ordinary_names() {
    const char* const words[] = {
        "report", "Photo", "IMG_", " copy", "caf\xC3\xA9", "CAF\xC3\x89", "f\xC3\xBCr",  "_draft",
        "(1)",    ".tar",  "007",  "12",    "l",           "col\xC2\xB7", "\xE5\x86\x99"};
    std::mt19937 random(3);
    std::vector<std::string> names;
    for (int i = 0; i < 5000; i++) {
        std::string name;
        for (unsigned part = 0; part <= random() % 4; part++) {
            name += words[random() % std::size(words)];
            if (random() % 2) name += std::to_string(random() % 3000);
        }
        names.push_back(name);
    }
    return names;
}

}  // namespace

TEST(EntryOrder, OrdinaryNamesComeInTheOrderOfTheComparison) {
    expect_stable_order(ordinary_names(), dv_sort);
}

TEST(EntryOrder, TheOrderIsThatOfIcu) {
    Folder folder(ordinary_names());
    folder.sort(dv_sort);
    for (size_t i = 1; i < folder.entries().size(); i++) {
        ASSERT_LE(icu_order(folder.entries()[i - 1]->d_name, folder.entries()[i]->d_name), 0);
    }
}

TEST(EntryOrder, NamesOfAnyBytesComeInTheOrderOfTheComparison) {
    expect_stable_order(random_names(all_bytes(), 12), dv_sort);
    expect_stable_order(random_names(all_bytes(), 255), dv_sort);
}

TEST(EntryOrder, NastyNamesComeInTheOrderOfTheComparison) {
    const std::string alphabets[] = {
        "0123456789",
        "01a",
        "aA\xE4\xC4\xE6\xDFs",
        "lL\xB7.l",
        "1\xB9\xBC\xBD\x30 9",
        "eE\xE9\xC9\xE8\x7F\xAD\x01",
        " _-.~$",
    };
    for (const std::string& alphabet : alphabets) {
        expect_stable_order(random_names(alphabet, 6), dv_sort);
        expect_stable_order(random_names(alphabet, 40), dv_sort);
    }
    expect_stable_order(random_names("0123456789", 255), dv_sort);
}

TEST(EntryOrder, NamesThatCompareEqualKeepTheirOrder) {
    expect_stable_order({"b", "A", "a", "B", "a01", "A1", "a1", "A", "b"}, dv_sort);
    expect_stable_order(random_names("aA", 4), dv_sort);
}

TEST(EntryOrder, FewNamesOrNoneAreSorted) {
    expect_stable_order({}, dv_sort);
    expect_stable_order({"one"}, dv_sort);
    expect_stable_order({"two", "one"}, dv_sort);
}

TEST(EntryOrder, AnyOtherComparisonIsFollowedToo) {
    expect_stable_order(ordinary_names(), backwards);
    expect_stable_order(ordinary_names(), all_alike);
}

TEST(EntryOrder, OrdinaryNamesAreComparedButOnceEach) {
    Folder folder(ordinary_names());
    comparisons = 0;
    folder.sort(counted);
    EXPECT_LT(comparisons, 5000);
}
