// One domain of the user's defaults as it is on disk: a property list of its own in the defaults
// folder. NSUserDefaults reads the file once and then keeps what it saw; this class reads it again
// whenever it has changed. Only one thread at a time may use an object.
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

    // Reads the file unless it is the one that was read last; an unchanged file costs one stat.
    // False when the file cannot be read or holds no dictionary: values() then stay as they were.
    bool refresh();

    const std::string& path() const { return path_; }

    // What the file held when it was last read. Never null.
    NSDictionary* values() const { return values_; }

    // Merges the changes (a null object removes its key) into the newest content of the file and
    // replaces the whole file, under the lock that NSUserDefaults takes. A symbolic link to the
    // file stays, and so do the file's permissions. Nothing is written when no value changes. False
    // when the file could not be read or written; it is then as it was.
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
    // Again: another program has changed the file since it was read.
    enum class Step { Done, Failed, Again };
    Step try_to_merge(NSDictionary* changes);

    std::string folder_;
    std::string path_;
    NSDictionary* values_;
    Stamp stamp_;
    bool was_read_ = false;
};
