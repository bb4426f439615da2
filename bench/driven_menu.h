// A program that shows a menu, driven by real keys and clicks. The evidence that a level is open is
// its window, and pixels at its place on the screen.
#pragma once

#include <string>
#include <vector>

#include "bench/harness.h"
#include "bench/started_program.h"

struct _XDisplay;

namespace bench {

class DrivenMenu {
  public:
    // Mouse, keyboard and pixels are those of `screen`. The menu's windows are in `session`, whose
    // upper left corner is that of the screen: the same server, or one in a window of it.
    DrivenMenu(_XDisplay* screen, _XDisplay* session, const std::vector<std::string>& command);
    ~DrivenMenu();
    DrivenMenu(const DrivenMenu&) = delete;
    DrivenMenu& operator=(const DrivenMenu&) = delete;

    // Waits until the program shows any window of some size, and then until it is idle.
    void wait_for_window();
    // Waits until so many levels are painted, and then until the program is idle.
    void wait_for_levels(size_t count);
    void click(int x, int y);
    void press(const std::vector<std::string>& keys);
    // Presses the keys and waits until one more level is painted. Adds what this took, and to
    // `until_rest` the processor time until the program is idle again.
    void time_level(const std::vector<std::string>& keys, Times* times,
                    std::vector<double>* until_rest = nullptr);

  private:
    void take_events();
    void wait_for_paint(unsigned long level);
    bool is_painted(unsigned long window) const;
    _XDisplay *screen_, *session_;
    std::vector<unsigned long> windows_, levels_;
    StartedProgram program_;
};

}  // namespace bench
