// The COM base, the class factory and the module lock, on objects of the tests' own.
#include <gtest/gtest.h>
#include <oleidl.h>
#include <shobjidl.h>

#include <array>

#include "platform/class_factory.h"
#include "platform/module_lock.h"

using Microsoft::WRL::ComPtr;

namespace {

int g_destroyed = 0;

// Objects of the tests' own; their methods only have to exist.
class CPlain : public corvane::ComObject<CPlain, IPersistFolder, corvane::ComAlias<IPersist, IPersistFolder>, IOleWindow> {
 public:
  ~CPlain() override { ++g_destroyed; }
  IFACEMETHODIMP GetClassID(CLSID*) override { return E_NOTIMPL; }
  IFACEMETHODIMP Initialize(PCIDLIST_ABSOLUTE) override { return E_NOTIMPL; }
  IFACEMETHODIMP GetWindow(HWND*) override { return E_NOTIMPL; }
  IFACEMETHODIMP ContextSensitiveHelp(BOOL) override { return E_NOTIMPL; }
};

class CAggregatable : public corvane::ComObject<CAggregatable, IOleWindow> {
 public:
  static constexpr bool kAggregatable = true;
  ~CAggregatable() override { ++g_destroyed; }
  IFACEMETHODIMP GetWindow(HWND*) override { return E_NOTIMPL; }
  IFACEMETHODIMP ContextSensitiveHelp(BOOL) override { return E_NOTIMPL; }
};

// An outer object that counts what the inner one delegates to it.
struct CountingOuter : IUnknown {
  ULONG refs = 1;
  IUnknown* inner = nullptr;
  virtual ~CountingOuter() = default;
  IFACEMETHODIMP QueryInterface(REFIID riid, void** ppv) override {
    if (riid == __uuidof(IUnknown)) {
      *ppv = this;
      AddRef();
      return S_OK;
    }
    return inner->QueryInterface(riid, ppv);
  }
  IFACEMETHODIMP_(ULONG) AddRef() override { return ++refs; }
  IFACEMETHODIMP_(ULONG) Release() override { return --refs; }
};

ULONG RefCount(IUnknown* unknown) {
  unknown->AddRef();
  return unknown->Release();
}

// {0b8c1a7e-4d2f-4e61-9a3b-5c7d8e9f0a1b}
constexpr CLSID kPlainClsid = {0x0b8c1a7e, 0x4d2f, 0x4e61, {0x9a, 0x3b, 0x5c, 0x7d, 0x8e, 0x9f, 0x0a, 0x1b}};
// {0b8c1a7e-4d2f-4e61-9a3b-5c7d8e9f0a1c}
constexpr CLSID kAggClsid = {0x0b8c1a7e, 0x4d2f, 0x4e61, {0x9a, 0x3b, 0x5c, 0x7d, 0x8e, 0x9f, 0x0a, 0x1c}};
const std::array<corvane::ClassEntry, 2> kTable = {corvane::ClassEntryFor<CPlain>(kPlainClsid),
                                                   corvane::ClassEntryFor<CAggregatable>(kAggClsid)};

}  // namespace

TEST(ComObject, AnswersEveryInterfaceWithOneIdentityAndCountsReferences) {
  const long locksBefore = corvane::ModuleLock::Value();
  g_destroyed = 0;
  {
    ComPtr<CPlain> object = corvane::MakeObject<CPlain>();
    EXPECT_EQ(corvane::ModuleLock::Value(), locksBefore + 1) << "a live object holds the module";
    EXPECT_EQ(RefCount(object->Identity()), 1u);

    ComPtr<IUnknown> identity;
    ASSERT_HRESULT_SUCCEEDED(object.As(&identity));
    const IID iids[] = {__uuidof(IPersist), __uuidof(IPersistFolder), __uuidof(IOleWindow)};
    ComPtr<IUnknown> pieces[3];
    for (int i = 0; i < 3; ++i) ASSERT_HRESULT_SUCCEEDED(object->QueryInterface(iids[i], &pieces[i]));
    EXPECT_EQ(RefCount(object->Identity()), 5u);

    // Whatever interface asks, IUnknown is the same pointer.
    for (const ComPtr<IUnknown>& piece : pieces) {
      ComPtr<IUnknown> again;
      ASSERT_HRESULT_SUCCEEDED(piece->QueryInterface(IID_PPV_ARGS(&again)));
      EXPECT_EQ(again.Get(), identity.Get());
    }
    ComPtr<IDispatch> dispatch;
    EXPECT_EQ(object.As(&dispatch), E_NOINTERFACE);
    EXPECT_EQ(dispatch.Get(), nullptr);
    EXPECT_EQ(object->QueryInterface(__uuidof(IUnknown), nullptr), E_POINTER);
  }
  EXPECT_EQ(g_destroyed, 1);
  EXPECT_EQ(corvane::ModuleLock::Value(), locksBefore) << "the last release gives the module back";
}

TEST(ClassFactory, ServesTheTableHoldsTheModuleAndRefusesUnknownClasses) {
  const long base = corvane::ModuleLock::Value();
  ComPtr<IClassFactory> factory;
  ASSERT_HRESULT_SUCCEEDED(corvane::GetClassObjectFromTable(kTable, kPlainClsid, IID_PPV_ARGS(&factory)));
  EXPECT_EQ(corvane::ModuleLock::Value(), base + 1) << "a held factory keeps the module";
  for (const BOOL lock : {TRUE, TRUE, FALSE}) ASSERT_HRESULT_SUCCEEDED(factory->LockServer(lock));
  EXPECT_EQ(corvane::ModuleLock::Value(), base + 2);
  ASSERT_HRESULT_SUCCEEDED(factory->LockServer(FALSE));
  ComPtr<IOleWindow> site;
  ASSERT_HRESULT_SUCCEEDED(factory->CreateInstance(nullptr, IID_PPV_ARGS(&site)));
  EXPECT_EQ(RefCount(site.Get()), 1u);

  ComPtr<IDispatch> dispatch;
  EXPECT_EQ(factory->CreateInstance(nullptr, IID_PPV_ARGS(&dispatch)), E_NOINTERFACE);

  ComPtr<IClassFactory> none;
  EXPECT_EQ(corvane::GetClassObjectFromTable(kTable, CLSID_NULL, IID_PPV_ARGS(&none)), CLASS_E_CLASSNOTAVAILABLE);
  EXPECT_EQ(none.Get(), nullptr);
  EXPECT_EQ(corvane::GetClassObjectFromTable({}, kPlainClsid, IID_PPV_ARGS(&none)), CLASS_E_CLASSNOTAVAILABLE);
  site.Reset();
  factory.Reset();
  EXPECT_EQ(corvane::ModuleLock::Value(), base);
}

TEST(ClassFactory, AggregatesOnlyClassesThatAllowItAndOnlyForIUnknown) {
  CountingOuter outer;
  ComPtr<IClassFactory> plainFactory, aggFactory;
  ASSERT_HRESULT_SUCCEEDED(corvane::GetClassObjectFromTable(kTable, kPlainClsid, IID_PPV_ARGS(&plainFactory)));
  ASSERT_HRESULT_SUCCEEDED(corvane::GetClassObjectFromTable(kTable, kAggClsid, IID_PPV_ARGS(&aggFactory)));

  IUnknown* refused = reinterpret_cast<IUnknown*>(1);
  EXPECT_EQ(plainFactory->CreateInstance(&outer, __uuidof(IUnknown), reinterpret_cast<void**>(&refused)),
            CLASS_E_NOAGGREGATION);
  EXPECT_EQ(refused, nullptr);
  IOleWindow* wrongIid = nullptr;
  EXPECT_EQ(aggFactory->CreateInstance(&outer, IID_PPV_ARGS(&wrongIid)), CLASS_E_NOAGGREGATION);

  g_destroyed = 0;
  ComPtr<IUnknown> inner;
  ASSERT_HRESULT_SUCCEEDED(aggFactory->CreateInstance(&outer, IID_PPV_ARGS(&inner)));
  outer.inner = inner.Get();

  // Interfaces of the inner object delegate their IUnknown to the outer object.
  ComPtr<IOleWindow> site;
  ASSERT_HRESULT_SUCCEEDED(inner.As(&site));
  EXPECT_EQ(outer.refs, 2u) << "the interface pointer counts on the outer object";
  ComPtr<IUnknown> identity;
  ASSERT_HRESULT_SUCCEEDED(site.As(&identity));
  EXPECT_EQ(identity.Get(), static_cast<IUnknown*>(&outer));
  identity.Reset();
  site.Reset();
  EXPECT_EQ(outer.refs, 1u);

  // The inner unknown alone decides the inner object's life.
  EXPECT_EQ(RefCount(inner.Get()), 1u);
  inner.Reset();
  EXPECT_EQ(g_destroyed, 1);
}
