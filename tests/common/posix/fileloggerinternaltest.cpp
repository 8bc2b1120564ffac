// SPDX-License-Identifier: MIT
// The log file where Linux has dangers of its own: full disks, limits, signals and pipes.
#include "common/filelogger.h"

#include "support/logfiles.h"
#include "support/settingsource.h"
#include "support/temporaryfolder.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace treevault {
namespace {

using namespace tests;
using Reported = std::vector<std::string>;

class LinuxLogFile : public testing::Test {
protected:
    const TemporaryFolder Folder;
    const std::filesystem::path Path = Folder.Path / "x.log";
    TestSource Settings;
    ReportCapture Reports;
};

TEST_F(LinuxLogFile, OnAFullDiskIsReported) {
    FileLogger logger(TV_W("\\dev\\full"), TV_W(""));
    logger.Write(TV_W("a"), -1);
    logger.Write(TV_W("b"), -1);
    EXPECT_EQ((Reported{"FileLogger: cannot write (error: 0x80070070)\n",
                        "FileLogger: cannot write (error: 0x80070070)\n"}),
              Reports.Take());
}

TEST_F(LinuxLogFile, WhoseBannerDoesNotFitIsReported) {
    FileLogger logger(TV_W("\\dev\\full"), TV_W("B"));
    logger.Write(TV_W("a"), -1);
    EXPECT_EQ((Reported{"FileLogger: cannot open log file '\\dev\\full' (error: 0x80070070)\n",
                        "FileLogger: cannot write (error: 0x80070070)\n"}),
              Reports.Take());
}

// A limit on the size of the files of this process while it lives.
class SizeLimit {
public:
    explicit SizeLimit(rlim_t size) {
        getrlimit(RLIMIT_FSIZE, &Before);
        const rlimit limit{size, Before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~SizeLimit() { setrlimit(RLIMIT_FSIZE, &Before); }
    SizeLimit(const SizeLimit&) = delete;
    SizeLimit& operator=(const SizeLimit&) = delete;

private:
    rlimit Before;
};

TEST_F(LinuxLogFile, AtTheLimitOfTheProcessHarmsNobody) {
    static volatile std::sig_atomic_t raised = 0;
    raised = 0;
    const auto before = std::signal(SIGXFSZ, [](int) { raised = 1; });
    {
        const SizeLimit limit(8);
        FileLogger logger(TextOfPath(Path), TV_W("B"));
        logger.Write(TV_W("abc"), -1);
        logger.Write(TV_W("d"), -1);
    }
    EXPECT_EQ(0, raised) << "the host's handler is for its own files";
    EXPECT_EQ("Babc", ReadLog(Path));
    EXPECT_EQ((Reported{"FileLogger: cannot write (error: 0x800700df)\n"}), Reports.Take());
    std::signal(SIGXFSZ, SIG_DFL);
    {
        const SizeLimit limit(4);
        FileLogger logger(TextOfPath(Folder.Path / "y.log"), TV_W(""));
        logger.Write(TV_W("abc"), -1);
    }
    EXPECT_EQ("ab", ReadLog(Folder.Path / "y.log"));
    std::signal(SIGXFSZ, before);
}

TEST_F(LinuxLogFile, DoesNotTakeASignalThatWaits) {
    sigset_t set, before;
    sigemptyset(&set);
    sigaddset(&set, SIGXFSZ);
    pthread_sigmask(SIG_BLOCK, &set, &before);
    raise(SIGXFSZ);
    {
        const SizeLimit limit(2);
        FileLogger logger(TextOfPath(Path), TV_W(""));
        logger.Write(TV_W("abc"), -1);
    }
    const timespec now{};
    EXPECT_EQ(SIGXFSZ, sigtimedwait(&set, nullptr, &now));
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

TEST_F(LinuxLogFile, IsNoPipe) {
    mkfifo(Path.c_str(), 0600);
    const int reader = open(Path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    FileLogger logger(TextOfPath(Path), TV_W(""));
    logger.Write(TV_W("a"), -1);
    EXPECT_EQ((Reported{"FileLogger: cannot open log file '" + Path.string() +
                        "' (error: 0x80070005)\n"}),
              Reports.Take());
    close(reader);
    Settings.Set(TV_W("KeepOpenInterval"), TV_W("0"));
    logger.Write(TV_W("b"), -1);
    EXPECT_EQ(1u, Reports.Take().size()) << "and nobody waits for a reader";
}

TEST_F(LinuxLogFile, LeavesTheErrorNumberAlone) {
    FileLogger logger(TextOfPath(Folder.Path / "none" / "x.log"), TV_W(""));
    errno = EILSEQ;
    logger.Write(TV_W("a"), -1);
    EXPECT_EQ(EILSEQ, errno);
    EXPECT_EQ(1u, Reports.Take().size());
}

TEST_F(LinuxLogFile, TakesThePlaceOfNoStandardStream) {
    const int kept = fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 10);
    close(STDIN_FILENO);
    FileLogger logger(TextOfPath(Path), TV_W(""));
    logger.Write(TV_W("a"), -1);
    EXPECT_EQ(-1, fcntl(STDIN_FILENO, F_GETFD));
    EXPECT_EQ("a", ReadLog(Path));
    if (kept >= 0) {
        dup2(kept, STDIN_FILENO);
        close(kept);
    }
}

TEST_F(LinuxLogFile, IsNotPassedToChildren) {
    FileLogger logger(TextOfPath(Path), TV_W(""));
    logger.Write(TV_W("a"), -1);
    const auto wanted = std::filesystem::canonical(Path);
    int found = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code closed;
        if (std::filesystem::read_symlink(entry, closed) != wanted)
            continue;
        ++found;
        EXPECT_EQ(FD_CLOEXEC, fcntl(std::stoi(entry.path().filename()), F_GETFD));
    }
    EXPECT_EQ(1, found);
}

TEST_F(LinuxLogFile, BehindALinkIsMade) {
    const auto target = Folder.Path / "target.log";
    std::filesystem::create_symlink(target, Path);
    FileLogger logger(TextOfPath(Path), TV_W("B"));
    logger.Write(TV_W("a"), -1);
    EXPECT_EQ("Ba", ReadLog(target));
}

} // namespace
} // namespace treevault
