// SPDX-License-Identifier: MIT
#include "documentwriter.h"

#include "failure.h"
#include "outputfile.h"

#include <CLI/CLI.hpp>

namespace treevault::program {

void DocumentForm::AddOptions(CLI::App& command) {
    command
        .add_option("-o", Out,
                    "The file to write, replaced when all is written; may be one that is read")
        ->type_name("OUT");
    command.add_flag("--indent", HasIndent, "A line for each element, with tabs");
}

DocumentWriter::DocumentWriter(const DocumentForm& form, uint32_t flags) : Out(form.Out) {
    flags |= form.HasIndent ? NodeSerializerFlagIndent : 0;
    Check(AcnStartSerialization(TREEVAULT_FORMAT_XML, flags, Write, this, Writer.Receive()),
          "cannot begin to write");
}

void DocumentWriter::Add(IACNode** nodes, uint64_t count, const std::string& what) {
    Check(AcnSerializeNodes(Writer.Get(), nodes, count, TREEVAULT_ALL_LEVELS), what);
}

void DocumentWriter::Finish() {
    const HRESULT result = AcnFinalizeSerialization(Writer.Get());
    if (Problem)
        std::rethrow_exception(Problem);
    Check(result, Out + ": cannot write");
}

HRESULT TREEVAULT_CALL DocumentWriter::Write(const char* text, uint64_t size,
                                             void* documentWriter) {
    auto& writer = *static_cast<DocumentWriter*>(documentWriter);
    try {
        OutputFile file(writer.Out);
        file.Write({text, static_cast<size_t>(size)});
        file.Commit();
        return S_OK;
    } catch (...) {
        writer.Problem = std::current_exception();
        return E_FAIL;
    }
}

} // namespace treevault::program
