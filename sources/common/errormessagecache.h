// SPDX-License-Identifier: MIT
// Texts that were found for codes, kept for the life of the process.
#ifndef TREEVAULT_COMMON_ERRORMESSAGECACHE_H
#define TREEVAULT_COMMON_ERRORMESSAGECACHE_H

#include "platform/readerwriterlock.h"
#include "platform/widetext.h"

#include <cstdint>
#include <map>

namespace treevault {

// Any thread may use any operation. Nothing is ever removed.
class ErrorMessageCache {
public:
    // False, with `text` untouched, for a code without a text.
    bool Find(uint32_t code, WideText& text) const;

    // A text that is there already stays.
    void Insert(uint32_t code, const WideText& text);

private:
    mutable ReaderWriterLock Lock; // guards Texts
    std::map<uint32_t, WideText> Texts;
};

} // namespace treevault

#endif
