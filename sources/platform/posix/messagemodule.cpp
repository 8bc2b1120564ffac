// SPDX-License-Identifier: MIT
// Message modules, read by a reader of our own.
#include "platform/messagemodule.h"

#include "platform/posix/filepath.h"
#include "platform/posix/messagefile.h"
#include "platform/posix/readfile.h"

namespace treevault {
namespace {

constexpr uint32_t FileNotFound = 2;

// No texts of messages are as long as this; what is longer is not read at all.
constexpr size_t LargestFile = 16u << 20;

std::string PathOfModule(const WideText& path) {
    std::string native = NativePath(path);
    const size_t name = native.rfind('/') + 1; // 0 for none
    if (native.find('.', name) == native.npos)
        native += ".dll";
    return native;
}

} // namespace

bool MessageModule::Load(const WideText& path, uint32_t& error) {
    std::string bytes;
    std::unique_ptr<MessageFile> file;
    if (ReadOrdinaryFile(PathOfModule(path).c_str(), LargestFile, bytes))
        file = MessageFile::Parse(std::move(bytes));
    if (!file)
        error = FileNotFound;
    Content = file.release();
    return Content != nullptr;
}

void MessageModule::Release() noexcept {
    delete static_cast<MessageFile*>(std::exchange(Content, nullptr));
}

bool MessageModule::ReadText(uint32_t id, WideText& text) const {
    return Content && static_cast<const MessageFile*>(Content)->ReadText(id, text);
}

} // namespace treevault
