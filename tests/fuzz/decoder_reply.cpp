// A decoder's reply, as the host reads it: it may come from a program that a file has taken over.
#include <sys/mman.h>
#include <unistd.h>

#include "input.h"
#include "quicklook/helper_reply.h"
#include "require.h"

using fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace thumbnails;
    fuzz::Input input(data, size);
    const Box box = {input.byte(), input.byte()};
    const std::string reply = input.rest();
    static const int file = memfd_create("reply", MFD_CLOEXEC);
    require(ftruncate(file, 0) == 0 && lseek(file, 0, SEEK_SET) == 0, "an empty file");
    require(write(file, reply.data(), reply.size()) == static_cast<ssize_t>(reply.size()),
            "written");
    lseek(file, 0, SEEK_SET);

    const Answer answer =
        read_answer(file, box, std::chrono::steady_clock::now() + std::chrono::hours(1));
    require(answer.ending == Ending::answered || answer.ending == Ending::broke_off, "an ending");
    const Picture& picture = answer.picture;
    if (answer.ending != Ending::answered) {
        require(!picture, "a broken answer has no picture");
        return 0;
    }
    require(strnlen(answer.reply.type, sizeof answer.reply.type) < sizeof answer.reply.type,
            "the type ends");
    require((answer.reply.outcome == Outcome::picture) == bool(picture),
            "a picture, if it says so");
    if (!picture) return 0;
    require(picture.width <= box.width && picture.height <= box.height, "the picture fits");
    require(picture.pixels.size() == size_t(picture.width) * size_t(picture.height) * 4,
            "all of it");
    return 0;
}
