// The functions that stand before the run time's own, which find classes by the address of a name.
#include <Foundation/Foundation.h>

#include <dlfcn.h>
#include <objc/runtime.h>
#include <string.h>

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

TEST(ClassNames, AreLookedUpHereForAllLibraries) {
    Dl_info place = {};
    for (const char* name : {"objc_getClass", "objc_lookUpClass"}) {
        ASSERT_NE(0, dladdr(dlsym(RTLD_DEFAULT, name), &place)) << name;
        EXPECT_TRUE(strstr(place.dli_fname, "class_names_test")) << name << " " << place.dli_fname;
    }
    EXPECT_EQ([NSString class], NSClassFromString(@"NSString"));
}

TEST(ClassNames, AnAddressMayHoldOneNameAfterTheOther) {
    char name[32];
    for (int round = 0; round < 2; round++) {
        strcpy(name, "NSString");
        EXPECT_EQ([NSString class], objc_getClass(name));
        strcpy(name, "NSArray");
        EXPECT_EQ([NSArray class], objc_lookUpClass(name));
        strcpy(name, "NSArrayOfNobody");
        EXPECT_EQ(Nil, objc_lookUpClass(name));
    }
    EXPECT_EQ(Nil, objc_getClass(nullptr));
}

TEST(ClassNames, AClassThatComesLaterIsFound) {
    static const char name[] = "ClassThatComesLater";
    EXPECT_EQ(Nil, objc_lookUpClass(name));
    const Class made = objc_allocateClassPair([NSObject class], name, 0);
    ASSERT_TRUE(made);
    EXPECT_EQ(Nil, objc_lookUpClass(name));
    objc_registerClassPair(made);
    EXPECT_EQ(made, objc_lookUpClass(name));
    EXPECT_EQ(made, NSClassFromString(@"ClassThatComesLater"));
}

// There are more addresses than places.
TEST(ClassNames, NamesThatShareAPlaceAreToldApart) {
    std::vector<std::string> names(20000, std::string(40, '\0'));
    for (size_t i = 0; i < names.size(); i++) {
        const bool is_string = i % 2;
        names[i] = is_string ? "NSString" : "NSArray";
        names[i].reserve(40);
        EXPECT_EQ(is_string ? [NSString class] : [NSArray class],
                  objc_lookUpClass(names[i].c_str()));
    }
}

}  // namespace
