// SPDX-License-Identifier: MIT
// The message tables of a module.
#ifndef TREEVAULT_PLATFORM_POSIX_MESSAGEFILE_H
#define TREEVAULT_PLATFORM_POSIX_MESSAGEFILE_H

#include "platform/posix/peimage.h"
#include "platform/widetext.h"

#include <memory>
#include <string>
#include <vector>

namespace treevault {

// The tables are checked when the file is parsed, so that a file that is damaged anywhere in them
// is refused as a whole. What may be damaged costs no more than its size.
class MessageFile {
public:
    // Null for what is no sound module. One without messages is sound.
    static std::unique_ptr<MessageFile> Parse(std::string bytes);

    // See MessageModule::ReadText.
    bool ReadText(uint32_t id, WideText& text) const;

private:
    // Messages with consecutive numbers.
    struct Block {
        uint32_t First, Last;
        ByteView Entries; // and what follows them in the table
    };

    explicit MessageFile(std::string bytes) noexcept : Bytes(std::move(bytes)) {}

    bool ReadTables();
    bool ReadTable(ByteView table);
    bool CheckEntries(const Block& block);

    const std::string Bytes;
    std::vector<Block> Blocks; // those of the preferred languages first
    size_t EntriesLeft = 0;    // how many more the bytes can hold, unless they overlap
};

} // namespace treevault

#endif
