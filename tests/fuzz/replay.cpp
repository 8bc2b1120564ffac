// SPDX-License-Identifier: MIT
// Runs a fuzz entry without a fuzzer: over each file of a corpus, and then over random changes of
// them.
//
//     program FOLDER [ITERATIONS]
//
// The seed is printed and taken from TREEVAULT_TEST_SEED, the iterations from TREEVAULT_TEST_STEPS.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

using Bytes = std::vector<uint8_t>;

uint64_t NumberFromEnvironment(const char* name, uint64_t otherwise) {
    const char* const text = std::getenv(name);
    return text ? std::strtoull(text, nullptr, 0) : otherwise;
}

std::vector<Bytes> ReadCorpus(const char* folder) {
    std::vector<Bytes> corpus;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        std::ifstream file(entry.path(), std::ios::binary);
        corpus.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    return corpus;
}

class Mutator {
public:
    Mutator(const std::vector<Bytes>& corpus, uint64_t seed) : Corpus(corpus), Random(seed) {}

    Bytes Next() {
        Bytes bytes = Corpus[Below(Corpus.size())];
        for (uint64_t count = 1 + Below(4); count > 0; --count)
            Change(bytes);
        return bytes;
    }

private:
    uint64_t Below(uint64_t limit) { return Random() % limit; }

    void Change(Bytes& bytes) {
        static const std::string Marks = "<>/='\"&;#x !?-[]anrvt013 \n";
        const auto at = bytes.begin() + static_cast<ptrdiff_t>(Below(bytes.size() + 1));
        switch (Below(6)) {
        case 0:
            bytes.insert(at, static_cast<uint8_t>(Marks[Below(Marks.size())]));
            break;
        case 1:
            bytes.insert(at, static_cast<uint8_t>(Below(256)));
            break;
        case 2:
            if (at != bytes.end())
                *at = static_cast<uint8_t>(Marks[Below(Marks.size())]);
            break;
        case 3:
            bytes.erase(at, at + static_cast<ptrdiff_t>(Below(8) % (1 + (bytes.end() - at))));
            break;
        case 4:
            Overwrite(bytes, at);
            break;
        default:
            InsertPiece(bytes, at);
        }
    }

    // A number of one, two or four bytes, near to an end of its range.
    void Overwrite(Bytes& bytes, Bytes::iterator at) {
        const uint64_t number = (Below(2) << (8 * Below(4) + 7)) + Below(9) - 4;
        for (uint64_t i = 0, size = uint64_t{1} << Below(3); i < size && at != bytes.end(); ++i)
            *at++ = static_cast<uint8_t>(number >> 8 * i);
    }

    // A piece of another text of the corpus.
    void InsertPiece(Bytes& bytes, Bytes::iterator at) {
        const Bytes& other = Corpus[Below(Corpus.size())];
        const size_t from = Below(other.size() + 1);
        const size_t length = Below(other.size() - from + 1);
        bytes.insert(at, other.begin() + static_cast<ptrdiff_t>(from),
                     other.begin() + static_cast<ptrdiff_t>(from + length));
    }

    const std::vector<Bytes>& Corpus;
    std::mt19937_64 Random;
};

} // namespace

int main(int argc, char** argv) {
    const std::vector<Bytes> corpus = argc > 1 ? ReadCorpus(argv[1]) : std::vector<Bytes>();
    if (corpus.empty()) {
        std::fprintf(stderr, "no corpus\n");
        return 2;
    }
    const uint64_t steps = NumberFromEnvironment(
        "TREEVAULT_TEST_STEPS", argc > 2 ? std::strtoull(argv[2], nullptr, 0) : 10000);
    const uint64_t seed = NumberFromEnvironment("TREEVAULT_TEST_SEED", std::random_device()());
    std::printf("TREEVAULT_TEST_SEED=%llu TREEVAULT_TEST_STEPS=%llu\n",
                static_cast<unsigned long long>(seed), static_cast<unsigned long long>(steps));
    std::fflush(stdout);
    for (const Bytes& bytes : corpus)
        LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    Mutator mutator(corpus, seed);
    for (uint64_t step = 0; step < steps; ++step) {
        const Bytes bytes = mutator.Next();
        LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    }
    return 0;
}
