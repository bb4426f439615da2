// Replaces a method of the toolkit during a test.
#pragma once

#include <objc/runtime.h>

namespace test {

class ReplacedMethod {
  public:
    // Replaces an instance method, unless `owner` is a metaclass. The method must exist.
    template <typename Function>
    ReplacedMethod(Class owner, SEL selector, Function* function)
        : method_(class_getInstanceMethod(owner, selector)),
          before_(method_setImplementation(method_, reinterpret_cast<IMP>(function))) {}
    ~ReplacedMethod() { method_setImplementation(method_, before_); }
    ReplacedMethod(const ReplacedMethod&) = delete;
    ReplacedMethod& operator=(const ReplacedMethod&) = delete;

    // The original method.
    IMP before() const { return before_; }

  private:
    Method method_;
    IMP before_;
};

}  // namespace test
