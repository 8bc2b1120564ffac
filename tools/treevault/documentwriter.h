// SPDX-License-Identifier: MIT
// A document that is written tree by tree, to standard output or to a file.
#ifndef TREEVAULT_PROGRAM_DOCUMENTWRITER_H
#define TREEVAULT_PROGRAM_DOCUMENTWRITER_H

#include "handles.h"
#include "inputfile.h"

#include <exception>
#include <string>

namespace CLI {
class App;
}

namespace treevault::program {

// Where the document goes, and how it looks.
struct DocumentForm {
    std::string Out = StandardStream;
    bool HasIndent = false;

    // The options -o and --indent of a command.
    void AddOptions(CLI::App& command);
    bool IsToStandardOutput() const { return Out == StandardStream; }
};

class DocumentWriter {
public:
    // `flags` as for AcnStartSerialization, added to those of the form. Throws DataFailure.
    explicit DocumentWriter(const DocumentForm& form, uint32_t flags = 0);
    DocumentWriter(const DocumentWriter&) = delete;
    DocumentWriter& operator=(const DocumentWriter&) = delete;

    // Throws DataFailure, whose message begins with `what`.
    void Add(IACNode** nodes, uint64_t count, const std::string& what);

    // Writes what was added. Before this call nothing of the file is touched. Throws DataFailure.
    void Finish();

private:
    static HRESULT TREEVAULT_CALL Write(const char* text, uint64_t size, void* documentWriter);

    std::string Out;
    SerializerHandle Writer;
    std::exception_ptr Problem; // a failure that must not cross the library
};

} // namespace treevault::program

#endif
