// Requests for file operations, and their reports. Plain C++; no thread of its own.
#pragma once

#include <stdint.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace operations {

enum class Kind { Move, Copy, Alias, Trash };

// Paths are absolute, in the bytes of the file system, without a trailing slash.
struct Request {
    Kind kind = Kind::Copy;
    std::vector<std::string> sources;  // carried out in this order
    std::string destination;           // the folder; Trash ignores it
    bool replace = false;              // answers every conflict with Replace; not for aliases
};

enum class State { Done, Skipped, Failed };

// The result for one source.
struct Outcome {
    std::string source;
    State state = State::Done;
    std::string target;  // where it is now, under its final name; empty unless done
    std::string reason;  // one line: why it was not done; if done, what could not be kept
};

struct Report {
    std::vector<Outcome> outcomes;  // one for each source, in order
    bool stopped = false;           // by cancel or by the answer Stop
    std::string operation;          // its name for undo; empty if it cannot be undone
};

struct Progress {
    uint64_t items_done = 0, items_total = 0;  // files and folders, also those inside folders
    uint64_t bytes_done = 0, bytes_total = 0;  // totals are 0 while unknown
    std::string path;                          // the file at work
};

enum class Choice { Skip, KeepBoth, Replace, Stop };

struct Conflict {
    Kind kind = Kind::Copy;
    std::string source, target;  // target exists already
    size_t sources_left = 0;     // after this one; with 0, "apply to all" is pointless
};

struct Answer {
    Choice choice = Choice::Skip;
    bool apply_to_all = false;  // to all conflicts of this request
};

// Receives the news about one request. Calls come one at a time, on the carrier's own thread; a
// call may block, and the work waits for it.
class Observer {
  public:
    virtual ~Observer() = default;
    virtual void progressed(const Progress&);
    virtual Answer ask(const Conflict&);  // skips, unless it is overridden
    // True ends the work as soon as no file is left half done.
    virtual bool is_cancelled();
    // The last call, once for each request.
    virtual void ended(const Report&) = 0;
};

// Carries requests out.
class Carrier {
  public:
    virtual ~Carrier() = default;
    // Returns at once. A request that cannot be carried out at all is refused before anything is
    // touched, and each outcome says why. Requests are carried out one after the other.
    virtual void carry_out(Request request, std::shared_ptr<Observer> observer) = 0;
};

}  // namespace operations
