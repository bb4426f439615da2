// Calls back when a descriptor can be read, in every mode of the run loop. Main thread.
#pragma once

#include <Foundation/Foundation.h>

#include <functional>
#include <memory>

@class DescriptorWatcher;

// Watches as long as it lives. The callback may destroy it. An exception of the callback goes no
// further: the toolkit's run loop would end the program.
class DescriptorWatch {
  public:
    DescriptorWatch(int descriptor, std::function<void()> readable);
    ~DescriptorWatch();
    DescriptorWatch(const DescriptorWatch&) = delete;
    DescriptorWatch& operator=(const DescriptorWatch&) = delete;

  private:
    DescriptorWatcher* watcher_;
};
