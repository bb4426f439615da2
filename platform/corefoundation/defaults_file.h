// One domain of the user's defaults as it stands on disk: a property list of its own in the
// defaults folder. NSUserDefaults reads it once and then keeps what it saw; this looks again
// whenever the file has changed. Not safe for several threads at once.
#pragma once

#import <Foundation/Foundation.h>

#include <sys/stat.h>

#include <string>

class DefaultsFile {
  public:
    explicit DefaultsFile(NSString* domain);
    ~DefaultsFile();
    DefaultsFile(const DefaultsFile&) = delete;
    DefaultsFile& operator=(const DefaultsFile&) = delete;

    // Reads the file if it is not the one read last; an unchanged file costs one stat.
    // False when it cannot be read or holds no dictionary: the values are then those of before.
    bool refresh();

    const std::string& path() const { return path_; }

    // What the file held when it was read last. Never null.
    NSDictionary* values() const { return values_; }

    // Merges the changes (null objects remove their key) into the newest content of the file and
    // replaces it as a whole, under the lock that NSUserDefaults takes; a link to it stays, and so
    // do its permissions. Changes that change nothing write nothing. False when the file could not
    // be read or written; it is then as it was.
    bool merge(NSDictionary* changes);

  private:
    struct Stamp {
        dev_t device;
        ino_t inode;
        off_t size;
        struct timespec changed;
        bool operator==(const Stamp& other) const;
    };

    bool stamp_of_file(Stamp* stamp) const;
    bool replace(NSData* data);
    // Again: another program has changed the file meanwhile.
    enum class Step { Done, Failed, Again };
    Step try_to_merge(NSDictionary* changes);

    std::string folder_;
    std::string path_;
    NSDictionary* values_;
    Stamp stamp_;
    bool was_read_ = false;
};
