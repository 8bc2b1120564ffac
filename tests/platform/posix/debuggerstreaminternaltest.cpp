// SPDX-License-Identifier: MIT
// The debugger stream of Linux: standard error, in whatever state it is.
#include "platform/debuggerstream.h"

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace treevault {
namespace {

// Another descriptor, or none, as standard error while it lives.
class StandardError {
public:
    explicit StandardError(int descriptor) : Before(fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 10)) {
        if (descriptor >= 0)
            dup2(descriptor, STDERR_FILENO);
        else
            close(STDERR_FILENO);
    }
    ~StandardError() {
        dup2(Before, STDERR_FILENO);
        close(Before);
    }
    StandardError(const StandardError&) = delete;
    StandardError& operator=(const StandardError&) = delete;

private:
    int Before;
};

class DebuggerStream : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(0, pipe(Ends.data())); }
    void TearDown() override {
        for (const int end : Ends)
            close(end);
    }

    std::array<int, 2> Ends{};
};

TEST_F(DebuggerStream, IsStandardErrorInUtf8) {
    {
        const StandardError redirected(Ends[1]);
        WriteToDebugger(TV_W("a\x20AC\n"));
    }
    std::array<char, 100> text{};
    EXPECT_EQ(5, read(Ends[0], text.data(), text.size()));
    EXPECT_STREQ("a\xE2\x82\xAC\n", text.data());
}

TEST_F(DebuggerStream, WithoutAReaderHarmsNobody) {
    close(std::exchange(Ends[0], -1));
    const auto before = std::signal(SIGPIPE, SIG_DFL);
    {
        const StandardError redirected(Ends[1]);
        WriteToDebugger(TV_W("a"));
    }
    std::signal(SIGPIPE, before);
}

TEST_F(DebuggerStream, ThatIsClosedHarmsNobody) {
    const StandardError closed(-1);
    WriteToDebugger(TV_W("a"));
}

} // namespace
} // namespace treevault
