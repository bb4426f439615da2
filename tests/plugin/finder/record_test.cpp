#include "finder/dv_record.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <string>

#include "plugin/finder/carbon_trouble.h"

namespace {

struct Record {
    Record(int32_t number, const char* name) : desc(dv_make_AE_record(number, name)) {}
    ~Record() {
        AEDisposeDesc(desc);
        free(desc);
    }
    long count() const {
        long count = -1;
        AECountItems(desc, &count);
        return count;
    }
    int32_t number() const {
        int32_t number = 0;
        DescType type = 0;
        Size size = 0;
        EXPECT_EQ(AEGetKeyPtr(desc, 'cmcd', typeWildCard, &type, &number, sizeof number, &size),
                  noErr);
        EXPECT_EQ(type, 0x6C6F6E67u);  // long
        EXPECT_EQ(size, 4);
        return number;
    }
    std::u16string name() const {
        char16_t text[2000] = {};
        DescType type = 0;
        Size size = 0;
        EXPECT_EQ(AEGetKeyPtr(desc, 0x706E616D, typeWildCard, &type, text, sizeof text, &size),
                  noErr);              // pnam
        EXPECT_EQ(type, 0x75747874u);  // utxt
        return std::u16string(text, static_cast<size_t>(size) / 2);
    }
    AERecord* desc;
};

}  // namespace

TEST(EventRecord, HoldsTheNameAndTheNumber) {
    const Record record(-5, "name");
    EXPECT_EQ(record.desc->descriptorType, DescType{typeAERecord});
    EXPECT_EQ(record.count(), 2);
    EXPECT_EQ(record.name(), u"name");
    EXPECT_EQ(record.number(), -5);
}

TEST(EventRecord, HoldsNamesOfAnyScriptAndLength) {
    EXPECT_EQ(Record(1, "na\u00efve \U0001F600").name(), u"na\u00efve \U0001F600");
    EXPECT_EQ(Record(1, "").name(), u"");
    EXPECT_EQ(Record(1, std::string(1900, 'x').c_str()).name(), std::u16string(1900, u'x'));
}

TEST(EventRecord, HoldsTheNumberAloneWhereTheNameIsNotUtf8) {
    const Record record(7, "bad\xff");
    EXPECT_EQ(record.count(), 1);
    EXPECT_EQ(record.number(), 7);
}

TEST(EventRecord, ThatCannotBeMadeIsNull) {
    test::carbon_trouble = test::failing("AECreateList", memFullErr);
    AERecord* record = dv_make_AE_record(1, "name");
    test::carbon_trouble = nullptr;
    EXPECT_EQ(record, nullptr);
}
