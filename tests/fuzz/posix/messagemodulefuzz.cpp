// SPDX-License-Identifier: MIT
// Any bytes as a message module: it is refused, or has texts of which each lies in it. The entry is
// that of libFuzzer; the first byte chooses what the others are: a file, its resources, or its
// message table.
#include "platform/posix/messagefile.h"

#include "support/messagefiles.h"

#include <cstdio>
#include <cstdlib>

namespace {

using namespace treevault;
using namespace treevault::tests;

void Require(bool holds, const char* what) {
    if (holds)
        return;
    std::fprintf(stderr, "broken: %s\n", what);
    std::abort();
}

std::string MakeFile(uint8_t kind, const std::string& bytes) {
    switch (kind % 3) {
    case 0:
        return bytes;
    case 1:
        return MakeImage(bytes, kind & 8 ? ImageKind::Pe32 : ImageKind::Pe32Plus);
    default:
        return MakeModule({{0x409, bytes}});
    }
}

void Ask(const MessageFile& file, uint32_t id, size_t limit) {
    const WideText untouched = TV_W("untouched");
    WideText text = untouched;
    if (!file.ReadText(id, text)) {
        Require(text == untouched, "a text without a message");
        return;
    }
    Require(!text.empty() && text.size() < limit, "the length of a text");
    Require(text.find(WCHAR{0}) == text.npos, "a zero in a text");
    WideText again;
    Require(file.ReadText(id, again) && again == text, "the text that comes again");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0)
        return 0;
    const std::string bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
    const std::string whole = MakeFile(data[0], bytes);
    const auto file = MessageFile::Parse(whole);
    if (!file)
        return 0;
    // Any four bytes may be the number of a message.
    for (size_t at = 0; at + 4 <= bytes.size(); at += 2) {
        uint32_t id = 0;
        std::memcpy(&id, bytes.data() + at, sizeof id);
        for (const uint32_t near : {id - 1, id, id + 1})
            Ask(*file, near, 2 * whole.size()); // a line end may take two characters
    }
    return 0;
}
