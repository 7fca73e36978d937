// The COM faces of our objects: identity and life in the base, names and calls in the two kinds below it.
#pragma once

#include <ocidl.h>

#include <atomic>
#include <string>
#include <vector>

#include "platform/member_table.h"
#include "platform/windows/com/errors.h"
#include "platform/windows/com/objects.h"

namespace vordane::com {

class ExportedObject : public IDispatch, public IProvideClassInfo, public ISupportErrorInfo {
 public:
  ExportedObject(const ExportedObject&) = delete;
  ExportedObject& operator=(const ExportedObject&) = delete;

  IDispatch* face() { return this; }
  const automation::ObjectRef& object() const { return object_; }
  void holdLife(LifeToken token);

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override;
  ULONG STDMETHODCALLTYPE AddRef() override;
  ULONG STDMETHODCALLTYPE Release() override;

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID locale, ITypeInfo** out) override;
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale,
                                          DISPID* ids) override;
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* parameters,
                                   VARIANT* result, EXCEPINFO* exception, UINT* argument) override;
  HRESULT STDMETHODCALLTYPE GetClassInfo(ITypeInfo** out) override;
  HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID iid) override;

 protected:
  explicit ExportedObject(automation::ObjectRef object);
  virtual ~ExportedObject();

  struct Call {
    DISPID id;
    automation::CallKind kind;
    LCID locale;
    DISPPARAMS& parameters;
  };
  // Fills `ids` and returns false when one of the names is unknown (its number is DISPID_UNKNOWN).
  virtual bool findNames(const std::vector<std::u16string_view>& names, DISPID* ids) = 0;
  // Throws Refusal for what is turned down before the member runs, AutomationError for its own failures.
  virtual automation::Value perform(const Call& call) = 0;
  // Interface and class of the type library; null GUIDs for an object outside it.
  virtual GUID interfaceId() const { return GUID_NULL; }
  virtual GUID classId() const { return GUID_NULL; }
  virtual std::u16string source() const;

 private:
  bool isPublic() const { return interfaceId() != GUID_NULL; }

  std::atomic<ULONG> references_{0};
  LifeToken life_;  // goes after the object
  automation::ObjectRef object_;
};

// An object with a member table: fixed numbers, parameter names, declared types.
class ExportedTable final : public ExportedObject {
 public:
  explicit ExportedTable(const std::shared_ptr<automation::TableObject>& object);

 private:
  bool findNames(const std::vector<std::u16string_view>& names, DISPID* ids) override;
  automation::Value perform(const Call& call) override;
  GUID interfaceId() const override { return interface_; }
  GUID classId() const override { return class_; }
  std::u16string source() const override;

  std::size_t memberOf(const Call& call) const;

  automation::TableObject& table_;
  GUID interface_;
  GUID class_;
};

// Any other object: a number for each name that was ever asked for, values as they come.
class ExportedNames final : public ExportedObject {
 public:
  explicit ExportedNames(const automation::ObjectRef& object) : ExportedObject(object) {}

 private:
  bool findNames(const std::vector<std::u16string_view>& names, DISPID* ids) override;
  automation::Value perform(const Call& call) override;
  DISPID numberOf(std::u16string_view name);

  std::vector<std::u16string> names_;  // number 1 first
};

// The face of one of our own objects, null when it has none now.
ExportedObject* findFace(const IUnknown* pointer);
// The face of `object`, made when it has none.
ComPtr<IDispatch> faceOf(const automation::ObjectRef& object, LifeToken token);

}  // namespace vordane::com
