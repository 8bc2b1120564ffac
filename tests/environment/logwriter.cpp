// SPDX-License-Identifier: MIT
// Writes to one log file from several threads, or checks what several such processes have written.
//
//   log_writer write FILE PROCESS THREADS LINES
//   log_writer check FILE PROCESSES THREADS LINES
#include "common/filelogger.h"
#include "platform/encoding.h"

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace treevault;

const std::string Banner = "**** banner ****\r\n";

// Lines of different lengths, so that one cannot cover another by chance.
std::string LineOf(int process, int thread, int line) {
    const std::string name =
        std::to_string(process) + "." + std::to_string(thread) + "." + std::to_string(line);
    return name + " " + std::string(static_cast<size_t>(line * 37 % 400), 'x') + " " + name +
           "\r\n";
}

int WriteLines(const char* file, int process, int threads, int lines) {
    FileLogger logger(ToWide(file), ToWide(Banner));
    std::vector<std::jthread> writers;
    for (int thread = 0; thread != threads; ++thread)
        writers.emplace_back([=, &logger] {
            for (int line = 0; line != lines; ++line) {
                const WideText text = ToWide(LineOf(process, thread, line));
                logger.Write(text.data(), static_cast<ptrdiff_t>(text.size()));
            }
        });
    return 0;
}

std::string ReadWideFile(const char* path) {
    std::ifstream file(path, std::ios::binary);
    const std::string bytes(std::istreambuf_iterator<char>(file), {});
    WideText text(bytes.size() / sizeof(WCHAR), 0);
    bytes.copy(reinterpret_cast<char*>(text.data()), text.size() * sizeof(WCHAR));
    return ToUtf8(text);
}

int CheckLines(const char* file, int processes, int threads, int lines) {
    std::multiset<std::string> wanted;
    for (int process = 0; process != processes; ++process) {
        wanted.insert(Banner);
        for (int thread = 0; thread != threads; ++thread)
            for (int line = 0; line != lines; ++line)
                wanted.insert(LineOf(process, thread, line));
    }
    const std::string text = ReadWideFile(file);
    for (size_t at = 0; at != text.size();) {
        const size_t found = text.find("\r\n", at);
        const size_t end = found == text.npos ? text.size() : found + 2;
        const std::string line = text.substr(at, end - at);
        const auto entry = wanted.find(line);
        if (entry == wanted.end()) {
            std::cerr << "torn, or there twice: " << line << "\n";
            return 1;
        }
        wanted.erase(entry);
        at = end;
    }
    if (!wanted.empty())
        std::cerr << wanted.size() << " missing, such as: " << *wanted.begin() << "\n";
    return wanted.empty() ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 6)
        return 2;
    const int numbers[] = {std::atoi(argv[3]), std::atoi(argv[4]), std::atoi(argv[5])};
    return (*argv[1] == 'w' ? WriteLines : CheckLines)(argv[2], numbers[0], numbers[1], numbers[2]);
}
