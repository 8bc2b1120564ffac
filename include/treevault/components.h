/* SPDX-License-Identifier: MIT
 *
 * Components: reference-counted objects reached through interfaces by GUID.
 *
 * Every object that the library hands out is a component, and its first three operations are those
 * of IComponentUnknown. Counts are atomic: any thread may call AddRef, Release and QueryInterface
 * at any time on an object that it holds. The order of the operations is frozen. In C the
 * interfaces are opaque. */
#ifndef TREEVAULT_COMPONENTS_H
#define TREEVAULT_COMPONENTS_H

#include <treevault/platform.h>

TREEVAULT_CONSTANT_GUID IID_IComponentUnknown = {
    0x51C3FBA2, 0x85FE, 0x436B, {0xA0, 0xFF, 0x1C, 0x61, 0xA5, 0xC0, 0xC5, 0x85}};
TREEVAULT_CONSTANT_GUID IID_IWeakRef = {
    0xB114EFFB, 0x7880, 0x43B8, {0x9A, 0x2A, 0x40, 0xBE, 0x1D, 0xD5, 0x7D, 0x5E}};
TREEVAULT_CONSTANT_GUID IID_IWeakRefSource = {
    0xA85AE290, 0x89EE, 0x46E0, {0x93, 0x95, 0x3A, 0xAB, 0x22, 0xF2, 0x91, 0x05}};
TREEVAULT_CONSTANT_GUID IID_IComponentsModule = {
    0x989524A9, 0x625D, 0x48C8, {0xAB, 0x03, 0x7C, 0x08, 0x4E, 0xB5, 0x26, 0x5D}};

/* Class of IComponentsModule::CreateInstance: a node with a generated name and no type. */
TREEVAULT_CONSTANT_GUID CLSID_ACNode = {
    0x241114B3, 0x31FE, 0x400D, {0x8F, 0x30, 0xAE, 0xAB, 0x2A, 0x58, 0xD9, 0x76}};

#ifdef __cplusplus

struct IComponentUnknown {
    /* Each returns the new count. The object dies when it reaches 0. */
    virtual uint32_t TREEVAULT_CALL AddRef() = 0;
    virtual uint32_t TREEVAULT_CALL Release() = 0;

    /* On success `*out` holds the interface with a reference of its own. Failures leave `*out` and
     * the count as they were and set no error record: E_INVALIDARG for a null argument,
     * E_NOINTERFACE for an interface that the object does not have. */
    virtual HRESULT TREEVAULT_CALL QueryInterface(const GUID* iid, void** out) = 0;

protected:
    ~IComponentUnknown() = default;
};

struct IWeakRef;

/* Told of the death of an object. It is not counted by whom it listens to. */
struct IWeakRefListener : IComponentUnknown {
    /* Called once, on the thread that released the object last, while the weak object's lock is
     * held: it must not wait for a thread that uses `reference`. */
    virtual void TREEVAULT_CALL OnDestroy(IWeakRef* reference) = 0;

protected:
    ~IWeakRefListener() = default;
};

/* A reference that does not keep its object alive. */
struct IWeakRef : IComponentUnknown {
    /* Gives the object through one of its interfaces, with a reference for the caller. S_FALSE and
     * a null `*out` when the object is gone or dying. Meant for interfaces that the object has. */
    virtual HRESULT TREEVAULT_CALL Resolve(const GUID* iid, void** out) = 0;

    /* Listeners are borrowed: remove them before they die. A listener added twice is told twice;
     * removing takes away all its entries. Each returns 0. */
    virtual HRESULT TREEVAULT_CALL AddListener(IWeakRefListener* listener) = 0;
    virtual HRESULT TREEVAULT_CALL RemoveListener(IWeakRefListener* listener) = 0;

protected:
    ~IWeakRef() = default;
};

/* Offered by objects that have weak references. */
struct IWeakRefSource : IComponentUnknown {
    /* `*out` receives the one weak reference of the object, with a reference for the caller.
     * E_POINTER for a null `out`. */
    virtual HRESULT TREEVAULT_CALL GetWeakReference(IWeakRef** out) = 0;

protected:
    ~IWeakRefSource() = default;
};

/* The module: creates components by class and counts the live ones. It is never released: AddRef
 * and Release do nothing and return 0xFFFFFFFF. */
struct IComponentsModule : IComponentUnknown {
    /* Does nothing and returns 0. */
    virtual HRESULT TREEVAULT_CALL Reserved() = 0;

    /* Writes the live components to the log, where they are tracked. Returns 0. */
    virtual HRESULT TREEVAULT_CALL ReportAliveObjects() = 0;

    /* Add 1 to, and take 1 from, the number of live components; each returns the new number. */
    virtual int32_t TREEVAULT_CALL LockModule() = 0;
    virtual int32_t TREEVAULT_CALL UnlockModule() = 0;

    /* `*locked` is 1 while the number of live components is not 0, and 0 otherwise. E_POINTER for
     * null. */
    virtual HRESULT TREEVAULT_CALL GetLockState(int32_t* locked) = 0;

    /* Creates a component of class `clsid`; `*out` receives the interface `iid` with the first
     * reference. REGDB_E_CLASSNOTREG for an unknown class, E_INVALIDARG or E_NOINTERFACE as
     * QueryInterface. */
    virtual HRESULT TREEVAULT_CALL CreateInstance(const GUID* clsid, const GUID* iid,
                                                  void** out) = 0;

protected:
    ~IComponentsModule() = default;
};

#else
typedef struct IComponentUnknown IComponentUnknown;
typedef struct IWeakRef IWeakRef;
typedef struct IWeakRefListener IWeakRefListener;
typedef struct IWeakRefSource IWeakRefSource;
typedef struct IComponentsModule IComponentsModule;
#endif

TREEVAULT_EXTERN_C_BEGIN

/* `*module` receives the module object, which needs no Release. E_INVALIDARG for null. */
HRESULT TREEVAULT_CALL GetComponentsModuleObject(IComponentsModule** module);

TREEVAULT_EXTERN_C_END

#endif
