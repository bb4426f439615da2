// An answer about classes, remembered for the class that was asked about last. Nearly all objects
// of a menu are of one class, and the run time takes long to answer. Main thread.
#pragma once

#include <objc/runtime.h>

class LastClass {
  public:
    // Whether the class of the object fits; `question` says so, and is called for another class
    // than the last one. Nil fits nothing.
    template <typename Question>
    bool fits(id object, Question question) {
        return class_fits(object_getClass(object), question);
    }
    template <typename Question>
    bool class_fits(Class owner, Question question) {
        if (owner == last_) return fits_;
        fits_ = question();
        last_ = owner;
        return fits_;
    }

  private:
    Class last_ = nil;
    bool fits_ = false;
};
