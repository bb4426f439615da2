// A file descriptor that its owner closes when it is destroyed.
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
    // False when the written bytes could not be kept (some file systems report that only now).
    bool close() { return number_ < 0 || ::close(std::exchange(number_, -1)) == 0; }

  private:
    int number_;
};

// Gives up this process's lock (flock) on the file. Closing the file is not enough: a process that
// was just forked, by any thread, has a copy of the descriptor until it starts its program, and the
// copy keeps the lock.
void unlock(const Descriptor& file);

// Writes all bytes, in several writes if one is not enough. False with errno on failure.
bool write_fully(int file, const void* bytes, size_t size);

}  // namespace operations
