// The events that the Finder gets: every event of a test, as it was sent and as it arrived.
#pragma once

#include <Carbon/Carbon.h>

#include <string>
#include <utility>
#include <vector>

namespace test {

struct Parameter {
    AEKeyword keyword;
    DescType type;
};

// The arguments of AESend.
struct Sending {
    bool has_reply = true, has_procedures = true;
    AESendMode mode = 0;
    AESendPriority priority = 0;
    SInt32 time_out = 0;
};

struct Letter {
    FourCharCode event_class = 0, event_id = 0;
    DescType address_type = 0;
    OSType address = 0;
    std::vector<std::pair<FourCharCode, FourCharCode>> parameters;  // keywords and types, in order
    std::vector<DescType> item_types;
    std::vector<std::string> items;  // paths
    std::string destination;
    std::vector<UInt8> replacing, kind;  // bytes of "alrp" and "kocl"
    Sending sending;

    bool replaces() const { return replacing == std::vector<UInt8>{1}; }
    bool keeps() const { return replacing == std::vector<UInt8>{0}; }
};

// While the object lives, this process is the Finder.
class FinderPost {
  public:
    FinderPost();
    ~FinderPost();
    FinderPost(const FinderPost&) = delete;
    FinderPost& operator=(const FinderPost&) = delete;

    // Forgets them.
    void clear();
    // Everything that has been sent so far, in order.
    const std::vector<Letter>& letters();
};

}  // namespace test
