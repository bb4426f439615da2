// A method of the toolkit that is another for the time of a test.
#pragma once

#include <objc/runtime.h>

namespace test {

class ReplacedMethod {
  public:
    // Of instances, unless `owner` is a metaclass. The method must be there.
    template <typename Function>
    ReplacedMethod(Class owner, SEL selector, Function* function)
        : method_(class_getInstanceMethod(owner, selector)),
          before_(method_setImplementation(method_, reinterpret_cast<IMP>(function))) {}
    ~ReplacedMethod() { method_setImplementation(method_, before_); }
    ReplacedMethod(const ReplacedMethod&) = delete;
    ReplacedMethod& operator=(const ReplacedMethod&) = delete;

    // The method as it was.
    IMP before() const { return before_; }

  private:
    Method method_;
    IMP before_;
};

}  // namespace test
