// Apple Events into the host's handlers, and into the trace of events: parameters and attributes of
// any type.
//
// In texts of the input the byte 1 stands for a folder with a file, a folder and links.
#import <Foundation/Foundation.h>

#include <Carbon/Carbon.h>
#include <host/process.h>

#include <filesystem>

#include "carbon/apple_event_handlers.h"
#include "finderkit/event_trace.h"
#include "finderkit/file_operations.h"
#include "finderkit/finder_events.h"
#include "finderkit/open_problems.h"
#include "input.h"
#include "require.h"
#include "scratch.h"

using fuzz::Input;
using fuzz::require;
using operations::Kind;

namespace {

bool is_whole_path(const std::string& path) {
    return path.starts_with('/') && path.find('\0') == path.npos;
}

// As a request has them.
bool is_plain_path(const std::string& path) {
    return is_whole_path(path) && (path.size() == 1 || !path.ends_with('/'));
}

struct CheckingCarrier : operations::Carrier {
    void carry_out(operations::Request request,
                   std::shared_ptr<operations::Observer> observer) override {
        require(!observer, "the observer that the service made");
        require(!request.sources.empty(), "something to do");
        for (const std::string& source : request.sources) {
            require(is_plain_path(source), "a source's path");
        }
        require(request.kind == Kind::Trash || is_plain_path(request.destination),
                "a destination's path");
    }
};

// The last one has no handler.
constexpr struct {
    AEEventClass event_class;
    AEEventID event_id;
} event_kinds[] = {{kCoreEventClass, kAEOpenDocuments},
                   {kAECoreSuite, kAEMove},
                   {kAECoreSuite, kAEClone},
                   {kAECoreSuite, kAECreateElement},
                   {kAECoreSuite, kAEDelete},
                   {kAECoreSuite, kAEOpenDocuments}};
constexpr AEKeyword keywords[] = {keyDirectObject, keyAEInsertHere,  keyAETo,
                                  keyAEReplacing,  keyAEObjectClass, pName};
constexpr DescType types[] = {typeNull,        typeBoolean,  typeSInt16,  typeSInt32, typeUInt32,
                              typeSInt64,      typeType,     typeChar,    typeFSRef,  typeAlias,
                              typeUnicodeText, typeUTF8Text, typeFileURL, typeAEList, 'what'};

template <typename Array>
auto one_of(const Array& all, Input& input) {
    return all[input.byte() % std::size(all)];
}

std::string text_from(Input& input) {
    std::string text;
    for (const char byte : input.word()) {
        if (byte == 1) {
            text += fuzz::scratch();
        } else {
            text += byte;
        }
    }
    return text;
}

AEDesc plain(DescType type, const void* data, size_t size) {
    AEDesc desc = {typeNull, nullptr};
    AECreateDesc(type, data, static_cast<Size>(size), &desc);
    return desc;
}

AEDesc text_desc(DescType type, const std::string& text) {
    return plain(type, text.data(), text.size());
}

AEDesc file_desc(const std::string& path) {
    FSRef ref;
    if (FSPathMakeRef(reinterpret_cast<const UInt8*>(path.c_str()), &ref, nullptr) != noErr) {
        return {typeNull, nullptr};
    }
    return plain(typeFSRef, &ref, sizeof ref);
}

AEDesc alias_desc(const std::string& path) {
    const size_t size = path.size() + 6;
    const char sizes[] = {static_cast<char>(size >> 8), static_cast<char>(size)};
    return text_desc(typeAlias, std::string(4, '\0') + std::string(sizes, 2) + path);
}

AEDesc desc_from(Input& input, int depth);

AEDesc compound_from(Input& input, int depth, bool is_record) {
    AEDesc all = {typeNull, nullptr};
    AECreateList(nullptr, 0, is_record, &all);
    for (int count = input.byte() % 5; count > 0; count--) {
        const AEKeyword keyword = one_of(keywords, input);
        AEDesc item = desc_from(input, depth + 1);
        if (is_record) {
            AEPutParamDesc(&all, keyword, &item);
        } else {
            AEPutDesc(&all, 0, &item);
        }
        AEDisposeDesc(&item);
    }
    return all;
}

AEDesc desc_from(Input& input, int depth) {
    if (depth > 4) return {typeNull, nullptr};
    switch (input.byte() % 8) {
        case 0:
            return file_desc(text_from(input));
        case 1:
            return alias_desc(text_from(input));
        case 2:
            return text_desc(typeFileURL, "file://" + text_from(input));
        case 3:
            return text_desc(typeType, input.text(4));
        case 4:
            return compound_from(input, depth, false);
        case 5:
            return compound_from(input, depth, true);
        default: {
            const DescType type = one_of(types, input);
            return text_desc(type, input.text(input.byte() % 96));
        }
    }
}

AppleEvent event_from(Input& input) {
    const auto [event_class, event_id] = one_of(event_kinds, input);
    AEDesc address = desc_from(input, 0);
    AppleEvent event = {typeNull, nullptr};
    AECreateAppleEvent(event_class, event_id, &address, kAutoGenerateReturnID, kAnyTransactionID,
                       &event);
    AEDisposeDesc(&address);
    while (input.left() > 0) {
        const AEKeyword keyword = one_of(keywords, input);
        AEDesc parameter = desc_from(input, 0);
        AEPutParamDesc(&event, keyword, &parameter);
        AEDisposeDesc(&parameter);
    }
    return event;
}

// The folder stays, because nothing here changes files.
bool prepare() {
    const std::string top = fuzz::scratch();
    fuzz::write_file(top + "/a", "text");
    std::filesystem::create_directory(top + "/d");
    std::filesystem::create_symlink("d", top + "/l");
    std::filesystem::create_symlink("o", top + "/o");
    setenv("DELVIO_TRACE", "/dev/null", 1);
    std::string problem;
    require(answer_finder_events(&problem), "a trace");
    set_file_operation_service({std::make_shared<CheckingCarrier>(), [](const auto&) {
                                    return std::shared_ptr<operations::Observer>();
                                }});
    return true;
}

}  // namespace

bool open_picked_file(const std::string& path) {
    require(is_whole_path(path), "the path of a file that is opened");
    return path.size() % 2 == 0;
}

// Events are handled at once here, so none waits.
Boolean apple_events_are_waiting() { return false; }

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const bool is_ready = prepare();
    (void)is_ready;
    Input input(data, size);
    @autoreleasepool {
        AppleEvent event = event_from(input);
        const std::string told = describe_event(event);
        require(told.ends_with('\n'), "whole lines");
        events::handle(*events::value_of(&event));
        AEDisposeDesc(&event);
    }
    return 0;
}
