// The test's own display behind a relay that lets the first connections through and holds up the
// rest.
#pragma once

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace test {

class SlowDisplay {
  public:
    // The connection with this number, counted from 1, is the first that is accepted and never
    // answered.
    explicit SlowDisplay(int first_held);
    ~SlowDisplay();
    SlowDisplay(const SlowDisplay&) = delete;
    SlowDisplay& operator=(const SlowDisplay&) = delete;

    // The value for DISPLAY.
    const std::string& name() const { return name_; }
    // Whether a connection is being held up.
    bool is_waited_for() const { return held_; }

  private:
    void serve();
    void relay(size_t index, bool from_client, bool from_server);
    void take_connection();

    const int first_held_;
    std::string name_;
    std::string display_;  // the true one's socket
    int listener_ = -1;
    int accepted_ = 0;
    std::atomic<bool> held_{false}, ends_{false};
    std::vector<std::pair<int, int>> relayed_;  // client and server
    std::vector<int> waiting_;
    std::thread thread_;
};

}  // namespace test
