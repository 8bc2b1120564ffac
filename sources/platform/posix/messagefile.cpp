// SPDX-License-Identifier: MIT
// Parsing of message tables, and the form that their texts get.
#include "platform/posix/messagefile.h"

#include <algorithm>

namespace treevault {
namespace {

constexpr uint32_t MessageTableType = 11;
constexpr uint32_t MessageTableName = 1;

struct BlockHeader {
    uint32_t First, Last, Offset;
};

struct EntryHeader {
    uint16_t Length; // of header and text
    uint16_t Kind;
};
constexpr uint16_t NarrowText = 0;
constexpr uint16_t WideTextKind = 1;

// The neutral language, English as in the United States, English, any.
int RankOfLanguage(const LanguageResource& table) noexcept {
    const uint32_t language = table.Language;
    return language == 0 ? 0 : language == 0x409 ? 1 : (language & 0x3FF) == 9 ? 2 : 3;
}

bool IsSound(const EntryHeader& entry) noexcept {
    if (entry.Length < sizeof entry)
        return false;
    return entry.Kind == NarrowText || (entry.Kind == WideTextKind && entry.Length % 2 == 0);
}

// The text up to a zero or to its end. What is narrow has ASCII, or Latin 1.
WideText DecodeText(std::string_view bytes, uint16_t kind) {
    const size_t width = kind == NarrowText ? 1 : 2;
    WideText text(bytes.size() / width, 0);
    for (size_t i = 0; i < text.size(); ++i) {
        const auto low = static_cast<uint8_t>(bytes[i * width]);
        const auto high = width == 2 ? static_cast<uint8_t>(bytes[i * width + 1]) : uint8_t{0};
        text[i] = static_cast<WCHAR>(low | high << 8);
    }
    return text.substr(0, text.find(WCHAR{0}));
}

// What Windows makes of a text whose inserts are not filled in: each line end is of two characters,
// "%n", "%r" and "%t" are what they stand for, and "%0" is the end.
WideText FormText(WideView raw) {
    WideText text;
    for (size_t i = 0; i < raw.size(); ++i) {
        const WCHAR next = i + 1 < raw.size() ? raw[i + 1] : WCHAR{0};
        if (raw[i] == TV_W('\r') || raw[i] == TV_W('\n')) {
            text += TV_W("\r\n");
            i += raw[i] == TV_W('\r') && next == TV_W('\n') ? 1 : 0;
        } else if (raw[i] != TV_W('%') || i + 1 == raw.size()) {
            text += raw[i];
        } else if (next == TV_W('0')) {
            break;
        } else {
            ++i;
            if (next == TV_W('n'))
                text += TV_W("\r\n");
            else if (next == TV_W('r'))
                text += TV_W('\r');
            else if (next == TV_W('t'))
                text += TV_W('\t');
            else
                text.append({TV_W('%'), next});
        }
    }
    return text;
}

} // namespace

std::unique_ptr<MessageFile> MessageFile::Parse(std::string bytes) {
    std::unique_ptr<MessageFile> file(new MessageFile(std::move(bytes)));
    if (!file->ReadTables())
        file.reset();
    return file;
}

bool MessageFile::ReadTables() {
    std::vector<LanguageResource> tables;
    if (!ReadResources(ByteView(Bytes), MessageTableType, MessageTableName, tables))
        return false;
    EntriesLeft = Bytes.size() / sizeof(EntryHeader);
    std::ranges::stable_sort(tables, {}, RankOfLanguage);
    return std::ranges::all_of(tables,
                               [this](const LanguageResource& t) { return ReadTable(t.Content); });
}

bool MessageFile::ReadTable(ByteView table) {
    uint32_t count = 0;
    if (!table.Read(0, count))
        return false;
    for (uint64_t i = 0; i < count; ++i) {
        BlockHeader header;
        if (!table.Read(sizeof count + i * sizeof header, header) || header.Last < header.First ||
            header.Offset > table.Size())
            return false;
        Block block = {header.First, header.Last, {}};
        table.Slice(header.Offset, table.Size() - header.Offset, block.Entries);
        if (!CheckEntries(block))
            return false;
        Blocks.push_back(block);
    }
    return true;
}

bool MessageFile::CheckEntries(const Block& block) {
    uint64_t at = 0;
    for (uint64_t id = block.First; id <= block.Last; ++id) {
        EntryHeader entry;
        ByteView content;
        if (EntriesLeft == 0 || !block.Entries.Read(at, entry) || !IsSound(entry) ||
            !block.Entries.Slice(at, entry.Length, content))
            return false;
        --EntriesLeft;
        at += entry.Length;
    }
    return true;
}

bool MessageFile::ReadText(uint32_t id, WideText& text) const {
    for (const Block& block : Blocks) {
        if (id < block.First || id > block.Last)
            continue;
        uint64_t at = 0;
        EntryHeader entry = {};
        block.Entries.Read(at, entry);
        for (uint32_t skipped = block.First; skipped < id; ++skipped) {
            at += entry.Length;
            block.Entries.Read(at, entry);
        }
        ByteView content;
        block.Entries.Slice(at + sizeof entry, entry.Length - sizeof entry, content);
        WideText found = FormText(DecodeText(content.Text(), entry.Kind));
        if (found.empty())
            continue;
        text = std::move(found);
        return true;
    }
    return false;
}

} // namespace treevault
