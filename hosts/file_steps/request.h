// What file operations are asked for, and what comes of them. Plain C++; no thread of its own.
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
    std::string destination;           // the folder; not looked at by Trash
    bool replace = false;              // answers every conflict with Replace; no effect on aliases
};

enum class State { Done, Skipped, Failed };

// What became of one source.
struct Outcome {
    std::string source;
    State state = State::Done;
    std::string target;  // where it is now, under the name that it got; empty unless done
    std::string reason;  // in one line, why it was not done; of one done, what could not be kept
};

struct Report {
    std::vector<Outcome> outcomes;  // one for each source, in order
    bool stopped = false;           // by cancel or by the answer Stop
};

struct Progress {
    uint64_t items_done = 0, items_total = 0;  // files and folders, also those inside folders
    uint64_t bytes_done = 0, bytes_total = 0;  // totals are 0 while they are not known
    std::string path;                          // what is being worked on
};

enum class Choice { Skip, KeepBoth, Replace, Stop };

struct Conflict {
    Kind kind = Kind::Copy;
    std::string source, target;  // target is there already
    size_t sources_left = 0;     // that come after this one: whether "apply to all" has a meaning
};

struct Answer {
    Choice choice = Choice::Skip;
    bool apply_to_all = false;  // of this request
};

// Told of one request. Calls come one at a time, on a thread of the carrier's own; they may block,
// and the work waits.
class Observer {
  public:
    virtual ~Observer() = default;
    virtual void progressed(const Progress&) {}
    virtual Answer ask(const Conflict&) { return {}; }
    // True ends the work as soon as what is there is whole.
    virtual bool is_cancelled() { return false; }
    // The last call, once for each request.
    virtual void ended(const Report&) = 0;
};

// Somebody who carries requests out.
class Carrier {
  public:
    virtual ~Carrier() = default;
    // Returns at once. A request that cannot be carried out at all is refused before anything is
    // touched: each outcome then says why. One request is carried out after the other.
    virtual void carry_out(Request request, std::shared_ptr<Observer> observer) = 0;
};

}  // namespace operations
