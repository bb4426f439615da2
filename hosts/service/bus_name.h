// The name org.delvio.Delvio on the session bus, for programs that start others by D-Bus. Its
// object has the interface org.freedesktop.Application.
#pragma once

#include <memory>
#include <string>
#include <vector>

class BusName {
  public:
    // Menus are shown by `command` with the variables of this process as it has started, so they
    // reach this host in the same way as all others.
    BusName(const std::string& command, const std::vector<std::string>& environment);
    // Gives the name back; calls that have arrived before are still answered.
    ~BusName();
    BusName(const BusName&) = delete;
    BusName& operator=(const BusName&) = delete;

    // Asks for the name, once, and does not wait. It then sleeps until a call arrives.
    void own();
    // Whether the name is ours. Waits for the bus, for some seconds at most.
    bool is_owned();

  private:
    class Service;
    std::unique_ptr<Service> service_;
};
