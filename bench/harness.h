// Measurements: variants run in turn within one process (A B C A B C ...), so that noise of the
// machine falls on all of them alike; medians; ratios beside their limits.
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

class Race {
  public:
    explicit Race(double (*clock)() = now) : clock_(clock) {}

    // `run` is timed; `after`, if given, follows each run untimed.
    void add(std::string name, std::function<void()> run, std::function<void()> after = {});

    // One round to warm up, then `rounds` that count.
    void run(int rounds);

    // The median of a variant, in seconds.
    double seconds(const std::string& name) const;

    // One line a variant: its median in microseconds, and its ratio to the first variant.
    void print() const;

  private:
    struct Variant {
        std::string name;
        std::function<void()> run, after;
        std::vector<double> times;
    };
    double (*clock_)();
    std::vector<Variant> variants_;
};

// Prints a ratio beside its limit. Remembers a limit that is passed.
void check(const std::string& what, double ratio, double limit);

// The exit status: 1 when a limit was passed.
int status();

}  // namespace bench
