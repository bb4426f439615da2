// Measurements. Variants run in turn within one process (A B C A B C ...), so that noise of the
// machine affects all of them alike. The results are medians and quartiles of processor time and of
// wall time, and ratios with their limits.
//
// The results are printed as a table. status() also writes them as JSON to the file that the
// environment names in DELVIO_BENCH_JSON: a list of records, each with the figure's name ("what"),
// the size of the input ("size"), and either "variant" with times, "value" with its "unit", or
// "ratio" with its "limit".
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace bench {

// Seconds on a clock that never goes back.
double now();

// Processor time of this process in seconds. Use it for work that waits for nothing, when other
// programs use the machine too.
double processor_time();

double median(std::vector<double> values);

// A variable of the environment; empty for none.
std::string variable(const char* name);

// The times of one variant in all its rounds, in seconds.
struct Times {
    std::vector<double> wall, processor;
};

// A moment on both clocks.
struct Moment {
    double processor = processor_time(), wall = now();
};

// Adds what has passed since `begin`.
void add_span(Times* times, const Moment& begin);

class Race {
  public:
    // `what` and `size` name the race in the output; ratios use the times of `clock`.
    Race(std::string what, int size, double (*clock)() = now);

    // `run` is timed; `after`, if given, follows each run untimed.
    void add(std::string name, std::function<void()> run, std::function<void()> after = {});

    // Runs one round to warm up, then `rounds` that count.
    void run(int rounds);

    // The median of a variant, in seconds of the race's clock.
    double seconds(const std::string& name) const;

    // Prints a table with one line per variant, and records its JSON.
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

// The same for times of one variant that were measured elsewhere.
void print_times(const std::string& what, int size, const std::string& variant, const Times& times);

// Prints a ratio and its limit. Remembers when the limit is exceeded.
void check(const std::string& what, double ratio, double limit);

// The same for one figure of any unit; a limit of 0 means no limit.
void note(const std::string& what, int size, double value, const std::string& unit,
          double limit = 0);

// Writes the JSON. Returns the exit status: 1 when a limit was exceeded.
int status();

}  // namespace bench
