#include "bench/harness.h"

#include <stdio.h>
#include <stdlib.h>
#include <time.h>

#include <algorithm>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <utility>

namespace bench {

namespace {

using nlohmann::json;

bool limit_passed = false;
json records = json::array();

double read_clock(clockid_t clock) {
    timespec time = {};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

// The value that the fraction `part` of the values lie below.
double quantile(std::vector<double> values, double part) {
    if (values.empty()) return 0;
    const auto index = static_cast<std::ptrdiff_t>(part * static_cast<double>(values.size()));
    const auto at = values.begin() + std::min<std::ptrdiff_t>(index, std::ssize(values) - 1);
    std::nth_element(values.begin(), at, values.end());
    return *at;
}

json spread(const std::vector<double>& values) {
    return {{"least", quantile(values, 0)},
            {"lower", quantile(values, 0.25)},
            {"median", median(values)},
            {"upper", quantile(values, 0.75)}};
}

void print_head(const std::string& what, int size, size_t rounds) {
    printf("%s", what.c_str());
    if (size) printf(", %d", size);
    printf(", medians and quartiles of %zu rounds, microseconds\n", rounds);
    printf("  %-40s %10s %21s %10s %21s\n", "", "processor", "", "wall", "");
}

void print_spread(const std::vector<double>& values) {
    printf(" %10.1f %10.1f-%-10.1f", median(values) * 1e6, quantile(values, 0.25) * 1e6,
           quantile(values, 0.75) * 1e6);
}

void print_line(const std::string& what, int size, const std::string& variant, const Times& times) {
    printf("  %-40s", variant.c_str());
    print_spread(times.processor);
    print_spread(times.wall);
    records.push_back({{"what", what},
                       {"size", size},
                       {"variant", variant},
                       {"rounds", times.wall.size()},
                       {"processor", spread(times.processor)},
                       {"wall", spread(times.wall)}});
}

bool is_passed(double value, double limit) {
    const bool passed = value > limit;
    limit_passed = limit_passed || passed;
    return passed;
}

}  // namespace

double now() { return read_clock(CLOCK_MONOTONIC); }

double processor_time() { return read_clock(CLOCK_PROCESS_CPUTIME_ID); }

void add_span(Times* times, const Moment& begin) {
    const Moment end;
    times->processor.push_back(end.processor - begin.processor);
    times->wall.push_back(end.wall - begin.wall);
}

std::string variable(const char* name) {
    const char* const value = getenv(name);
    return value ? value : "";
}

double median(std::vector<double> values) { return quantile(std::move(values), 0.5); }

Race::Race(std::string what, int size, double (*clock)())
    : what_(std::move(what)), size_(size), clock_(clock) {}

void Race::add(std::string name, std::function<void()> run, std::function<void()> after) {
    variants_.push_back({std::move(name), std::move(run), std::move(after), {}});
}

void Race::run(int rounds) {
    for (int round = 0; round <= rounds; round++) {
        for (Variant& variant : variants_) {
            const double processor = processor_time(), wall = now();
            variant.run();
            const double wall_end = now(), processor_end = processor_time();
            if (variant.after) variant.after();
            if (round == 0) continue;
            variant.times.wall.push_back(wall_end - wall);
            variant.times.processor.push_back(processor_end - processor);
        }
    }
}

const std::vector<double>& Race::of_clock(const Times& times) const {
    return clock_ == processor_time ? times.processor : times.wall;
}

double Race::seconds(const std::string& name) const {
    for (const Variant& variant : variants_) {
        if (variant.name == name) return median(of_clock(variant.times));
    }
    throw std::out_of_range("no variant of this name: " + name);
}

void Race::print() const {
    if (variants_.empty()) return;
    print_head(what_, size_, variants_.front().times.wall.size());
    const double first = median(of_clock(variants_.front().times));
    for (const Variant& variant : variants_) {
        print_line(what_, size_, variant.name, variant.times);
        printf(" x %.2f\n", median(of_clock(variant.times)) / first);
    }
}

void print_times(const std::string& what, int size, const std::string& variant,
                 const Times& times) {
    print_head(what, size, times.wall.size());
    print_line(what, size, variant, times);
    printf("\n");
}

void check(const std::string& what, double ratio, double limit) {
    printf("%s: ratio %.2f, limit %.2f: %s\n", what.c_str(), ratio, limit,
           is_passed(ratio, limit) ? "OVER THE LIMIT" : "within");
    records.push_back({{"what", what}, {"ratio", ratio}, {"limit", limit}});
}

void note(const std::string& what, int size, double value, const std::string& unit, double limit) {
    printf("%s", what.c_str());
    if (size) printf(", %d", size);
    printf(": %.4g %s", value, unit.c_str());
    json record = {{"what", what}, {"size", size}, {"value", value}, {"unit", unit}};
    if (limit > 0) {
        printf(", limit %g: %s", limit, is_passed(value, limit) ? "OVER THE LIMIT" : "within");
        record["limit"] = limit;
    }
    printf("\n");
    records.push_back(std::move(record));
}

int status() {
    if (const char* path = getenv("DELVIO_BENCH_JSON")) {
        std::ofstream file(path);
        file << records.dump(2) << "\n";
        if (!file.flush()) throw std::runtime_error(std::string("cannot write ") + path);
    }
    return limit_passed ? 1 : 0;
}

}  // namespace bench
