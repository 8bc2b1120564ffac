// SPDX-License-Identifier: MIT
// The modules with message texts that the settings name: `MessageFile` those with the texts of the
// library's own codes, `FallbackMessageFile` those that are asked for what nobody else knows.
#ifndef TREEVAULT_COMMON_MESSAGEMODULES_H
#define TREEVAULT_COMMON_MESSAGEMODULES_H

#include "common/errorhandling.h"
#include "platform/messagemodule.h"

#include <array>
#include <optional>
#include <vector>

namespace treevault {

// Filled once, and then read from any thread.
struct ErrorModuleSet {
    using Slots = std::array<MessageModule, 5>; // the loaded ones stand in front

    constexpr ErrorModuleSet() noexcept = default;
    // Releases the modules in the order in which they stand.
    ~ErrorModuleSet();
    ErrorModuleSet(const ErrorModuleSet&) = delete;
    ErrorModuleSet& operator=(const ErrorModuleSet&) = delete;

    Slots Primary, Fallback;
};

// The text of the first module that has the message; false, with `text` untouched, if none has.
bool ReadModuleText(const ErrorModuleSet::Slots& slots, uint32_t id, WideText& text);

// Fills a set, and keeps what went wrong for the log.
class ErrorModuleLoader {
public:
    explicit ErrorModuleLoader(ErrorModuleSet& set) noexcept : Set(set) {}

    // Loads what the settings name. What cannot be loaded is left out. Raises nothing.
    void Load() noexcept;

    // A line for each module that was left out, and one if the loading ended early.
    void WriteLines() const noexcept;

private:
    struct Complaint {
        WideText Item;
        std::optional<HRX> Failure; // nothing when every slot was taken
    };

    void LoadPrimary();
    void LoadFallback();
    void LoadItem(ErrorModuleSet::Slots& slots, const WideText& item, const WideText& path);

    ErrorModuleSet& Set;
    std::vector<Complaint> Complaints;
    HRESULT End = S_OK; // why the loading ended early
};

// The set of the process, loaded at first use; other threads wait meanwhile. Null while the calling
// thread is loading it, and once the library is being unloaded. The thread's error record stays as
// it is.
const ErrorModuleSet* GetErrorModuleSet();

// Whether the calling thread is loading the set.
bool IsLoadingErrorModules() noexcept;

} // namespace treevault

#endif
