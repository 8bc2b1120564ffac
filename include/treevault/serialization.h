/* SPDX-License-Identifier: MIT
 *
 * Node trees as XML text: writing through a callback, reading through a callback.
 *
 * The text is UTF-8: a root element `nr`, an `n` for each node, an `a` for each attribute and a
 * `v` for each element of an array. A context belongs to one thread at a time. Its handle owns
 * one reference. */
#ifndef TREEVAULT_SERIALIZATION_H
#define TREEVAULT_SERIALIZATION_H

#include <treevault/nodes.h>

TREEVAULT_CONSTANT_GUID IID_INodeSerializer = {
    0x09AB0740, 0x1C2D, 0x4A6F, {0xA4, 0xC1, 0x53, 0x7B, 0x00, 0x86, 0xC0, 0x46}};
TREEVAULT_CONSTANT_GUID IID_INodeDeserializer = {
    0xE67AF07A, 0xC070, 0x4B4C, {0x8A, 0xF8, 0xA8, 0xF0, 0xC9, 0xD2, 0x95, 0xDF}};

/* The one format there is. */
#define TREEVAULT_FORMAT_XML 1u

/* Elements of a document may be nested this deep, the root included; a deeper one is refused with
 * 0x80040208 and " (nesting too deep)" as context, before any node is built. */
#define TREEVAULT_MAX_XML_DEPTH 100000u

/* Bits of `flags`; unknown ones are ignored. */
enum {
    NodeSerializerFlagFullPath = 0x001,     /* writer: top-level nodes are named by their path */
    NodeSerializerFlagIndent = 0x100,       /* writer: tabs and line ends */
    NodeSerializerFlagNoValueTypes = 0x200, /* both: value types are neither written nor read */
    NodeSerializerFlagBom = 0x400,          /* writer: begin with the byte order mark */
    NodeDeserializerFlagStrict = 0x400      /* reader: a value type that can't be restored fails */
};

/* Receives the whole text, `size` bytes without a terminator, valid for the call. A negative
 * result fails the AcnFinalizeSerialization that made the call. */
typedef HRESULT(TREEVAULT_CALL* NodeTextWriteCallback)(const char* text, uint64_t size,
                                                       void* writeContext);

/* Delivers the next piece of text: sets `*text`, `*size` in bytes, and `*end` to a value other
 * than 0 with the last piece, which counts. The three keep their values from call to call and
 * start as null, 0 and 0. A piece must stay valid until the next call or the end of the start. A
 * negative result fails the start. It is called until the end is set. */
typedef HRESULT(TREEVAULT_CALL* NodeTextReadCallback)(const char** text, uint64_t* size,
                                                      uint32_t* end, void* readContext);

#ifdef __cplusplus

struct INodeSerializer : IComponentUnknown {
    virtual HRESULT TREEVAULT_CALL SerializeNodes(IACNode** nodes, uint64_t count,
                                                  uint64_t depth) = 0;
    virtual HRESULT TREEVAULT_CALL Finalize() = 0;

protected:
    ~INodeSerializer() = default;
};

struct INodeDeserializer : IComponentUnknown {
    virtual HRESULT TREEVAULT_CALL DeserializeNodes(IACNode** nodes, uint64_t count,
                                                    uint64_t* retrieved) = 0;

protected:
    ~INodeDeserializer() = default;
};

#else
typedef struct INodeSerializer INodeSerializer;
typedef struct INodeDeserializer INodeDeserializer;
#endif

TREEVAULT_EXTERN_C_BEGIN

/* Opens a writer. A `format` other than TREEVAULT_FORMAT_XML is no error: the result is 0 and
 * `*context` is null, which the caller must test. E_POINTER for a null `write` or `context`, with
 * a record; `*context` is then untouched. */
HRESULT TREEVAULT_CALL AcnStartSerialization(uint32_t format, uint32_t flags,
                                             NodeTextWriteCallback write, void* writeContext,
                                             INodeSerializer** context);

/* Adds trees to the document, each down to `depth` levels below its node (0: the node and its
 * attributes; TREEVAULT_ALL_LEVELS: everything). Each node is locked while it is walked, with all
 * of its subtree. Each failure sets a record:
 *   0x80004003  `context`, `nodes` or an entry is null
 *   0x80040207  the context is finished
 *   0x80004002  a node is not one of this library
 *   what AcnConvertData returns for a value
 * Trees added before the failure stay, and so does the element that was being written. */
HRESULT TREEVAULT_CALL AcnSerializeNodes(INodeSerializer* context, IACNode** nodes, uint64_t count,
                                         uint64_t depth);

/* Prints the document, hands it to the callback in one call and finishes the context. The callback
 * must not use the context. A failing
 * callback gives its code, and the call can be made again. 0x80040207 when the context is
 * finished. Both set a record. E_POINTER for a null `context`, without one. */
HRESULT TREEVAULT_CALL AcnFinalizeSerialization(INodeSerializer* context);

/* Gives the context back; what was not finalized is discarded. Null does nothing. */
void TREEVAULT_CALL AcnCloseSerializationContext(INodeSerializer* context);

/* Opens a reader: takes the whole text from `read` and parses it. An unknown `format` as above;
 * `read` is not called then. A byte order mark is skipped. Each failure sets a record and leaves
 * `*context` untouched:
 *   0x80004003  `read` or `context` is null
 *   0x80040208  the text is not well-formed; the record tells how
 *   0x80040209  there is no element, or the first is not `nr`
 *   what `read` returned */
HRESULT TREEVAULT_CALL AcnStartDeserialization(uint32_t format, uint32_t flags,
                                               NodeTextReadCallback read, void* readContext,
                                               INodeDeserializer** context);

/* Builds the next trees, at most `count`. The handles in `nodes` are the caller's. `retrieved`
 * (may be null) receives how many there were; fewer than `count` means the end. Each failure sets
 * a record, leaves `nodes` and `*retrieved` untouched, and the next call fails on the same tree:
 *   0x80004003  `context` or `nodes` is null
 *   0x80040209  an element or attribute is missing or out of place
 *   0x80070057  a recorded type is no number up to 65535
 *   0x80040201, 0x80040206  a bad or a repeated name
 *   with NodeDeserializerFlagStrict, what AcnConvertData returned for a value; without it, such a
 *   value stays text */
HRESULT TREEVAULT_CALL AcnDeserializeNodes(INodeDeserializer* context, IACNode** nodes,
                                           uint64_t count, uint64_t* retrieved);

/* Gives the context back; nodes already handed out live on. Null does nothing. */
void TREEVAULT_CALL AcnCloseDeserializationContext(INodeDeserializer* context);

TREEVAULT_EXTERN_C_END

#endif
