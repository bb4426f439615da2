#include "bench/harness.h"

#include <stdio.h>
#include <time.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace bench {

namespace {

bool limit_passed = false;

double read_clock(clockid_t clock) {
    timespec time = {};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

}  // namespace

double now() { return read_clock(CLOCK_MONOTONIC); }

double processor_time() { return read_clock(CLOCK_PROCESS_CPUTIME_ID); }

double median(std::vector<double> values) {
    if (values.empty()) return 0;
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

void Race::add(std::string name, std::function<void()> run, std::function<void()> after) {
    variants_.push_back({std::move(name), std::move(run), std::move(after), {}});
}

void Race::run(int rounds) {
    for (int round = 0; round <= rounds; round++) {
        for (Variant& variant : variants_) {
            const double start = clock_();
            variant.run();
            const double time = clock_() - start;
            if (variant.after) variant.after();
            if (round > 0) variant.times.push_back(time);
        }
    }
}

double Race::seconds(const std::string& name) const {
    for (const Variant& variant : variants_) {
        if (variant.name == name) return median(variant.times);
    }
    throw std::out_of_range("no variant of this name: " + name);
}

void Race::print() const {
    if (variants_.empty()) return;
    const double first = median(variants_.front().times);
    for (const Variant& variant : variants_) {
        const double time = median(variant.times);
        printf("  %-44s %12.1f us  x %.2f\n", variant.name.c_str(), time * 1e6, time / first);
    }
}

void check(const std::string& what, double ratio, double limit) {
    const bool passed = ratio > limit;
    printf("%s: ratio %.2f, limit %.2f: %s\n", what.c_str(), ratio, limit,
           passed ? "OVER THE LIMIT" : "within");
    limit_passed = limit_passed || passed;
}

int status() { return limit_passed ? 1 : 0; }

}  // namespace bench
