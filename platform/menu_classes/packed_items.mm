#include "menu_classes/packed_items.h"

#include <objc/runtime.h>
#include <string.h>

#include <algorithm>
#include <bit>
#include <initializer_list>

#include "menu_classes/menu_storage.h"
#include "menu_classes/spare_objects.h"
#include "objc/last_class.h"

namespace {

using Word = PackedItems::Word;

constexpr size_t least_block_words = 2048, most_block_words = 1 << 16, most_kinds = 16;
// An item differs from its kind in its title, its image and what its class adds.
constexpr int most_differences = 4;
// An item and its submenu, each with its first word.
constexpr size_t longest_item = 2 * (1 + most_differences);

// The first word of a packed object holds its kind, the places of the words that follow, and
// whether a submenu comes after these.
constexpr int places_shift = 8;
constexpr Word kind_mask = 0xff, submenu_mark = Word(1) << 40;

uint32_t places_in(Word head) { return static_cast<uint32_t>(head >> places_shift); }

size_t offset_of(Class owner, const char* field) {
    return static_cast<size_t>(ivar_getOffset(class_getInstanceVariable(owner, field)));
}

size_t place_of(Class owner, const char* field) { return offset_of(owner, field) / sizeof(Word); }

// A bit for each place.
uint32_t places_of(Class owner, std::initializer_list<const char*> fields) {
    uint32_t places = 0;
    for (const char* field : fields) places |= uint32_t(1) << place_of(owner, field);
    return places;
}

// Where GNUstep's classes have their fields.
struct Places {
    Class item = [NSMenuItem class], menu = [NSMenu class];
    size_t submenu = place_of(item, "_submenu");
    size_t modifiers = place_of(item, "_keyEquivalentModifierMask");
    size_t title = place_of(item, "_title"), image = place_of(item, "_image");
    size_t enabled = place_of(item, "_enabled");
    // Of the byte within its word.
    unsigned enabled_shift = 8 * (offset_of(item, "_enabled") % sizeof(Word));
    // What an object releases when it goes. A menu that is packed has no more than these.
    uint32_t owned_by_item =
        places_of(item, {"_title", "_keyEquivalent", "_image", "_onStateImage", "_offStateImage",
                         "_mixedStateImage", "_representedObject", "_toolTip"});
    uint32_t owned_by_menu = places_of(menu, {"_title", "_items", "_name"});
};

const Places& places_of_fields() {
    static const Places places;
    return places;
}

// Releasing such an object does nothing: a string that was compiled, as most keys and many titles
// are, and the array of menus without items.
bool stays_for_ever(id object) {
    static const Class compiled = object_getClass(@"");
    return object_getClass(object) == compiled || is_array_of_no_items(object);
}

void release(Word field) {
    if (field) [reinterpret_cast<id>(field) release];
}

// An object whose class does something when it goes may have told others where it is. C++ fields
// are constructed when an object comes and destroyed when it goes.
bool goes_silently(Class owner, Class stock) {
    static const SEL construct_fields = sel_registerName(".cxx_construct");
    static const SEL destroy_fields = sel_registerName(".cxx_destruct");
    const SEL deallocate = @selector(dealloc);
    if (class_respondsToSelector(owner, construct_fields)) return false;
    if (class_respondsToSelector(owner, destroy_fields)) return false;
    return class_getMethodImplementation(owner, deallocate) ==
           class_getMethodImplementation(stock, deallocate);
}

bool is_silent(NSMenu* menu) {
    static LastClass known;
    return known.fits(
        menu, [&] { return goes_silently(object_getClass(menu), places_of_fields().menu); });
}

bool is_silent(NSMenuItem* item) {
    static LastClass known;
    return known.fits(
        item, [&] { return goes_silently(object_getClass(item), places_of_fields().item); });
}

bool is_held_once(id object) { return NSExtraRefCount(object) == 0; }

bool is_unseen(NSMenu* menu) { return is_held_once(menu) && is_untouched(menu) && is_silent(menu); }

bool is_unseen_alternate(NSMenuItem* item, NSMenu* submenu) {
    if (![item isAlternate] || !is_held_once(item) || [[item keyEquivalent] length]) return false;
    if (has_extras(item) || !is_silent(item)) return false;
    return !submenu || is_unseen(submenu);
}

}  // namespace

PackedItems::~PackedItems() {
    if (item_) NSDeallocateObject(item_);
    if (submenu_) NSDeallocateObject(submenu_);
}

const Word* PackedItems::pack(NSMenuItem* item) {
    NSMenu* const submenu = [item submenu];
    if (!is_unseen_alternate(item, submenu)) return nullptr;
    Plan of_item, of_submenu;
    if (!plan(item, places_of_fields().submenu, &of_item)) return nullptr;
    if (submenu && !plan(submenu, 0, &of_submenu)) return nullptr;
    // Whoever is named without being held, as a target is, has to stay where it is.
    if (names_either(of_item, item, submenu)) return nullptr;
    if (submenu && names_either(of_submenu, item, submenu)) return nullptr;
    const Word* const packed = make_room();
    write(of_item, submenu ? submenu_mark : 0);
    if (submenu) write(of_submenu, 0);
    // What the fields refer to belongs to the packed item now.
    if (submenu) keep_spare_menu(submenu);
    keep_spare_item(item);
    return packed;
}

NSMenuItem* PackedItems::unpack(const Word* packed) const {
    id item = nil, submenu = nil;
    fill_both(packed, &item, &submenu);
    return item;
}

NSMenuItem* PackedItems::stand_in(const Word* packed) {
    fill_both(packed, &item_, &submenu_);
    return item_;
}

void PackedItems::drop(const Word* packed) const {
    const bool has_submenu = *packed & submenu_mark;
    release_fields(packed);
    if (has_submenu) release_fields(packed);
}

// Goes on to the next packed object.
void PackedItems::release_fields(const Word*& packed) const {
    const Word head = *packed++;
    const Kind& kind = kinds_[head & kind_mask];
    for (uint32_t places = places_in(head); places; places &= places - 1) {
        if (kind.owned & places & -places) release(*packed);
        packed++;
    }
    for (uint32_t shared = kind.held & ~places_in(head); shared; shared &= shared - 1) {
        release(kind.words[std::countr_zero(shared)]);
    }
}

// A field of the item itself.
Word PackedItems::field(const Word* packed, size_t place) const {
    const uint32_t places = places_in(*packed), bit = uint32_t(1) << place;
    if (!(places & bit)) return kinds_[*packed & kind_mask].words[place];
    return packed[1 + std::popcount(places & (bit - 1))];
}

NSUInteger PackedItems::modifiers(const Word* packed) const {
    return field(packed, places_of_fields().modifiers);
}

AlternateFields PackedItems::fields(const Word* packed) const {
    const Places& places = places_of_fields();
    const Word enabled = field(packed, places.enabled) >> places.enabled_shift;
    return {.title = reinterpret_cast<NSString*>(field(packed, places.title)),
            .modifiers = modifiers(packed),
            .is_enabled = (enabled & 0xff) != 0,
            .has_image = field(packed, places.image) != 0,
            .has_submenu = (*packed & submenu_mark) != 0};
}

// The last word of an object may be incomplete.
Word PackedItems::Plan::word(size_t place) const {
    const size_t offset = place * sizeof(Word);
    if (offset + sizeof(Word) <= size) return words[place];
    Word last = 0;
    memcpy(&last, words + place, size - offset);
    return last;
}

bool PackedItems::plan(id object, size_t left_out, Plan* plan) {
    const Class owner = object_getClass(object);
    *plan = {reinterpret_cast<const Word*>(object), class_getInstanceSize(owner), left_out, 0, 0};
    if (plan->size > most_words * sizeof(Word)) return false;
    for (const Kind& kind : kinds_) {
        if (kind.owner == owner && compare(kind, plan)) return true;
        plan->kind++;
    }
    if (kinds_.size() == most_kinds) return false;
    plan->places = 0;
    kinds_.push_back(kind_of(*plan));
    return true;
}

PackedItems::Kind PackedItems::kind_of(const Plan& plan) {
    const Places& places = places_of_fields();
    Kind kind = {
        object_getClass(reinterpret_cast<id>(const_cast<Word*>(plan.words))), plan.size, {}, 0, 0};
    memcpy(kind.words, plan.words, plan.size);
    kind.words[0] = kind.words[plan.left_out] = 0;
    kind.owned = plan.left_out ? places.owned_by_item : places.owned_by_menu;
    for (uint32_t owned = kind.owned; owned; owned &= owned - 1) {
        const Word word = kind.words[std::countr_zero(owned)];
        if (word && !stays_for_ever(reinterpret_cast<id>(word))) kind.held |= owned & -owned;
    }
    return kind;
}

// Whether the object differs little from its kind. This runs for each word of each alternate, so it
// has no branches within an object.
bool PackedItems::compare(const Kind& kind, Plan* plan) {
    const size_t whole = kind.size / sizeof(Word);
    uint32_t places = 0;
    for (size_t place = 1; place < whole; place++) {
        places |= uint32_t(plan->words[place] != kind.words[place]) << place;
    }
    if (kind.size % sizeof(Word)) {
        places |= uint32_t(plan->word(whole) != kind.words[whole]) << whole;
    }
    plan->places = places & ~(uint32_t(1) << plan->left_out);
    return std::popcount(plan->places) <= most_differences;
}

// Whether a field is the item or its submenu, if it has one.
bool PackedItems::names_either(const Plan& plan, id item, id submenu) {
    const Word first = reinterpret_cast<Word>(item);
    const Word second = submenu ? reinterpret_cast<Word>(submenu) : first;
    const size_t whole = plan.size / sizeof(Word);
    unsigned found = 0;
    for (size_t place = 1; place < whole; place++) {
        found += unsigned(plan.words[place] == first) | unsigned(plan.words[place] == second);
    }
    // The item's own field for its submenu is the one that may name it.
    return found > (plan.left_out && submenu ? 1U : 0U);
}

// Each block is as large as all before it: the allocator puts its free pieces in order, which takes
// long, whenever somebody asks for a block.
Word* PackedItems::make_room() {
    if (room_ - used_ < longest_item) {
        room_ = std::clamp(2 * room_, least_block_words, most_block_words);
        blocks_.emplace_back(new Word[room_]);
        used_ = 0;
    }
    return blocks_.back().get() + used_;
}

void PackedItems::write(const Plan& plan, Word mark) {
    Word* const block = blocks_.back().get();
    block[used_++] = plan.kind | Word(plan.places) << places_shift | mark;
    for (uint32_t places = plan.places; places; places &= places - 1) {
        block[used_++] = plan.word(static_cast<size_t>(std::countr_zero(places)));
    }
}

void PackedItems::fill_both(const Word* packed, id* item, id* submenu) const {
    const bool has_submenu = *packed & submenu_mark;
    fill(packed, item);
    if (!has_submenu) return;
    fill(packed, submenu);
    memcpy(reinterpret_cast<Word*>(*item) + places_of_fields().submenu, submenu, sizeof *submenu);
}

// Makes the object, unless there is one of its class.
void PackedItems::fill(const Word*& packed, id* object) const {
    const Word head = *packed++;
    const Kind& kind = kinds_[head & kind_mask];
    if (*object && object_getClass(*object) != kind.owner) {
        NSDeallocateObject(*object);
        *object = nil;
    }
    if (!*object) *object = NSAllocateObject(kind.owner, 0, NSDefaultMallocZone());
    Word* const words = reinterpret_cast<Word*>(*object);
    memcpy(words + 1, kind.words + 1, kind.size - sizeof(Word));
    for (uint32_t places = places_in(head); places; places &= places - 1) {
        const auto place = static_cast<size_t>(std::countr_zero(places));
        memcpy(words + place, packed++, std::min(sizeof(Word), kind.size - place * sizeof(Word)));
    }
}
