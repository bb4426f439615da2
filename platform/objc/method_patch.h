// Replaces methods of classes that are not ours while the library loads.
#pragma once

#include <objc/objc.h>
#include <objc/runtime.h>

// A new implementation for an existing instance method, the class's own or inherited; with
// `on_class`, for a class method. `original` receives the implementation that is replaced, and may
// be null.
struct MethodPatch {
    const char* class_name;
    const char* selector;
    IMP implementation;
    IMP* original;
    bool on_class = false;
};

// Installs `count` patches, and leaves out classes and methods that do not exist. It initializes no
// class, so it may run while libraries still load.
void patch_methods(const MethodPatch* patches, unsigned count);

template <unsigned count>
void patch_methods(const MethodPatch (&patches)[count]) {
    patch_methods(patches, count);
}

// Gives a method of the class, or metaclass, another implementation. For a class that nobody has
// used yet, GNU's run time would write it into the table that all such classes share: the first
// message of that name to any of them would go there, and the class would never be initialized.
void set_implementation(Class owner, Method method, IMP implementation);

// Whether the class, or metaclass, itself has this method. Copies no list, because the answer is
// needed of every class.
bool has_method(Class owner, Method method);

// Rebuilds the dispatch table of a class, or metaclass, and of all classes that inherit from it:
// GNU's run time leaves inherited implementations in them when a method's implementation changes.
void refresh_dispatch(Class owner);
