// SPDX-License-Identifier: MIT
// A sink that holds each group against its frame. What it keeps is not atomic on purpose: the calls
// of one storage come one after the other.
#ifndef TREEVAULT_TESTS_STRESS_STRESSSINK_H
#define TREEVAULT_TESTS_STRESS_STRESSSINK_H

#include "threads.h"

#include "support/storage.h"

namespace treevault::tests {

// Lives on the stack, and may be registered and removed from any thread.
class StressSink : public IModifySink {
public:
    StressSink() = default;
    StressSink(const StressSink&) = delete;
    StressSink& operator=(const StressSink&) = delete;

    uint32_t TREEVAULT_CALL AddRef() override { return ++References; }
    uint32_t TREEVAULT_CALL Release() override { return --References; }
    HRESULT TREEVAULT_CALL QueryInterface(const GUID*, void**) override { return E_NOINTERFACE; }
    HRESULT TREEVAULT_CALL OnStart() override { return S_OK; }
    HRESULT TREEVAULT_CALL OnModified(const ModifyNotification*) override { return S_OK; }
    HRESULT TREEVAULT_CALL OnPreCommit() override { return S_OK; }
    void TREEVAULT_CALL OnFinish(int32_t) override {}

    std::atomic<uint32_t> References{1};

protected:
    ~StressSink() = default;
};

// Registered for as long as it lives.
class Registration {
public:
    Registration(INodeStorage* storage, IModifySink& sink)
        : Registry(Query<IModifySinkRegistry>(storage, IID_IModifySinkRegistry)) {
        EXPECT_EQ(S_OK, Registry->RegisterSink(&sink, &Id));
    }
    ~Registration() { EXPECT_EQ(S_OK, Registry->UnregisterSink(&Id)); }
    Registration(const Registration&) = delete;
    Registration& operator=(const Registration&) = delete;

private:
    Handle<IModifySinkRegistry> Registry;
    GUID Id = {};
};

// Expects of each group: its calls come on one thread and nobody else's come between; a start, then
// changes of one root alone, then the end. A group that a sink runs inside of another one has a
// frame of its own inside of that.
class FrameSink : public StressSink {
public:
    HRESULT TREEVAULT_CALL OnStart() override {
        if (Frames.empty())
            Thread = std::this_thread::get_id();
        EXPECT_EQ(Thread, std::this_thread::get_id());
        Frames.emplace_back();
        return S_OK;
    }
    HRESULT TREEVAULT_CALL OnModified(const ModifyNotification* told) override {
        Frame& frame = Inside();
        EXPECT_FALSE(frame.IsChecked);
        const std::string path = Plain(told->Path);
        const std::string root = path.substr(0, path.find('/', 1));
        if (frame.Changes++ == 0)
            frame.Root = root;
        EXPECT_EQ(frame.Root, root);
        return S_OK;
    }
    HRESULT TREEVAULT_CALL OnPreCommit() override {
        EXPECT_FALSE(std::exchange(Inside().IsChecked, true));
        return S_OK;
    }
    void TREEVAULT_CALL OnFinish(int32_t result) override {
        const Frame frame = Inside();
        Frames.pop_back();
        if (result == 1) {
            EXPECT_TRUE(frame.IsChecked);
            ++Successes;
            OnGroup(frame.Root, frame.Changes);
        } else {
            ++Failures;
        }
    }

    bool IsBetweenGroups() const { return Frames.empty(); }

    int Successes = 0;
    int Failures = 0;

protected:
    ~FrameSink() = default;

    // A group that succeeded, by the root that it changed and the number of notifications.
    virtual void OnGroup(const std::string& root, int changes) = 0;

private:
    struct Frame {
        std::string Root;
        int Changes = 0;
        bool IsChecked = false;
    };

    Frame& Inside() {
        EXPECT_FALSE(Frames.empty()) << "a call outside of any group";
        EXPECT_EQ(Thread, std::this_thread::get_id());
        if (Frames.empty())
            Frames.emplace_back();
        return Frames.back();
    }

    std::vector<Frame> Frames;
    std::thread::id Thread;
};

} // namespace treevault::tests

#endif
