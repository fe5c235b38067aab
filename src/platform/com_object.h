#pragma once
// One base for every COM object of the module.
//
//   class CThing : public corvane::ComObject<CThing, IFoo, IBar, corvane::ComAlias<IPersist, IPersistFolder2>> { ... };
//   ComPtr<IFoo> foo = corvane::Make<CThing>(args...);
//
// Interfaces listed plainly are base classes and QueryInterface entries; ComAlias<Base, Via> adds an
// entry for an interface that is reached through another one (IPersist through IPersistFolder2); an
// implementation such as DualInterface<IFoo> stands for the interface it implements.
// The object counts its references atomically, holds a module lock while it lives, and can be the
// inner object of an aggregate: then IUnknown on its interfaces delegates to the outer object and
// only the separate inner unknown answers for the object itself.
#include <windows.h>
#include <unknwn.h>
#include <wrl/client.h>

#include <atomic>
#include <new>
#include <type_traits>
#include <utility>

#include "platform/module_lock.h"

namespace corvane {

template <class Base, class Via>
struct ComAlias {};

namespace detail {

// An entry is an interface, or a class that implements one and names it as `ImplementedInterface`
// (DualInterface<IFoo> answers for IFoo).
template <class Entry, class = void>
struct InterfaceOf {
  using type = Entry;
};
template <class Entry>
struct InterfaceOf<Entry, std::void_t<typename Entry::ImplementedInterface>> {
  using type = typename Entry::ImplementedInterface;
};

template <class Entry>
struct ComEntry {
  using base = Entry;
  using Interface = typename InterfaceOf<Entry>::type;
  template <class Object>
  static void* Cast(Object* object) noexcept {
    return static_cast<Interface*>(static_cast<Entry*>(object));
  }
  static const IID& Iid() noexcept { return __uuidof(Interface); }
};

// ComAlias contributes no base class: an empty tag type, one per alias, takes its place.
template <class Tag>
struct NoBase {};

template <class Base, class Via>
struct ComEntry<ComAlias<Base, Via>> {
  using base = NoBase<ComAlias<Base, Via>>;
  template <class Object>
  static void* Cast(Object* object) noexcept {
    return static_cast<Base*>(static_cast<Via*>(object));
  }
  static const IID& Iid() noexcept { return __uuidof(Base); }
};

template <class First, class... Rest>
struct FirstOf {
  using type = First;
};

}  // namespace detail

template <class Derived, class... Entries>
class ComObject : public detail::ComEntry<Entries>::base... {
  using Primary = typename detail::FirstOf<Entries...>::type;
  static_assert(std::is_base_of_v<IUnknown, Primary>, "the first entry must be a real interface");

 public:
  // Classes that may be aggregated say so; the class factory refuses an outer object otherwise.
  static constexpr bool kAggregatable = false;

  ComObject(const ComObject&) = delete;
  ComObject& operator=(const ComObject&) = delete;

  // IUnknown as seen through every interface of the object.
  IFACEMETHODIMP QueryInterface(REFIID riid, void** ppv) override {
    return m_outer != nullptr ? m_outer->QueryInterface(riid, ppv) : InnerQueryInterface(riid, ppv);
  }
  IFACEMETHODIMP_(ULONG) AddRef() override { return m_outer != nullptr ? m_outer->AddRef() : InnerAddRef(); }
  IFACEMETHODIMP_(ULONG) Release() override { return m_outer != nullptr ? m_outer->Release() : InnerRelease(); }

  // The object's own identity: the controlling unknown when standalone, the inner one when aggregated.
  IUnknown* Identity() noexcept { return static_cast<Primary*>(this); }

 protected:
  ComObject() = default;
  virtual ~ComObject() = default;

 private:
  template <class T, class... Args>
  friend Microsoft::WRL::ComPtr<T> MakeObject(Args&&... args);
  template <class T>
  friend HRESULT CreateComInstance(IUnknown* outer, REFIID riid, void** ppv) noexcept;

  HRESULT InnerQueryInterface(REFIID riid, void** ppv) noexcept {
    if (ppv == nullptr) return E_POINTER;
    *ppv = nullptr;
    if (riid == __uuidof(IUnknown)) {
      *ppv = m_outer != nullptr ? static_cast<IUnknown*>(&m_inner) : Identity();
    } else {
      const bool found = ((riid == detail::ComEntry<Entries>::Iid()
                               ? (*ppv = detail::ComEntry<Entries>::Cast(static_cast<Derived*>(this)), true)
                               : false) ||
                          ...);
      if (!found) return E_NOINTERFACE;
    }
    static_cast<IUnknown*>(*ppv)->AddRef();
    return S_OK;
  }
  ULONG InnerAddRef() noexcept { return ++m_refs; }
  ULONG InnerRelease() noexcept {
    const ULONG refs = --m_refs;
    if (refs == 0) delete static_cast<Derived*>(this);
    return refs;
  }

  // The non-delegating unknown handed to an outer object.
  struct InnerUnknown final : IUnknown {
    explicit InnerUnknown(ComObject* self) noexcept : m_self(self) {}
    virtual ~InnerUnknown() = default;
    IFACEMETHODIMP QueryInterface(REFIID riid, void** ppv) override { return m_self->InnerQueryInterface(riid, ppv); }
    IFACEMETHODIMP_(ULONG) AddRef() override { return m_self->InnerAddRef(); }
    IFACEMETHODIMP_(ULONG) Release() override { return m_self->InnerRelease(); }
    ComObject* m_self;
  };

  std::atomic<ULONG> m_refs{0};
  IUnknown* m_outer = nullptr;  // not a reference: the outer object owns us
  InnerUnknown m_inner{this};
  ScopedModuleLock m_moduleLock;
};

// Creates a standalone object; the only way business code makes COM objects.
template <class T, class... Args>
Microsoft::WRL::ComPtr<T> MakeObject(Args&&... args) {
  // Constructing the ComPtr takes the first reference. (mingw-w64's ComPtr::Attach adds a reference,
  // unlike the SDK's, so it is never used on a fresh object.)
  return Microsoft::WRL::ComPtr<T>(new T(std::forward<Args>(args)...));
}

// The class factory's creator: standalone, or aggregated when an outer unknown is given and the
// class allows it (then only IUnknown may be asked for, as COM demands).
template <class T>
HRESULT CreateComInstance(IUnknown* outer, REFIID riid, void** ppv) noexcept {
  if (ppv == nullptr) return E_POINTER;
  *ppv = nullptr;
  if (outer != nullptr && (!T::kAggregatable || riid != __uuidof(IUnknown))) return CLASS_E_NOAGGREGATION;
  try {
    T* object = new T();
    object->m_outer = outer;
    object->InnerAddRef();
    const HRESULT hr = object->InnerQueryInterface(riid, ppv);
    object->InnerRelease();
    return hr;
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_FAIL;
  }
}

}  // namespace corvane
