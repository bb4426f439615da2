// The scan of a folder compared with the least work that it must do, and its comparator compared
// with strcmp and ICU's collator.
#include <dirent.h>
#include <stdlib.h>
#include <string.h>
#include <unicode/ucol.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/harness.h"
#include "bench/scan_floor.h"
#include "bench/test_folder.h"
#include "carbon/entry_order.h"
#include "tree/dv_scan.h"

namespace {

const double scan_limit = 1.05, sort_limit = 1.3;

void race_scans(int entries, int rounds) {
    const bench::TestFolder folder(entries);
    const char* path = folder.path().c_str();
    dv_tree_t* root = nullptr;
    bench::Race race("scan", entries, bench::processor_time);
    race.add("floor: getdents64, statx, lgetxattr, qsort", [&] {
        if (bench::scan_floor(path) != static_cast<size_t>(entries)) {
            throw std::runtime_error("the floor lost entries");
        }
    });
    race.add(
        "dv_build_tree",
        [&] { root = dv_build_tree(path, 0, 1, DV_SCAN_DOT_FILES | DV_SCAN_INVISIBLE, 0); },
        [&] {
            int count = 0;
            for (const dv_tree_t* elem = root->children; elem; elem = elem->next) count++;
            if (count != entries) throw std::runtime_error("the scan lost entries");
            dv_free_tree(root);
        });
    race.run(rounds);
    race.print();
    const double ratio =
        race.seconds("dv_build_tree") / race.seconds("floor: getdents64, statx, lgetxattr, qsort");
    if (entries == 10000) {
        bench::check("scan of " + std::to_string(entries) + " entries to the floor", ratio,
                     scan_limit);
    }
}

UCollator* collator;

int by_bytes(const dirent** a, const dirent** b) { return strcmp((*a)->d_name, (*b)->d_name); }

int by_collator(const dirent** a, const dirent** b) {
    UChar wide[2][256];
    int32_t length[2];
    const dirent* entries[] = {*a, *b};
    for (int i = 0; i < 2; i++) {
        length[i] = static_cast<int32_t>(strlen(entries[i]->d_name));
        for (int32_t j = 0; j < length[i]; j++) {
            wide[i][j] = static_cast<unsigned char>(entries[i]->d_name[j]);
        }
    }
    return ucol_strcoll(collator, wide[0], length[0], wide[1], length[1]);
}

using Comparator = int (*)(const dirent**, const dirent**);

void sort_entries(std::vector<const dirent*> entries, Comparator comparator) {
    qsort(entries.data(), entries.size(), sizeof(void*),
          reinterpret_cast<int (*)(const void*, const void*)>(comparator));
}

void race_comparators(int count, int rounds) {
    const bench::TestFolder folder(count);
    std::vector<dirent> storage(folder.names().size());
    std::vector<const dirent*> entries;
    std::vector<dirent*> mutable_entries;
    for (size_t i = 0; i < storage.size(); i++) {
        snprintf(storage[i].d_name, sizeof storage[i].d_name, "%s", folder.names()[i].c_str());
        entries.push_back(&storage[i]);
        mutable_entries.push_back(&storage[i]);
    }
    UErrorCode error = U_ZERO_ERROR;
    collator = ucol_open("", &error);
    ucol_setAttribute(collator, UCOL_STRENGTH, UCOL_SECONDARY, &error);
    ucol_setAttribute(collator, UCOL_NUMERIC_COLLATION, UCOL_ON, &error);
    bench::Race race("order of names", count, bench::processor_time);
    race.add("qsort, strcmp", [&] { sort_entries(entries, by_bytes); });
    race.add("qsort, dv_sort", [&] { sort_entries(entries, dv_sort); });
    race.add("scandir's sort, dv_sort", [&] {
        std::vector<dirent*> sorted = mutable_entries;
        files::sort_entries(sorted.data(), sorted.size(), dv_sort);
    });
    race.add("qsort, ICU's collator", [&] { sort_entries(entries, by_collator); });
    race.run(rounds);
    race.print();
    bench::check("sorting " + std::to_string(count) + " names to qsort with strcmp",
                 race.seconds("scandir's sort, dv_sort") / race.seconds("qsort, strcmp"),
                 sort_limit);
    ucol_close(collator);
}

}  // namespace

int main() {
    race_scans(100, 101);
    race_scans(1000, 101);
    race_scans(10000, 25);
    race_scans(100000, 5);
    race_comparators(10000, 25);
    return bench::status();
}
