// A script that runs beside an open menu: each step waits until a condition is true, then acts. It
// runs from a timer, also while a menu tracks or a modal panel is open. Main thread.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace test {

class Steps {
  public:
    using Condition = std::function<bool()>;
    using Action = std::function<void()>;

    // Waits until `condition` holds, then runs `action` once. `what` describes the condition in
    // failures.
    Steps& when(
        const std::string& what, Condition condition, Action action = [] {});

    // Runs the application until the last step is done. A step that waits longer than
    // the limit fails the test and ends every open menu.
    void run();
    // The same beside `tracking`, which shows a menu and returns when the menu has closed. By then
    // every step must be done. A menu that stays open after the last step also fails. Exceptions
    // pass through.
    void run_beside(const Action& tracking);
    // Called by the timer.
    void turn();

  private:
    struct Step {
        std::string what;
        Condition condition;
        Action action;
    };
    bool is_done() const { return next_ == steps_.size(); }
    void dispatch_events();

    std::vector<Step> steps_;
    size_t next_ = 0;
    double waiting_since_ = 0;
    bool failed_ = false;
};

}  // namespace test
