// SPDX-License-Identifier: MIT
// The usual English texts of the codes that the library raises or that its users are likely to
// meet.
#include "platform/systemmessage.h"

#include <algorithm>
#include <iterator>

namespace treevault {
namespace {

struct Message {
    uint32_t Id;
    WideView Text; // without the line end
};

// In the order of the ids. Win32 codes stand under their own number.
constexpr Message messages[] = {
    {0, TV_W("The operation completed successfully.")},
    {1, TV_W("Incorrect function.")},
    {2, TV_W("The system cannot find the file specified.")},
    {3, TV_W("The system cannot find the path specified.")},
    {4, TV_W("The system cannot open the file.")},
    {5, TV_W("Access is denied.")},
    {6, TV_W("The handle is invalid.")},
    {8, TV_W("Not enough memory resources are available to process this command.")},
    {13, TV_W("The data is invalid.")},
    {14, TV_W("Not enough memory resources are available to complete this operation.")},
    {15, TV_W("The system cannot find the drive specified.")},
    {19, TV_W("The media is write protected.")},
    {21, TV_W("The device is not ready.")},
    {32, TV_W("The process cannot access the file because it is being used by another process.")},
    {33, TV_W("The process cannot access the file because another process has locked a portion "
              "of the file.")},
    {38, TV_W("Reached the end of the file.")},
    {50, TV_W("The request is not supported.")},
    {80, TV_W("The file exists.")},
    {87, TV_W("The parameter is incorrect.")},
    {109, TV_W("The pipe has been ended.")},
    {110, TV_W("The system cannot open the device or file specified.")},
    {111, TV_W("The file name is too long.")},
    {112, TV_W("There is not enough space on the disk.")},
    {120, TV_W("This function is not supported on this system.")},
    {122, TV_W("The data area passed to a system call is too small.")},
    {123, TV_W("The filename, directory name, or volume label syntax is incorrect.")},
    {126, TV_W("The specified module could not be found.")},
    {127, TV_W("The specified procedure could not be found.")},
    {145, TV_W("The directory is not empty.")},
    {161, TV_W("The specified path is invalid.")},
    {183, TV_W("Cannot create a file when that file already exists.")},
    {193, TV_W("%1 is not a valid Win32 application.")},
    {203, TV_W("The system could not find the environment option that was entered.")},
    {206, TV_W("The filename or extension is too long.")},
    {234, TV_W("More data is available.")},
    {259, TV_W("No more data is available.")},
    {267, TV_W("The directory name is invalid.")},
    {317, TV_W("The system cannot find message text for message number 0x%1 in the message file "
               "for %2.")},
    {487, TV_W("Attempt to access invalid address.")},
    {534, TV_W("Arithmetic result exceeded 32 bits.")},
    {995, TV_W("The I/O operation has been aborted because of either a thread exit or an "
               "application request.")},
    {998, TV_W("Invalid access to memory location.")},
    {1004, TV_W("Invalid flags.")},
    {1008, TV_W("An attempt was made to reference a token that does not exist.")},
    {1113, TV_W("No mapping for the Unicode character exists in the target multi-byte code page.")},
    {1168, TV_W("Element not found.")},
    {1223, TV_W("The operation was canceled by the user.")},
    {1359, TV_W("An internal error occurred.")},
    {1450, TV_W("Insufficient system resources exist to complete the requested service.")},
    {1460, TV_W("This operation returned because the timeout period expired.")},
    {1739, TV_W("No network address is available to use to construct a universal unique "
                "identifier (UUID).")},
    {1784, TV_W("The supplied user buffer is not valid for the requested operation.")},
    {1812, TV_W("The specified image file did not contain a resource section.")},
    {1813, TV_W("The specified resource type cannot be found in the image file.")},
    {1814, TV_W("The specified resource name cannot be found in the image file.")},
    {1815, TV_W("The specified resource language ID cannot be found in the image file.")},
    {1824, TV_W("A UUID that is valid only on this computer has been allocated.")},
    {0x80004001, TV_W("Not implemented")},
    {0x80004002, TV_W("No such interface supported")},
    {0x80004003, TV_W("Invalid pointer")},
    {0x80004004, TV_W("Operation aborted")},
    {0x80004005, TV_W("Unspecified error")},
    {0x8000FFFF, TV_W("Catastrophic failure")},
    {0x80040110, TV_W("Class does not support aggregation (or class object is remote)")},
    {0x80040154, TV_W("Class not registered")},
};

static_assert(std::ranges::is_sorted(messages, {}, &Message::Id));

} // namespace

bool ReadSystemMessage(uint32_t id, WideText& text) {
    // A failure that wraps a Win32 code has its text.
    const uint32_t code = (id & 0xFFFF0000u) == 0x80070000u ? id & 0xFFFF : id;
    const Message* const found = std::ranges::lower_bound(messages, code, {}, &Message::Id);
    if (found == std::end(messages) || found->Id != code)
        return false;
    text.assign(found->Text).append(TV_W("\r\n"));
    return true;
}

} // namespace treevault
