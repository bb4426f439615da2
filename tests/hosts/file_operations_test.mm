#include "finderkit/file_operations.h"

#include <Carbon/Carbon.h>
#include <host/process.h>
#import <Foundation/Foundation.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "finderkit/event_trace.h"
#include "finderkit/finder_events.h"
#include "support/temp_folder.h"

namespace {

using operations::Kind;
using operations::Request;
using Paths = std::vector<std::string>;

// Records the requests that it gets.
class Notebook : public operations::Carrier {
  public:
    void carry_out(Request request, std::shared_ptr<operations::Observer> observer) override {
        requests.push_back(std::move(request));
        observers.push_back(observer);
    }
    std::vector<Request> requests;
    std::vector<std::shared_ptr<operations::Observer>> observers;
};

class Deaf : public operations::Observer {
    void ended(const operations::Report&) override {}
};

FSRef reference(const std::string& path) {
    FSRef ref = {};
    EXPECT_EQ(FSPathMakeRef(reinterpret_cast<const UInt8*>(path.c_str()), &ref, nullptr), noErr);
    return ref;
}

class FileOperations : public testing::Test {
  protected:
    FileOperations() {
        declare_process_signature('MACS');
        unsetenv("DELVIO_TRACE");
        EXPECT_TRUE(answer_finder_events(&problem_));
        FileOperationService service;
        service.carrier = notebook_;
        service.observer = [this](const Request&) { return observer_; };
        set_file_operation_service(service);
        AECreateList(nullptr, 0, false, &list_);
    }
    ~FileOperations() override {
        set_file_operation_service({});
        AEDisposeDesc(&list_);
        AEDisposeDesc(&event_);
        declare_process_signature(0);
        [pool_ release];
    }

    void begin(AEEventID id, AEEventClass event_class = kAECoreSuite) {
        const OSType signature = 'MACS';
        AEAddressDesc finder;
        AECreateDesc(typeApplSignature, &signature, sizeof signature, &finder);
        AEDisposeDesc(&event_);
        AECreateAppleEvent(event_class, id, &finder, kAutoGenerateReturnID, kAnyTransactionID,
                           &event_);
        AEDisposeDesc(&finder);
    }
    static AEDesc alias_of(const std::string& path) {
        const FSRef ref = reference(path);
        AliasHandle alias = nullptr;
        AEDesc desc;
        EXPECT_EQ(FSNewAliasMinimal(&ref, &alias), noErr);
        Handle handle = reinterpret_cast<Handle>(alias);
        AECreateDesc(typeAlias, *handle, GetHandleSize(handle), &desc);
        DisposeHandle(handle);
        return desc;
    }
    void add(const std::string& path) {
        AEDesc alias = alias_of(path);
        AEPutDesc(&list_, 0, &alias);
        AEDisposeDesc(&alias);
    }
    void into(const std::string& path) {
        AEDesc alias = alias_of(path);
        AEPutParamDesc(&event_, keyAEInsertHere, &alias);
        AEDisposeDesc(&alias);
    }
    void replace(bool answer) {
        const Boolean byte = answer;
        AEPutParamPtr(&event_, keyAEReplacing, typeBoolean, &byte, sizeof byte);
    }
    void of_class(DescType kind) {
        AEPutParamPtr(&event_, keyAEObjectClass, typeType, &kind, sizeof kind);
    }
    void into_url(const std::string& url) {
        AEPutParamPtr(&event_, keyAEInsertHere, typeFileURL, url.data(),
                      static_cast<Size>(url.size()));
    }
    // The request that the carrier gets for the event, through the run loop.
    std::vector<Request> send(AEKeyword items = keyDirectObject) {
        AEPutParamDesc(&event_, items, &list_);
        notebook_->requests.clear();
        EXPECT_EQ(
            AESend(&event_, nullptr, 0x61, kAENormalPriority, kAEDefaultTimeout, nullptr, nullptr),
            noErr);
        finish_finder_events();
        return notebook_->requests;
    }

    NSAutoreleasePool* pool_ = [NSAutoreleasePool new];
    test::TempFolder folder_;
    std::shared_ptr<Notebook> notebook_ = std::make_shared<Notebook>();
    std::shared_ptr<Deaf> observer_ = std::make_shared<Deaf>();
    std::string problem_;
    AppleEvent event_ = {typeNull, nullptr};
    AEDescList list_;
};

}  // namespace

TEST_F(FileOperations, MoveAndCloneAreMovesAndCopies) {
    const std::string a = folder_.file("a"), b = folder_.folder("b"), to = folder_.folder("to");
    add(a);
    add(b);
    const struct {
        AEEventID id;
        Kind kind;
    } rows[] = {{kAEMove, Kind::Move}, {kAEClone, Kind::Copy}};
    for (const auto& row : rows) {
        for (const bool answer : {false, true}) {
            begin(row.id);
            into(to);
            replace(answer);
            const std::vector<Request> requests = send();
            ASSERT_EQ(requests.size(), 1u);
            EXPECT_EQ(requests[0].kind, row.kind);
            EXPECT_EQ(requests[0].sources, (Paths{a, b}));
            EXPECT_EQ(requests[0].destination, to);
            EXPECT_EQ(requests[0].replace, answer);
        }
    }
    EXPECT_EQ(notebook_->observers.back(), observer_);
}

TEST_F(FileOperations, CreateElementMakesAliasesAlone) {
    const std::string a = folder_.file("a");
    add(a);
    begin(kAECreateElement);
    into(folder_.folder("to"));
    EXPECT_EQ(send(keyAETo).size(), 0u) << "of no class";
    of_class('cfol');
    EXPECT_EQ(send(keyAETo).size(), 0u) << "a folder";
    of_class(typeAlias);
    const std::vector<Request> requests = send(keyAETo);
    ASSERT_EQ(requests.size(), 1u);
    EXPECT_EQ(requests[0].kind, Kind::Alias);
    EXPECT_EQ(requests[0].sources, Paths{a});
    EXPECT_FALSE(requests[0].replace);
}

TEST_F(FileOperations, DeleteTrashesAndNeedsNoDestination) {
    const std::string a = folder_.file("a");
    add(a);
    begin(kAEDelete);
    replace(false);
    const std::vector<Request> requests = send();
    ASSERT_EQ(requests.size(), 1u);
    EXPECT_EQ(requests[0].kind, Kind::Trash);
    EXPECT_EQ(requests[0].sources, Paths{a});
    EXPECT_EQ(requests[0].destination, "");
}

TEST_F(FileOperations, NoFilesAreNothingToDo) {
    begin(kAEMove);
    into(folder_.folder("to"));
    EXPECT_EQ(send().size(), 0u);
}

TEST_F(FileOperations, WithoutADestinationNothingIsMoved) {
    add(folder_.file("a"));
    begin(kAEMove);
    EXPECT_EQ(send().size(), 0u);
}

TEST_F(FileOperations, FilesThatAreGoneKeepTheirPaths) {
    const std::string a = folder_.file("a"), to = folder_.folder("to");
    add(a);
    begin(kAEMove);
    into(to);
    unlink(a.c_str());
    rmdir(to.c_str());
    const std::vector<Request> requests = send();
    ASSERT_EQ(requests.size(), 1u);
    EXPECT_EQ(requests[0].sources, Paths{a});
    EXPECT_EQ(requests[0].destination, to);
}

TEST_F(FileOperations, ADestinationThatIsALinkIsTheFolder) {
    folder_.folder("target/deep");
    folder_.link("link", folder_.path("target/deep"));
    folder_.link("chain", "link");
    add(folder_.link("moved", folder_.path("target")));
    for (const char* name : {"link", "chain"}) {
        begin(kAEMove);
        into(folder_.path(name));
        const std::vector<Request> requests = send();
        ASSERT_EQ(requests.size(), 1u);
        EXPECT_EQ(requests[0].destination, folder_.path("target/deep"));
        EXPECT_EQ(requests[0].sources, Paths{folder_.path("moved")}) << "a source stays a link";
    }
}

TEST_F(FileOperations, TheAddressOfAFolderMayEndInASlash) {
    const std::string to = folder_.folder("to");
    add(folder_.file("a"));
    begin(kAEMove);
    into_url("file://" + to + "//");
    const std::vector<Request> requests = send();
    ASSERT_EQ(requests.size(), 1u);
    EXPECT_EQ(requests[0].destination, to);
}

TEST_F(FileOperations, AnAddressOnAnotherMachineIsNoFolderHere) {
    const std::string to = folder_.folder("to");
    add(folder_.file("a"));
    begin(kAEMove);
    into_url("file://elsewhere" + to);
    EXPECT_EQ(send().size(), 0u);
    into_url("file://localhost" + to);
    EXPECT_EQ(send().size(), 1u);
}

TEST_F(FileOperations, OddNamesAreGivenAsTheyAre) {
    Paths paths;
    for (const std::string& name :
         {std::string("-rf"), std::string("a\nb"), std::string("\xff\xfe"), std::string("100% #?"),
          std::string(255, 'n')}) {
        paths.push_back(folder_.file(name));
        add(paths.back());
    }
    begin(kAEClone);
    into(folder_.folder("to \xff"));
    const std::vector<Request> requests = send();
    ASSERT_EQ(requests.size(), 1u);
    EXPECT_EQ(requests[0].sources, paths);
    EXPECT_EQ(requests[0].destination, folder_.path("to \xff"));
}

TEST_F(FileOperations, FileReferencesDoAsWellAndOneNeedsNoList) {
    const std::string a = folder_.file("a");
    const FSRef ref = reference(a);
    begin(kAEMove);
    into(folder_.folder("to"));
    AEPutParamPtr(&event_, keyDirectObject, typeFSRef, &ref, sizeof ref);
    Request request;
    ASSERT_EQ(read_file_operation(&event_, &request), noErr);
    EXPECT_EQ(request.sources, Paths{a});
}

TEST_F(FileOperations, WhatIsNoFileRefusesTheWholeEvent) {
    add(folder_.file("a"));
    const SInt32 number = 1;
    AEPutPtr(&list_, 0, typeSInt32, &number, sizeof number);
    begin(kAEMove);
    into(folder_.folder("to"));
    EXPECT_EQ(send().size(), 0u);
}

TEST_F(FileOperations, OtherEventsAreNone) {
    Request request;
    begin('dele');
    EXPECT_EQ(read_file_operation(&event_, &request), errAEEventNotHandled);
    begin(kAEMove, 'aevt');
    EXPECT_EQ(read_file_operation(&event_, &request), errAEEventNotHandled);
}

TEST_F(FileOperations, WithoutACarrierNothingIsHandled) {
    set_file_operation_service({});
    add(folder_.file("a"));
    begin(kAEMove);
    into(folder_.folder("to"));
    EXPECT_EQ(answer_file_operation(&event_, nullptr, nullptr), errAEEventNotHandled);
}

TEST_F(FileOperations, AreTracedWithTheirFiles) {
    const std::string a = folder_.file("a"), gone = folder_.file("gone"), to = folder_.folder("to");
    begin(kAECreateElement);
    of_class(typeAlias);
    into(to);
    add(a);
    add(gone);
    unlink(gone.c_str());
    AEPutParamDesc(&event_, keyAETo, &list_);
    replace(true);
    EXPECT_EQ(describe_event(event_), "core/crel to \"MACS\"\n"
                                      "  kocl: type \"alis\"\n"
                                      "  insh: alis \"" +
                                          to +
                                          "\"\n"
                                          "  to  : list of 2\n"
                                          "    alis \"" +
                                          a +
                                          "\"\n"
                                          "    alis (not there)\n"
                                          "  alrp: bool true\n");
}
