// SPDX-License-Identifier: MIT
// Loading of message modules.
#include "common/messagemodules.h"

#include "common/settings.h"
#include "platform/process.h"

#include <algorithm>
#include <atomic>
#include <mutex>
#include <new>

namespace treevault {

namespace {

// The parts between any of ",|;", the empty ones left out.
std::vector<WideText> SplitFileList(WideView list) {
    std::vector<WideText> items;
    while (!list.empty()) {
        const size_t end = std::min(list.find_first_of(TV_W(",|;")), list.size());
        if (end != 0)
            items.emplace_back(list.substr(0, end));
        list.remove_prefix(std::min(end + 1, list.size()));
    }
    return items;
}

WideText LibraryFolder() {
    ModulePlace place;
    return LibraryPlace(place) ? place.Directory : ExecutablePlace().Directory;
}

} // namespace

ErrorModuleSet::~ErrorModuleSet() {
    for (Slots* slots : {&Primary, &Fallback})
        for (MessageModule& module : *slots)
            module.Release();
}

bool ReadModuleText(const ErrorModuleSet::Slots& slots, uint32_t id, WideText& text) {
    return std::ranges::any_of(
        slots, [&](const MessageModule& module) { return module.ReadText(id, text); });
}

void ErrorModuleLoader::Load() noexcept {
    try {
        LoadPrimary();
        LoadFallback();
    } catch (const HRX& failure) {
        End = failure.Code;
    } catch (const std::bad_alloc&) {
        End = E_OUTOFMEMORY;
    }
}

// What is named without a folder lies beside the library.
void ErrorModuleLoader::LoadPrimary() {
    const WideText list =
        GetStringSetting(TV_W("ErrorHandling"), TV_W("MessageFile"), TV_W("BaseErrorMessages.dll"));
    const WideText folder = LibraryFolder();
    for (const WideText& item : SplitFileList(list)) {
        const bool bare = item.find_first_of(TV_W("\\/")) == item.npos;
        LoadItem(Set.Primary, item, bare ? folder + item : item);
    }
}

void ErrorModuleLoader::LoadFallback() {
    const WideText list =
        GetStringSetting(TV_W("ErrorHandling"), TV_W("FallbackMessageFile"), TV_W(""));
    for (const WideText& item : SplitFileList(list))
        LoadItem(Set.Fallback, item, item);
}

void ErrorModuleLoader::LoadItem(ErrorModuleSet::Slots& slots, const WideText& item,
                                 const WideText& path) {
    MessageModule module;
    uint32_t error = 0;
    if (!module.Load(path, error)) {
        Complaints.push_back({item, HRX(HresultFromWin32(error))});
        return;
    }
    const auto slot = std::ranges::find_if_not(slots, &MessageModule::IsLoaded);
    if (slot == slots.end())
        Complaints.push_back({item, std::nullopt});
    else
        *slot = std::move(module);
}

void ErrorModuleLoader::WriteLines() const noexcept {
    for (const Complaint& complaint : Complaints)
        Log(SeverityErr, [&](WideStream& line) {
            line << TV_W("Loading errormsg module '") << complaint.Item << TV_W("' failed: ");
            if (complaint.Failure)
                AppendErrorText(line, *complaint.Failure);
            else
                line << TV_W("No more slots");
        });
    if (FAILED(End))
        Log(SeverityErr, [&](WideStream& line) {
            line << TV_W("Loading error message module(s) failed: ") << End;
        });
}

namespace {

// What is needed from the first to the last moment of the library is constant-initialized.
constinit ErrorModuleSet processModules;

enum class State { NotLoaded, Loaded, Unloading };
constinit std::atomic<State> state{State::NotLoaded};
constinit std::atomic<uint32_t> loadingThread{0};

struct ModulesEnd {
    ~ModulesEnd() { state = State::Unloading; }
};
const ModulesEnd modulesEnd; // ends before the set does

void LoadOnce(ErrorModuleLoader& loader) {
    static std::mutex loading;
    const std::lock_guard guard(loading);
    if (state != State::NotLoaded)
        return;
    loadingThread = CurrentThreadId();
    loader.Load();
    loadingThread = 0;
    state.store(State::Loaded, std::memory_order_release);
}

} // namespace

bool IsLoadingErrorModules() noexcept {
    return loadingThread.load(std::memory_order_relaxed) == CurrentThreadId();
}

const ErrorModuleSet* GetErrorModuleSet() {
    if (state.load(std::memory_order_acquire) == State::NotLoaded) {
        if (IsLoadingErrorModules())
            return nullptr;
        const KeptErrorRecord record;
        ErrorModuleLoader loader(processModules);
        LoadOnce(loader);
        // Only now: whoever receives a line may wait for locks whose holders wait for the set.
        loader.WriteLines();
    }
    return state.load(std::memory_order_acquire) == State::Loaded ? &processModules : nullptr;
}

} // namespace treevault
