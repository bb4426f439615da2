#include <Carbon/Carbon.h>
#include <gtest/gtest.h>
#include <string.h>
#include <unistd.h>

#include <string>

#include "platform/carbon/file_questions.h"
#include "support/heap.h"
#include "support/temp_folder.h"

using test::memory_in_use;
using test::path_of;
using test::reference;

namespace {

// Disposes of itself.
struct Desc : AEDesc {
    Desc() { AEInitializeDesc(this); }
    explicit Desc(const std::string& text) {
        const Size size = static_cast<Size>(text.size());
        EXPECT_EQ(AECreateDesc(typeChar, text.data(), size, this), noErr);
    }
    ~Desc() { AEDisposeDesc(this); }
    Desc(const Desc&) = delete;
    Desc& operator=(const Desc&) = delete;
};

struct List : Desc {
    explicit List(bool is_record = false) {
        EXPECT_EQ(AECreateList(nullptr, 0, is_record, this), noErr);
    }
    long count() const {
        long count = -1;
        EXPECT_EQ(AECountItems(this, &count), noErr);
        return count;
    }
};

struct Record : List {
    Record() : List(true) {}
};

std::string text_of(const AEDesc& desc) {
    std::string text(static_cast<size_t>(AEGetDescDataSize(&desc)), '\0');
    EXPECT_EQ(AEGetDescData(&desc, text.data(), static_cast<Size>(text.size())), noErr);
    return text;
}

std::string nth_text(const AEDesc& list, long index) {
    Desc item;
    const OSErr error = AEGetNthDesc(&list, index, typeChar, nullptr, &item);
    return error == noErr ? text_of(item) : std::to_string(error);
}

std::string param_text(const AEDesc& record, AEKeyword keyword) {
    Desc field;
    const OSErr error = AEGetParamDesc(&record, keyword, typeChar, &field);
    return error == noErr ? text_of(field) : std::to_string(error);
}

bool is_null(const AEDesc& desc) { return desc.descriptorType == typeNull && !desc.dataHandle; }

void create_event(const char* signature, AppleEvent* event,
                  AEReturnID return_id = kAutoGenerateReturnID) {
    Desc target;
    EXPECT_EQ(AECreateDesc(typeApplSignature, signature, 4, &target), noErr);
    EXPECT_EQ(AECreateAppleEvent(kCoreEventClass, kAEOpenDocuments, &target, return_id,
                                 kAnyTransactionID, event),
              noErr);
}

template <typename Plain>
Plain attribute(const AppleEvent& event, AEKeyword keyword, DescType type) {
    Plain plain = {};
    Size size = 0;
    EXPECT_EQ(AEGetAttributePtr(&event, keyword, type, nullptr, &plain, sizeof plain, &size),
              noErr);
    EXPECT_EQ(size, static_cast<Size>(sizeof plain));
    return plain;
}

}  // namespace

TEST(Descriptors, HoldACopyOfTheData) {
    char text[] = "text";
    Desc desc;
    ASSERT_EQ(AECreateDesc(typeChar, text, 4, &desc), noErr);
    memset(text, 'x', 4);
    EXPECT_EQ(desc.descriptorType, DescType{typeChar});
    EXPECT_EQ(AEGetDescDataSize(&desc), 4);
    EXPECT_EQ(text_of(desc), "text");
}

TEST(Descriptors, GiveNoMoreThanIsAskedFor) {
    const Desc desc("text");
    char text[] = "....";
    EXPECT_EQ(AEGetDescData(&desc, text, 2), noErr);
    EXPECT_STREQ(text, "te..");
    EXPECT_EQ(AEGetDescData(&desc, text, 0), noErr);
    EXPECT_EQ(AEGetDescData(&desc, nullptr, 4), paramErr);
}

TEST(Descriptors, MayHoldNoBytes) {
    Desc desc;
    EXPECT_EQ(AECreateDesc(typeChar, nullptr, 0, &desc), noErr);
    EXPECT_EQ(AEGetDescDataSize(&desc), 0);
    EXPECT_EQ(text_of(desc), "");
}

TEST(Descriptors, AreNotMadeOfNothing) {
    Desc desc("before");
    AEDisposeDesc(&desc);
    EXPECT_EQ(AECreateDesc(typeChar, nullptr, 4, &desc), paramErr);
    EXPECT_EQ(AECreateDesc(typeChar, "text", -1, &desc), paramErr);
    EXPECT_EQ(AECreateDesc(typeAEList, "text", 4, &desc), paramErr);
    EXPECT_EQ(AECreateDesc(typeChar, "text", 4, nullptr), paramErr);
    EXPECT_TRUE(is_null(desc));
}

TEST(Descriptors, AreNullAfterDisposal) {
    Desc desc("text");
    EXPECT_EQ(AEDisposeDesc(&desc), noErr);
    EXPECT_TRUE(is_null(desc));
    EXPECT_EQ(AEDisposeDesc(&desc), noErr);
    EXPECT_EQ(AEGetDescDataSize(&desc), 0);
    EXPECT_EQ(AEDisposeDesc(nullptr), paramErr);
}

TEST(Descriptors, DuplicatesAreApart) {
    Desc copy;
    {
        List list;
        const Desc item("item");
        AEPutDesc(&list, 0, &item);
        ASSERT_EQ(AEDuplicateDesc(&list, &copy), noErr);
        AEPutDesc(&list, 0, &item);
    }
    long count = 0;
    EXPECT_EQ(AECountItems(&copy, &count), noErr);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(nth_text(copy, 1), "item");
}

TEST(Descriptors, TheDuplicateOfNullIsNull) {
    Desc null, copy;
    EXPECT_EQ(AEDuplicateDesc(&null, &copy), noErr);
    EXPECT_TRUE(is_null(copy));
}

TEST(Lists, KeepTheOrderInWhichItemsAreAdded) {
    List list;
    EXPECT_EQ(list.count(), 0);
    EXPECT_EQ(AEPutPtr(&list, 0, typeChar, "a", 1), noErr);
    const Desc b("b");
    EXPECT_EQ(AEPutDesc(&list, 0, &b), noErr);
    EXPECT_EQ(AEPutPtr(&list, 3, typeChar, "c", 1), noErr);
    EXPECT_EQ(list.count(), 3);
    EXPECT_EQ(nth_text(list, 1) + nth_text(list, 2) + nth_text(list, 3), "abc");
}

TEST(Lists, AnItemIsReplacedAtItsIndex) {
    List list;
    AEPutPtr(&list, 0, typeChar, "a", 1);
    AEPutPtr(&list, 0, typeChar, "b", 1);
    EXPECT_EQ(AEPutPtr(&list, 1, typeChar, "c", 1), noErr);
    EXPECT_EQ(list.count(), 2);
    EXPECT_EQ(nth_text(list, 1) + nth_text(list, 2), "cb");
}

TEST(Lists, HaveNoHoles) {
    List list;
    EXPECT_EQ(AEPutPtr(&list, 2, typeChar, "a", 1), errAEIllegalIndex);
    EXPECT_EQ(AEPutPtr(&list, -1, typeChar, "a", 1), errAEIllegalIndex);
    EXPECT_EQ(list.count(), 0);
    Desc item;
    EXPECT_EQ(AEGetNthDesc(&list, 1, typeWildCard, nullptr, &item), errAEDescNotFound);
    EXPECT_EQ(AEGetNthDesc(&list, 0, typeWildCard, nullptr, &item), errAEIllegalIndex);
    EXPECT_TRUE(is_null(item));
}

TEST(Lists, GiveTheBytesOfAnItemAndItsWholeSize) {
    List list;
    AEPutPtr(&list, 0, typeChar, "item", 4);
    char text[] = "....";
    Size size = 0;
    DescType type = 0;
    AEKeyword keyword = 0;
    EXPECT_EQ(AEGetNthPtr(&list, 1, typeWildCard, &keyword, &type, text, 2, &size), noErr);
    EXPECT_STREQ(text, "it..");
    EXPECT_EQ(size, 4);
    EXPECT_EQ(type, DescType{typeChar});
    EXPECT_EQ(keyword, AEKeyword{typeWildCard});
}

TEST(Lists, HoldListsAndRecords) {
    List outer;
    {
        List inner;
        AEPutPtr(&inner, 0, typeChar, "deep", 4);
        Record record;
        AEPutKeyDesc(&record, 'list', &inner);
        AEPutDesc(&outer, 0, &record);
    }
    Desc record, inner;
    ASSERT_EQ(AEGetNthDesc(&outer, 1, typeAERecord, nullptr, &record), noErr);
    ASSERT_EQ(AEGetKeyDesc(&record, 'list', typeAEList, &inner), noErr);
    EXPECT_EQ(nth_text(inner, 1), "deep");
    char byte;
    EXPECT_EQ(AEGetDescData(&outer, &byte, 1), errAEWrongDataType);
    EXPECT_EQ(AEGetDescDataSize(&outer), 0);
    EXPECT_EQ(AEGetNthPtr(&outer, 1, typeWildCard, nullptr, nullptr, &byte, 1, nullptr),
              errAEWrongDataType);
}

TEST(Lists, MayHoldACopyOfThemselves) {
    List list;
    AEPutPtr(&list, 0, typeChar, "a", 1);
    EXPECT_EQ(AEPutDesc(&list, 0, &list), noErr);
    Desc inner;
    EXPECT_EQ(AEGetNthDesc(&list, 2, typeAEList, nullptr, &inner), noErr);
    EXPECT_EQ(nth_text(inner, 1), "a");
}

TEST(Lists, AreNoRecords) {
    List list;
    Record record;
    EXPECT_EQ(AEPutKeyPtr(&list, pName, typeChar, "a", 1), errAEWrongDataType);
    EXPECT_EQ(AEPutPtr(&record, 0, typeChar, "a", 1), errAEWrongDataType);
    Desc plain("plain"), field;
    long count;
    EXPECT_EQ(AECountItems(&plain, &count), errAEWrongDataType);
    EXPECT_EQ(AEPutPtr(&plain, 0, typeChar, "a", 1), errAEWrongDataType);
    EXPECT_EQ(AEGetKeyDesc(&list, pName, typeChar, &field), errAEWrongDataType);
}

TEST(Records, FindTheirFieldsByKeyword) {
    Record record;
    EXPECT_EQ(AEPutKeyPtr(&record, pName, typeChar, "name", 4), noErr);
    EXPECT_EQ(AEPutKeyPtr(&record, 'othr', typeChar, "other", 5), noErr);
    EXPECT_EQ(AEPutKeyPtr(&record, pName, typeChar, "new", 3), noErr);
    EXPECT_EQ(record.count(), 2);
    EXPECT_EQ(param_text(record, pName), "new");
    EXPECT_EQ(param_text(record, 'othr'), "other");
    EXPECT_EQ(param_text(record, 'none'), std::to_string(errAEDescNotFound));
}

TEST(Records, TellTheKeywordsOfTheirFields) {
    Record record;
    AEPutKeyPtr(&record, pName, typeChar, "name", 4);
    AEPutKeyPtr(&record, 'othr', typeChar, "other", 5);
    AEKeyword keyword = 0;
    Desc field;
    EXPECT_EQ(AEGetNthDesc(&record, 2, typeWildCard, &keyword, &field), noErr);
    EXPECT_EQ(keyword, AEKeyword{'othr'});
    EXPECT_EQ(text_of(field), "other");
}

TEST(Coercions, IntegersBecomeOthersThatHoldTheirValue) {
    Record record;
    const SInt16 small = -7;
    const SInt64 large = 1LL << 40;
    AEPutKeyPtr(&record, 'smal', typeSInt16, &small, sizeof small);
    AEPutKeyPtr(&record, 'larg', typeSInt64, &large, sizeof large);
    SInt32 number = 0;
    DescType type = 0;
    EXPECT_EQ(AEGetKeyPtr(&record, 'smal', typeSInt32, &type, &number, sizeof number, nullptr),
              noErr);
    EXPECT_EQ(number, -7);
    EXPECT_EQ(type, DescType{typeSInt32});
    UInt32 natural;
    EXPECT_EQ(AEGetKeyPtr(&record, 'smal', typeUInt32, nullptr, &natural, sizeof natural, nullptr),
              errAECoercionFail);
    EXPECT_EQ(AEGetKeyPtr(&record, 'larg', typeSInt32, nullptr, &number, sizeof number, nullptr),
              errAECoercionFail);
}

TEST(Coercions, AnItemBecomesAListOfOneAndBack) {
    Record record;
    AEPutKeyPtr(&record, keyDirectObject, typeChar, "item", 4);
    Desc list;
    ASSERT_EQ(AEGetKeyDesc(&record, keyDirectObject, typeAEList, &list), noErr);
    EXPECT_EQ(nth_text(list, 1), "item");
    EXPECT_EQ(AEPutKeyDesc(&record, 'list', &list), noErr);
    EXPECT_EQ(param_text(record, 'list'), "item");
    AEPutPtr(&list, 0, typeChar, "second", 6);
    EXPECT_EQ(AEPutKeyDesc(&record, 'list', &list), noErr);
    EXPECT_EQ(param_text(record, 'list'), std::to_string(errAECoercionFail));
}

TEST(Coercions, TextIsNoFile) {
    List list;
    AEPutPtr(&list, 0, typeChar, "/etc", 4);
    FSRef ref;
    EXPECT_EQ(AEGetNthPtr(&list, 1, typeFSRef, nullptr, nullptr, &ref, sizeof ref, nullptr),
              errAECoercionFail);
    Desc desc;
    EXPECT_EQ(AEGetNthDesc(&list, 1, typeFSRef, nullptr, &desc), errAECoercionFail);
    EXPECT_TRUE(is_null(desc));
}

TEST(Events, KnowWhatTheyWereMadeOf) {
    Desc event, address;
    create_event("MACS", &event, 77);
    EXPECT_EQ(event.descriptorType, DescType{typeAppleEvent});
    EXPECT_EQ(attribute<FourCharCode>(event, keyEventClassAttr, typeType), FourCharCode{'aevt'});
    EXPECT_EQ(attribute<FourCharCode>(event, keyEventIDAttr, typeType), FourCharCode{'odoc'});
    EXPECT_EQ(attribute<SInt16>(event, keyReturnIDAttr, typeSInt16), 77);
    EXPECT_EQ(attribute<SInt32>(event, keyTransactionIDAttr, typeSInt32), 0);
    ASSERT_EQ(AEGetAttributeDesc(&event, keyAddressAttr, typeApplSignature, &address), noErr);
    EXPECT_EQ(text_of(address), "MACS");
    Desc none;
    EXPECT_EQ(AEGetAttributeDesc(&event, 'none', typeWildCard, &none), errAEDescNotFound);
}

TEST(Events, GetReturnIDsOfTheirOwn) {
    Desc first, second;
    create_event("MACS", &first);
    create_event("MACS", &second);
    EXPECT_NE(attribute<SInt16>(first, keyReturnIDAttr, typeSInt16),
              attribute<SInt16>(second, keyReturnIDAttr, typeSInt16));
}

TEST(Events, CountTheirParametersAlone) {
    Desc event;
    create_event("MACS", &event);
    long count = -1;
    EXPECT_EQ(AECountItems(&event, &count), noErr);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(AEPutParamPtr(&event, keyDirectObject, typeChar, "a", 1), noErr);
    EXPECT_EQ(AECountItems(&event, &count), noErr);
    EXPECT_EQ(count, 1);
}

TEST(FileReferencesInDescriptors, KeepTheirBytes) {
    test::TempFolder folder;
    const FSRef ref = reference(folder.file("file"));
    Desc desc;
    ASSERT_EQ(AECreateDesc(typeFSRef, &ref, sizeof ref, &desc), noErr);
    EXPECT_EQ(AEGetDescDataSize(&desc), 80);
    FSRef read;
    EXPECT_EQ(AEGetDescData(&desc, &read, sizeof read), noErr);
    EXPECT_EQ(memcmp(&read, &ref, sizeof ref), 0);
}

TEST(FileReferencesInDescriptors, OutliveThousandsOfNewerOnes) {
    test::TempFolder folder;
    const std::string file = folder.file("file");
    Desc event;
    create_event("MACS", &event);
    {
        const FSRef ref = reference(file);
        List list;
        AEPutPtr(&list, 0, typeFSRef, &ref, sizeof ref);
        AEPutParamDesc(&event, keyDirectObject, &list);
        for (int i = 0; i < 5000; i++) reference("/");
        EXPECT_EQ(path_of(ref), "");
    }
    Desc list;
    ASSERT_EQ(AEGetParamDesc(&event, keyDirectObject, typeAEList, &list), noErr);
    FSRef read;
    ASSERT_EQ(AEGetNthPtr(&list, 1, typeFSRef, nullptr, nullptr, &read, sizeof read, nullptr),
              noErr);
    EXPECT_EQ(path_of(read), file);
}

TEST(FileReferencesInDescriptors, OfFilesThatAreGoneAnswerSo) {
    test::TempFolder folder;
    const std::string file = folder.file("file");
    const FSRef ref = reference(file);
    Desc desc;
    AECreateDesc(typeFSRef, &ref, sizeof ref, &desc);
    unlink(file.c_str());
    for (int i = 0; i < 5000; i++) reference("/");
    FSRef read;
    UInt8 path[4096];
    EXPECT_EQ(AEGetDescData(&desc, &read, sizeof read), noErr);
    EXPECT_EQ(FSRefMakePath(&read, path, sizeof path), fnfErr);
}

TEST(Descriptors, LeaveNothingBehind) {
    const auto round = [] {
        Desc event, list_again;
        create_event("MACS", &event);
        List list;
        const Desc item(std::string(1000, 'x'));
        for (int i = 0; i < 10; i++) AEPutDesc(&list, 0, &item);
        AEPutParamDesc(&event, keyDirectObject, &list);
        AEPutParamDesc(&event, keyDirectObject, &list);
        AEGetParamDesc(&event, keyDirectObject, typeAEList, &list_again);
    };
    round();
    const size_t before = memory_in_use();
    for (int i = 0; i < 100; i++) round();
    EXPECT_LT(memory_in_use(), before + 10000);
}
