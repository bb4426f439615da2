// Measurements: variants run in turn within one process (A B C A B C ...), so that noise of the
// machine falls on all of them alike; medians and quartiles, of processor time and of wall time;
// ratios beside their limits.
//
// What is measured is printed as a table, and written as JSON by status() to the file that the
// environment names in DELVIO_BENCH_JSON: a list of records, each with the figure's name ("what"),
// the size of what was measured ("size"), and either "variant" with times, "value" with its "unit",
// or "ratio" with its "limit".
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace bench {

// Seconds from a clock that never goes back.
double now();

// Seconds that this process has computed: for work that waits for nothing, on a machine that others
// use too.
double processor_time();

double median(std::vector<double> values);

// Of one variant in all its rounds, in seconds.
struct Times {
    std::vector<double> wall, processor;
};

class Race {
  public:
    // `what` and `size` name the race in the output; ratios are those of `clock`.
    Race(std::string what, int size, double (*clock)() = now);

    // `run` is timed; `after`, if given, follows each run untimed.
    void add(std::string name, std::function<void()> run, std::function<void()> after = {});

    // One round to warm up, then `rounds` that count.
    void run(int rounds);

    // The median of a variant, in seconds of the race's clock.
    double seconds(const std::string& name) const;

    // A table, one line a variant, and the JSON of it.
    void print() const;

  private:
    struct Variant {
        std::string name;
        std::function<void()> run, after;
        Times times;
    };
    const std::vector<double>& of_clock(const Times& times) const;

    std::string what_;
    int size_;
    double (*clock_)();
    std::vector<Variant> variants_;
};

// The same for times that were taken elsewhere, of one variant.
void print_times(const std::string& what, int size, const std::string& variant, const Times& times);

// Prints a ratio beside its limit. Remembers a limit that is passed.
void check(const std::string& what, double ratio, double limit);

// The same for one figure of any unit; with a limit of 0 it has none.
void note(const std::string& what, int size, double value, const std::string& unit,
          double limit = 0);

// Writes the JSON. Returns the exit status: 1 when a limit was passed.
int status();

}  // namespace bench
