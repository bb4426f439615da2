// Menu items without their objects. A level of thousands of rows has alternates that are seen only
// while a modifier key is held, each with a submenu that nobody has opened. Until somebody asks for
// such an item, only those of its fields are kept in which it differs from others of its kind.
// Main thread.
#pragma once

#include <AppKit/AppKit.h>
#include <host/menu_tracking.h>

#include <stdint.h>

#include <memory>
#include <vector>

// The packed items of one menu.
class PackedItems {
  public:
    PackedItems() = default;
    ~PackedItems();
    PackedItems(const PackedItems&) = delete;
    PackedItems& operator=(const PackedItems&) = delete;

    // A field of an object; also the beginning of a packed item.
    typedef uint64_t Word;

    // Takes over the caller's reference to an alternate and frees its object. Null, and nothing is
    // changed, if the item must stay an object: others hold it or its submenu, its class does
    // something when an object goes, or it is unlike the others.
    const Word* pack(NSMenuItem* item);
    // An object with the same fields, and with a submenu that has the same fields. The caller owns
    // it. Call this at most once for a packed item.
    NSMenuItem* unpack(const Word* packed) const;
    // An object with the same fields that owns nothing. The next call changes it.
    NSMenuItem* stand_in(const Word* packed);
    // Frees what the packed item refers to, instead of unpack().
    void drop(const Word* packed) const;
    // The item's modifier keys. Its key equivalent is empty.
    NSUInteger modifiers(const Word* packed) const;
    AlternateFields fields(const Word* packed) const;

  private:
    static constexpr size_t most_words = 32;

    // An object whose fields most others of its class share.
    struct Kind {
        Class owner;
        size_t size;  // in bytes
        Word words[most_words];
        uint32_t owned;  // a bit for each word that an object releases when it goes
        uint32_t held;   // those of them that an object with the kind's own words has to release
    };
    // How an object is packed.
    struct Plan {
        const Word* words;  // the object's; its class, in the first word, is the kind's
        size_t size;        // in bytes
        size_t left_out;    // the place of a word that is packed elsewhere; 0: none
        size_t kind;
        uint32_t places;  // a bit for each word that differs from the kind's

        Word word(size_t place) const;
    };

    bool plan(id object, size_t left_out, Plan* plan);
    static bool compare(const Kind& kind, Plan* plan);
    static Kind kind_of(const Plan& plan);
    static bool names_either(const Plan& plan, id item, id submenu);
    void release_fields(const Word*& packed) const;
    void write(const Plan& plan, Word mark);
    void fill_both(const Word* packed, id* item, id* submenu) const;
    void fill(const Word*& packed, id* object) const;
    Word* make_room();
    Word field(const Word* packed, size_t place) const;

    std::vector<Kind> kinds_;
    std::vector<std::unique_ptr<Word[]>> blocks_;
    size_t used_ = 0, room_ = 0;     // words of the last block
    id item_ = nil, submenu_ = nil;  // stand-ins, made on first need
};
