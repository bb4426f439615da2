// A program one of whose calls fails.
#pragma once

#include <sys/types.h>

#include <array>
#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

#include "faults/control.h"

namespace faults {

// The file that the library of failing calls has mapped in the programs that are started.
class SharedControl {
  public:
    SharedControl();
    ~SharedControl();
    SharedControl(const SharedControl&) = delete;
    SharedControl& operator=(const SharedControl&) = delete;
    Control* operator->() const { return control_; }
    const std::string& path() const { return path_; }
    // From now on the call with this number fails; the counts begin anew. Family `families` means
    // that none fails.
    void arm(Family family, long at);
    // What the last program had open at its end, beyond what another one had.
    std::string leaked_since(const std::string& clean) const;
    // All calls so far.
    long calls() const;

  private:
    std::string path_;
    Control* control_;
};

struct Ended {
    int status = -1;  // exit status, or 128 plus a signal's number
    std::string out, err;
    bool hung = false;  // the program was killed, because nothing moved in it any more
    double seconds = 0;
};

using Words = std::vector<std::string>;
using Variables = std::vector<std::pair<std::string, std::string>>;

// Runs a program to its end. Meanwhile calls `turn` again and again. A program hangs if for a
// minute it makes no call and uses no processor, or if it uses the processor for two minutes.
Ended run_with_faults(const SharedControl& control, const Words& words, const Variables& variables,
                      const std::function<void()>& turn = {});

// The families of this run: those that the environment names in DELVIO_FAULTS, or all of them.
std::vector<Family> families_to_try();
// Those of them that are among `only`.
std::vector<Family> families_to_try(std::initializer_list<Family> only);
// Whether each call of a family is let fail, because DELVIO_FAULTS is set, and not only some.
bool is_full_run();

// Whether a failing call holds a run up for more than a second, each time: `again` makes one more
// run, with that call failing or without, and returns its seconds. A busy machine can hold up any
// single run. Only a full run asks, because other tests keep the machine busy in the suite.
bool is_slow(double seconds, double clean, const std::function<double(bool)>& again);

// Lets calls of one family fail, one at a time, of which a run without faults makes so many.
// `try_one` says whether the program got as far as the call. In a full run the end comes when it
// did not. DELVIO_FAULTS_FROM and DELVIO_FAULTS_TO name another first and last number. Otherwise
// only `sample` calls are tried, spread over all, or so many times as DELVIO_FAULTS_TIMES says.
// Returns how many were tried.
int fail_in_turn(long calls, int sample, const std::function<bool(long)>& try_one);
// Returns how many calls were counted, and prints them.
std::array<long, families> calls_made(const char* what, const SharedControl& control);
// Prints how many were tried.
void tell_tried(const char* what, const std::array<int, families>& tried);

}  // namespace faults
