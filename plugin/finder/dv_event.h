// Building events that ask the Finder to do something with a list of files. Failures are printed.
// Main thread.
#pragma once

#include <Carbon/Carbon.h>

struct dv_tree_t;

// Owns a descriptor.
class dv_desc_t {
  public:
    dv_desc_t() { AEInitializeDesc(&desc_); }
    ~dv_desc_t() { AEDisposeDesc(&desc_); }
    dv_desc_t(const dv_desc_t&) = delete;
    dv_desc_t& operator=(const dv_desc_t&) = delete;

    AEDesc* get() { return &desc_; }

  private:
    AEDesc desc_;
};

// Makes an event of the core suite, addressed to the Finder. False on failure.
bool dv_create_core_event(AEEventID id, AppleEvent* event);

// Makes an alias descriptor for the element's own file.
enum dv_alias_result_t { DV_ALIAS_OK, DV_ALIAS_NO_HANDLE, DV_ALIAS_NO_DESC };
dv_alias_result_t dv_make_alias_desc(const FSRef* ref, AEDesc* desc, OSErr* error);

// Appends an alias for the element's own file. An element without an alias is left out.
void dv_append_alias(const dv_tree_t* elem, AEDescList* list);

// Adds the items and the answer about files with the same names to the event, and sends it.
void dv_send_items(AppleEvent* event, AEKeyword keyword, const AEDescList* items, Boolean replace);
