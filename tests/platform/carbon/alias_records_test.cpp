#include <Carbon/Carbon.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <string.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "support/temp_folder.h"

namespace {

FSRef reference(const std::string& path) {
    FSRef ref = {};
    EXPECT_EQ(FSPathMakeRef(reinterpret_cast<const UInt8*>(path.c_str()), &ref, nullptr), noErr);
    return ref;
}

std::string path_of(const FSRef& ref) {
    char path[PATH_MAX] = "";
    FSRefMakePath(&ref, reinterpret_cast<UInt8*>(path), sizeof path);
    return path;
}

class AliasRecords : public testing::Test {
  protected:
    ~AliasRecords() override { DisposeHandle(handle()); }

    Handle handle() const { return reinterpret_cast<Handle>(alias_); }
    void make(const std::string& path) {
        const FSRef ref = reference(path);
        DisposeHandle(handle());
        ASSERT_EQ(FSNewAliasMinimal(&ref, &alias_), noErr);
    }
    AEDesc desc() const {
        AEDesc made;
        EXPECT_EQ(AECreateDesc(typeAlias, *handle(), GetHandleSize(handle()), &made), noErr);
        return made;
    }
    // Reads the address as a handler does.
    static std::string url_of(const AEDesc& desc) {
        AEDesc url;
        if (AECoerceDesc(&desc, typeFileURL, &url) != noErr) return "";
        std::string text(static_cast<size_t>(AEGetDescDataSize(&url)), '\0');
        AEGetDescData(&url, text.data(), static_cast<Size>(text.size()));
        AEDisposeDesc(&url);
        return text;
    }

    test::TempFolder folder_;
    AliasHandle alias_ = nullptr;
};

}  // namespace

TEST_F(AliasRecords, LeadToTheFile) {
    for (const char* name : {"plain", "-rf", "a\nb", "not utf8 \xff"}) {
        const std::string path = folder_.file(name);
        make(path);
        FSRef ref;
        Boolean changed = true;
        EXPECT_EQ(FSResolveAlias(nullptr, alias_, &ref, &changed), noErr);
        EXPECT_EQ(path_of(ref), path);
        EXPECT_FALSE(changed);
    }
}

TEST_F(AliasRecords, LeadToALinkItself) {
    folder_.file("target");
    make(folder_.link("link", "target"));
    FSRef ref;
    EXPECT_EQ(FSResolveAlias(nullptr, alias_, &ref, nullptr), noErr);
    EXPECT_EQ(path_of(ref), folder_.path("link"));
}

TEST_F(AliasRecords, ReportAFileThatIsGoneAndFindItWhenItIsBack) {
    make(folder_.file("a"));
    unlink(folder_.path("a").c_str());
    FSRef ref;
    EXPECT_EQ(FSResolveAlias(nullptr, alias_, &ref, nullptr), fnfErr);
    folder_.file("a");
    EXPECT_EQ(FSResolveAlias(nullptr, alias_, &ref, nullptr), noErr);
}

TEST_F(AliasRecords, OutliveTheReferenceThatTheyWereMadeOf) {
    const std::string path = folder_.file("a");
    make(path);
    for (int i = 0; i < 5000; i++) reference(folder_.path());
    FSRef ref;
    EXPECT_EQ(FSResolveAlias(nullptr, alias_, &ref, nullptr), noErr);
    EXPECT_EQ(path_of(ref), path);
}

TEST_F(AliasRecords, AreMadeOfFilesThatAreThere) {
    const FSRef ref = reference(folder_.file("a"));
    unlink(folder_.path("a").c_str());
    AliasHandle alias = reinterpret_cast<AliasHandle>(1);
    EXPECT_EQ(FSNewAliasMinimal(&ref, &alias), fnfErr);
    EXPECT_EQ(alias, nullptr);
    EXPECT_EQ(FSNewAliasMinimal(&ref, nullptr), paramErr);
    EXPECT_EQ(FSNewAliasMinimal(nullptr, &alias), paramErr);
}

TEST_F(AliasRecords, HoldPathsOfAnyLength) {
    std::string path = folder_.path();
    while (path.size() < 3600) {
        path += "/" + std::string(200, 'd');
        folder_.folder(path.substr(folder_.path().size() + 1));
    }
    make(path);
    FSRef ref;
    EXPECT_EQ(FSResolveAlias(nullptr, alias_, &ref, nullptr), noErr);
    EXPECT_EQ(path_of(ref), path);
}

TEST_F(AliasRecords, CoerceToReferencesAndBack) {
    const std::string path = folder_.file("a");
    make(path);
    AEDesc alias = desc(), file, again;
    ASSERT_EQ(AECoerceDesc(&alias, typeFSRef, &file), noErr);
    FSRef ref;
    AEGetDescData(&file, &ref, sizeof ref);
    EXPECT_EQ(path_of(ref), path);
    ASSERT_EQ(AECoerceDesc(&file, typeAlias, &again), noErr);
    EXPECT_EQ(AEGetDescDataSize(&again), GetHandleSize(handle()));
    EXPECT_EQ(url_of(again), "file://" + path);
    for (AEDesc* made : {&alias, &file, &again}) AEDisposeDesc(made);
}

TEST_F(AliasRecords, OfFilesThatAreGoneCoerceToUrlsAlone) {
    make(folder_.file("a b\xff"));
    unlink(folder_.path("a b\xff").c_str());
    AEDesc alias = desc(), file;
    EXPECT_EQ(AECoerceDesc(&alias, typeFSRef, &file), fnfErr);
    EXPECT_EQ(file.descriptorType, static_cast<DescType>(typeNull));
    EXPECT_EQ(url_of(alias), "file://" + folder_.path() + "/a%20b%FF");
    AEDisposeDesc(&alias);
}

TEST_F(AliasRecords, BytesThatAreNoneLeadNowhere) {
    make(folder_.file("a"));
    std::vector<char> good(*handle(), *handle() + GetHandleSize(handle()));
    std::vector<std::vector<char>> bad = {{}, {0, 0, 0, 0, 0, 6}, good, good, good};
    bad[2].pop_back();
    bad[3][6] = 'x';  // no absolute path
    bad[4].back() = '\0';
    for (const std::vector<char>& bytes : bad) {
        AEDesc alias, file;
        AECreateDesc(typeAlias, bytes.data(), static_cast<Size>(bytes.size()), &alias);
        EXPECT_EQ(AECoerceDesc(&alias, typeFSRef, &file), errAECoercionFail);
        EXPECT_EQ(url_of(alias), "");
        AEDisposeDesc(&alias);
    }
}

TEST_F(AliasRecords, OtherTypesAreNoFiles) {
    const SInt32 number = 5;
    AEDesc desc, result;
    AECreateDesc(typeSInt32, &number, sizeof number, &desc);
    for (const DescType type : {typeFSRef, typeAlias, typeFileURL}) {
        EXPECT_EQ(AECoerceDesc(&desc, type, &result), errAECoercionFail);
    }
    AEDisposeDesc(&desc);
    EXPECT_EQ(AECoerceDesc(&desc, typeAlias, &result), errAECoercionFail);
    EXPECT_EQ(AECoerceDesc(nullptr, typeAlias, &result), paramErr);
}

TEST(Handles, HaveTheirSize) {
    Handle handle = NewHandleClear(3);
    EXPECT_EQ(GetHandleSize(handle), 3);
    EXPECT_EQ(memcmp(*handle, "\0\0\0", 3), 0);
    DisposeHandle(handle);
    EXPECT_EQ(NewHandleClear(-1), nullptr);
    EXPECT_EQ(GetHandleSize(nullptr), 0);
    DisposeHandle(nullptr);
}
