// SPDX-License-Identifier: MIT
#include "document.h"

#include "failure.h"
#include "inputfile.h"

namespace treevault::program {

Document::Document(const std::string& name, uint32_t flags) : Title(InputTitle(name)) {
    InputFile file(name);
    const HRESULT result = AcnStartDeserialization(TREEVAULT_FORMAT_XML, flags, InputFile::Read,
                                                   &file, Reader.Receive());
    file.CheckRead();
    Check(result, Title);
}

NodeHandle Document::Next() {
    NodeHandle node;
    uint64_t retrieved = 0;
    Check(AcnDeserializeNodes(Reader.Get(), node.Receive(), 1, &retrieved),
          Title + ": top-level node " + std::to_string(TreeCount + 1));
    TreeCount += retrieved;
    return node;
}

} // namespace treevault::program
