#pragma once

#include <objc/objc.h>

extern "C" {

typedef struct objc_method* Method;

id objc_getClass(const char* name);
Method class_getInstanceMethod(Class cls, SEL name);
Method class_getClassMethod(Class cls, SEL name);
BOOL class_addMethod(Class cls, SEL name, IMP implementation, const char* types);
IMP method_getImplementation(Method method);
const char* method_getTypeEncoding(Method method);
void method_exchangeImplementations(Method first, Method second);
}
