// A file descriptor that is closed with its owner.
#pragma once

#include <unistd.h>

#include <string>
#include <utility>

namespace operations {

class Descriptor {
  public:
    explicit Descriptor(int number = -1) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~Descriptor() { close(); }

    int get() const { return number_; }
    explicit operator bool() const { return number_ >= 0; }
    // False when what was written could not be kept (some file systems say so only now).
    bool close() { return number_ < 0 || ::close(std::exchange(number_, -1)) == 0; }

  private:
    int number_;
};

// All of it, whatever a single write takes. False with errno when it does not go.
bool WriteAll(int file, const void* bytes, size_t size);

}  // namespace operations
