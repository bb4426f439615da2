// The lock of the folder of the user's defaults, as NSUserDefaults takes it: a folder in `.lck`
// that only one program can make. Nothing in it tells who has made it, so a program that dies while
// it holds the lock leaves it behind, and GNUstep then waits until it is 20 seconds old.
//
// Delvio's programs take turns: the kernel's lock of `.lck` itself, which ends with the process
// that has it. While a program has the turn, no other one of Delvio's holds the lock or is about to
// take it. So a lock that stands then is a dead program's, unless another program of this user that
// uses GNUstep and the same home has been running since before it was made.
#pragma once

#include <string>

class DefaultsTurn {
  public:
    // `folder` is the folder of defaults. Waits until nobody holds its lock, breaks a dead
    // program's, and gives up after these milliseconds.
    DefaultsTurn(const std::string& folder, int milliseconds);
    ~DefaultsTurn();
    DefaultsTurn(const DefaultsTurn&) = delete;
    DefaultsTurn& operator=(const DefaultsTurn&) = delete;

    // Whether the lock may be taken now.
    bool is_free() const { return is_free_; }

  private:
    bool is_anothers_turn();
    bool break_abandoned(const std::string& lock, bool looks_for_holder) const;

    int parent_;
    bool has_turn_ = false;
    bool is_free_ = false;
};

class DefaultsLock {
  public:
    explicit DefaultsLock(const std::string& folder);
    ~DefaultsLock();
    DefaultsLock(const DefaultsLock&) = delete;
    DefaultsLock& operator=(const DefaultsLock&) = delete;

    bool held() const { return held_; }

  private:
    DefaultsTurn turn_;
    std::string path_;
    bool held_ = false;
};
