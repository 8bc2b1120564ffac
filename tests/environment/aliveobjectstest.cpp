// SPDX-License-Identifier: MIT
// The report of live components. Runs with tracking on and the severity WARN; what other settings
// do is tested by aliveobjectssettingstest.cpp.
#include "common/components/dbgaliveobjectstracker.h"
#include "support/logcapture.h"
#include "support/storage.h"

#include <treevault/serialization.h>

#include <algorithm>
#include <functional>

namespace treevault::tests {
namespace {

std::string AddressText(const void* address) {
    WideStream stream;
    stream.Address(address);
    return ToUtf8(stream.Str());
}

void WriteReport() {
    IComponentsModule* module = nullptr;
    ASSERT_EQ(S_OK, GetComponentsModuleObject(&module));
    EXPECT_EQ(S_OK, module->ReportAliveObjects());
}

std::vector<std::string> Report() {
    const LogCapture capture;
    WriteReport();
    return capture.Messages();
}

// The line of an object less the addresses behind "EIPs=".
std::string LineOf(const char* tag, const void* object) {
    return std::string("ObjTag='") + tag + "' Ptr=" + AddressText(object) + " EIPs=";
}

std::vector<std::string> WithoutFrames(std::vector<std::string> lines) {
    for (std::string& line : lines)
        if (const size_t at = line.find("EIPs="); at != std::string::npos)
            line.erase(at + 5);
    return lines;
}

// The primary pointer of any handle.
template <class Handle>
const void* Primary(Handle* handle) {
    IComponentUnknown* unknown = nullptr;
    EXPECT_EQ(S_OK,
              handle->QueryInterface(&IID_IComponentUnknown, reinterpret_cast<void**>(&unknown)));
    unknown->Release();
    return unknown;
}

TEST(AliveObjects, NoneLeaveNoLineNotEvenTheCount) {
    EXPECT_EQ(std::vector<std::string>(), Report());
}

TEST(AliveObjects, OneIsTwoLines) {
    const Node node = Create(W("n"));
    EXPECT_EQ(
        (std::vector<std::string>{
            "Alive component objects: 1",
            LineOf("CComponentObject<class CACNodeImpl>::CComponentObject", Primary(node.Get()))}),
        WithoutFrames(Report()));
}

TEST(AliveObjects, LinesComeAtWarnFromTheTracker) {
    const Node node = Create(W("n"));
    const LogCapture capture;
    WriteReport();
    ASSERT_EQ(2u, capture.Lines().size());
    for (size_t i = 0; i < 2; ++i) {
        EXPECT_EQ(" WARN ", capture.Entry(i).Severity);
        EXPECT_EQ(0u, capture.Entry(i).Place.find(" dbgaliveobjectstracker:"))
            << capture.Entry(i).Place;
    }
}

TEST(AliveObjects, ComeInTheOrderOfTheirAddresses) {
    std::vector<Node> nodes;
    std::vector<const void*> addresses;
    for (int i = 0; i < 20; ++i) {
        nodes.push_back(Create());
        addresses.push_back(Primary(nodes.back().Get()));
    }
    std::sort(addresses.begin(), addresses.end(), std::less<>());
    std::vector<std::string> expected{"Alive component objects: 20"};
    for (const void* address : addresses)
        expected.push_back(
            LineOf("CComponentObject<class CACNodeImpl>::CComponentObject", address));
    EXPECT_EQ(expected, WithoutFrames(Report()));
}

TEST(AliveObjects, AreForgottenWhenTheyDie) {
    {
        const Node first = Create();
        const Node second = Clone(first);
        EXPECT_EQ("Alive component objects: 2", Report().at(0));
    }
    EXPECT_EQ(std::vector<std::string>(), Report());
}

HRESULT TREEVAULT_CALL TakeText(const char*, uint64_t, void*) {
    return S_OK;
}

HRESULT TREEVAULT_CALL GiveText(const char** text, uint64_t* size, uint32_t* end, void*) {
    *text = "<nr/>";
    *size = 5;
    *end = 1;
    return S_OK;
}

// The text between the apostrophes of the only line whose object is `address`.
std::string TagOf(const void* address) {
    const std::string mark = "' Ptr=" + AddressText(address);
    for (const std::string& line : Report())
        if (const size_t at = line.find(mark); at != std::string::npos)
            return line.substr(8, at - 8);
    return "not listed";
}

TEST(AliveObjects, TheClassesOfXmlHaveTheirTags) {
    INodeSerializer* writer = nullptr;
    ASSERT_EQ(S_OK, AcnStartSerialization(TREEVAULT_FORMAT_XML, 0, TakeText, nullptr, &writer));
    EXPECT_EQ("CComponentObject<class CXMLNodeSerializer>::CComponentObject",
              TagOf(Primary(writer)));
    AcnCloseSerializationContext(writer);

    INodeDeserializer* reader = nullptr;
    ASSERT_EQ(S_OK, AcnStartDeserialization(TREEVAULT_FORMAT_XML, 0, GiveText, nullptr, &reader));
    EXPECT_EQ("CComponentObject<class CXMLNodeDeserializer>::CComponentObject",
              TagOf(Primary(reader)));
    AcnCloseDeserializationContext(reader);
}

// A storage with a name and a weak reference, an open group and a retrieval that is not at its end.
TEST(AliveObjects, TheClassesOfStoragesHaveTheirTags) {
    Handle<INodeStorage> storage;
    ASSERT_EQ(S_OK,
              StgCreateStorage(TREEVAULT_MEMORY_STORAGE, nullptr, W("tracked"), 0, storage.Put()));
    const Group group(storage);
    IRetrievalContext* context = nullptr;
    IACNode* none[1] = {};
    ASSERT_EQ(S_OK,
              StgRetrieveData(storage, Filter("/", Select::Children), &context, none, 0, nullptr));
    std::vector<std::string> tags;
    for (const std::string& line : Report())
        if (line.starts_with("ObjTag="))
            tags.push_back(line.substr(0, line.find(" Ptr=")));
    StgCloseRetrivalContext(storage, context);
    std::sort(tags.begin(), tags.end());
    EXPECT_EQ((std::vector<std::string>{
                  "ObjTag='CComponentObject<class CInnerModifySinkPool>::CComponentObject'",
                  "ObjTag='CComponentObject<class "
                  "CMemoryStorage::CNodesByPathFilter>::CComponentObject'",
                  "ObjTag='CComponentObject<class CMemoryStorage>::CComponentObject'",
                  "ObjTag='CComponentObject<class CPendingOperations>::CComponentObject'",
                  "ObjTag='CComponentObject<class Detail::CWeakRefObj<class CMemoryStorage> "
                  ">::CComponentObject'"}),
              tags);
}

// What is tracked without a tag, for objects that are no components.
TEST(AliveObjects, AMissingTagIsShownAsNull) {
    const int object = 0;
    GetAliveObjectsTracker().Track(nullptr, &object);
    EXPECT_EQ((std::vector<std::string>{"Alive component objects: 1", LineOf("(null)", &object)}),
              WithoutFrames(Report()));
    GetAliveObjectsTracker().Untrack(&object);
}

TEST(AliveObjects, AnObjectThatIsListedKeepsItsRecord) {
    const int object = 0;
    GetAliveObjectsTracker().Track("first", &object);
    GetAliveObjectsTracker().Track("second", &object);
    EXPECT_EQ((std::vector<std::string>{"Alive component objects: 1", LineOf("first", &object)}),
              WithoutFrames(Report()));
    GetAliveObjectsTracker().Untrack(&object);
    GetAliveObjectsTracker().Untrack(&object);
    EXPECT_EQ(std::vector<std::string>(), Report());
}

} // namespace
} // namespace treevault::tests
