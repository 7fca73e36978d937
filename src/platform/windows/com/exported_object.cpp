#include "platform/windows/com/exported_object.h"

#include <unordered_map>

#include "platform/windows/com/type_library.h"
#include "platform/windows/com/values.h"
#include "text/text.h"

namespace vordane::com {
namespace {

using automation::AutomationError;

// The faces that are alive, by object and by pointer: one identity each way. Never destroyed: faces may be
// released while the process is already ending.
struct Faces {
  std::unordered_map<const automation::Object*, ExportedObject*> byObject;
  std::unordered_map<const IUnknown*, ExportedObject*> byPointer;
};
Faces& faces() {
  static Faces& all = *new Faces;
  return all;
}

bool refusing = false;
std::u16string& commonSource() {
  static std::u16string& source = *new std::u16string;
  return source;
}

std::u16string_view textOf(LPOLESTR name) {
  return fromWide(name);
}

ExportedObject* findFace(const automation::Object& object) {
  const auto found = faces().byObject.find(&object);
  return found == faces().byObject.end() ? nullptr : found->second;
}

}  // namespace

ExportedObject* findFace(const IUnknown* pointer) {
  const auto found = faces().byPointer.find(pointer);
  return found == faces().byPointer.end() ? nullptr : found->second;
}

void setErrorSource(std::u16string_view source) {
  commonSource() = source;
}
void refusePublicCalls() {
  refusing = true;
}

ExportedObject::ExportedObject(automation::ObjectRef object) : object_(std::move(object)) {
  faces().byObject[object_.get()] = this;
  faces().byPointer[face()] = this;
}

ExportedObject::~ExportedObject() {
  faces().byObject.erase(object_.get());
  faces().byPointer.erase(face());
}

void ExportedObject::holdLife(LifeToken token) {
  if (token) life_ = std::move(token);
}

std::u16string ExportedObject::source() const {
  return commonSource();
}

HRESULT ExportedObject::QueryInterface(REFIID iid, void** out) {
  if (out == nullptr) return E_POINTER;
  *out = nullptr;
  if (iid == IID_IUnknown || iid == IID_IDispatch || (isPublic() && iid == interfaceId()))
    *out = static_cast<IDispatch*>(this);
  else if (isPublic() && iid == IID_IProvideClassInfo)
    *out = static_cast<IProvideClassInfo*>(this);
  else if (isPublic() && iid == IID_ISupportErrorInfo)
    *out = static_cast<ISupportErrorInfo*>(this);
  if (*out == nullptr) return E_NOINTERFACE;
  AddRef();
  return S_OK;
}

ULONG ExportedObject::AddRef() {
  return ++references_;
}

ULONG ExportedObject::Release() {
  const ULONG left = --references_;
  if (left == 0) delete this;
  return left;
}

HRESULT ExportedObject::GetTypeInfoCount(UINT* count) {
  if (count == nullptr) return E_POINTER;
  *count = isPublic() && typeInfoOf(interfaceId()) ? 1 : 0;
  return S_OK;
}

HRESULT ExportedObject::GetTypeInfo(UINT index, LCID, ITypeInfo** out) {
  if (out == nullptr) return E_POINTER;
  *out = nullptr;
  if (index != 0) return DISP_E_BADINDEX;
  if (isPublic()) *out = typeInfoOf(interfaceId()).release();
  return *out != nullptr ? S_OK : E_NOTIMPL;
}

HRESULT ExportedObject::GetClassInfo(ITypeInfo** out) {
  if (out == nullptr) return E_POINTER;
  *out = typeInfoOf(classId()).release();
  return *out != nullptr ? S_OK : TYPE_E_ELEMENTNOTFOUND;
}

HRESULT ExportedObject::InterfaceSupportsErrorInfo(REFIID iid) {
  return iid == interfaceId() || iid == IID_IDispatch ? S_OK : S_FALSE;
}

HRESULT ExportedObject::GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID, DISPID* ids) {
  return answerPlain([&] {
    if (iid != IID_NULL) throw Refusal{DISP_E_UNKNOWNINTERFACE};
    if (names == nullptr || ids == nullptr || count == 0) throw Refusal{E_INVALIDARG};
    std::vector<std::u16string_view> asked;
    for (UINT i = 0; i < count; ++i) asked.push_back(textOf(names[i]));
    if (!findNames(asked, ids)) throw Refusal{DISP_E_UNKNOWNNAME};
  });
}

HRESULT ExportedObject::Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* parameters,
                               VARIANT* result, EXCEPINFO* exception, UINT* argument) {
  // The member may let go of the last outside hold on its own object.
  const ComPtr<IDispatch> alive(this);
  const std::u16string name = source();
  return answer({exception, argument, name}, [&] {
    if (iid != IID_NULL) throw Refusal{DISP_E_UNKNOWNINTERFACE};
    if (parameters == nullptr) throw Refusal{E_INVALIDARG};
    if (refusing && isPublic()) throw Refusal{RPC_E_DISCONNECTED};
    const auto kind = static_cast<automation::CallKind>(flags & 15U);
    const automation::Value value = perform({id, kind, locale, *parameters});
    if (result != nullptr) *result = toVariant(value).release();
  });
}

ComPtr<IDispatch> faceOf(const automation::ObjectRef& object, LifeToken token) {
  ExportedObject* face = findFace(*object);
  if (face == nullptr) {
    if (auto table = std::dynamic_pointer_cast<automation::TableObject>(object))
      face = new ExportedTable(table);
    else
      face = new ExportedNames(object);
  }
  face->holdLife(std::move(token));
  return ComPtr<IDispatch>(face->face());
}

void disconnectObject(automation::Object& object) {
  ExportedObject* face = findFace(object);
  if (face == nullptr) return;
  const ComPtr<IDispatch> alive(face->face());
  CoDisconnectObject(alive.get(), 0);
}

// ---- objects with a member table

ExportedTable::ExportedTable(const std::shared_ptr<automation::TableObject>& object)
    : ExportedObject(object),
      table_(*object),
      interface_(toGuid(object->table().iid)),
      class_(toGuid(object->table().clsid)) {}

std::u16string ExportedTable::source() const {
  const std::u16string_view progId = table_.table().progId;
  const std::size_t dot = progId.find(u'.');
  return dot == std::u16string_view::npos ? ExportedObject::source() : std::u16string(progId.substr(0, dot));
}

bool ExportedTable::findNames(const std::vector<std::u16string_view>& names, DISPID* ids) {
  const automation::ClassTable& table = table_.table();
  const int member = automation::findMember(table, names.front());
  bool known = member >= 0;
  ids[0] = known ? table.members[static_cast<std::size_t>(member)].dispid : DISPID_UNKNOWN;
  for (std::size_t i = 1; i < names.size(); ++i) {
    ids[i] = DISPID_UNKNOWN;
    if (member < 0) continue;
    const auto parameters = table.members[static_cast<std::size_t>(member)].parameters;
    for (std::size_t p = 0; p < parameters.size(); ++p)
      if (text::equalIgnoringCase(parameters[p].name, names[i])) ids[i] = static_cast<DISPID>(p);
    known = known && ids[i] != DISPID_UNKNOWN;
  }
  return known;
}

namespace {

// The VARIANT for each declared parameter, a put's new value last, and its place in rgvarg.
struct Placed {
  VARIANT* variant = nullptr;
  int position = -1;
};

class Places {
 public:
  Places(const DISPPARAMS& given, std::size_t parameters, bool put)
      : given_(given), parameters_(parameters), places_(parameters + (put ? 1 : 0)), put_(put) {
    // A put's value comes first and named; callers that leave the name out mean the same.
    UINT named = given.cNamedArgs;
    if (put && named == 0 && given.cArgs > 0) {
      place(0, places_.size() - 1);
      named = 1;
    } else {
      for (UINT i = 0; i < named; ++i) place(i, slotOf(given.rgdispidNamedArgs[i], i));
    }
    std::size_t slot = 0;
    for (UINT i = given.cArgs; i > named; --i) place(i - 1, slot++);
  }

  const std::vector<Placed>& all() const { return places_; }

 private:
  std::size_t slotOf(DISPID id, UINT position) const {
    if (id == DISPID_PROPERTYPUT && put_) return places_.size() - 1;
    if (id >= 0 && static_cast<std::size_t>(id) < parameters_) return static_cast<std::size_t>(id);
    throw Refusal{DISP_E_PARAMNOTFOUND, static_cast<int>(position)};
  }

  void place(UINT position, std::size_t slot) {
    if (slot >= places_.size() || places_[slot].variant != nullptr) throw Refusal{DISP_E_BADPARAMCOUNT};
    places_[slot] = {&given_.rgvarg[position], static_cast<int>(position)};
  }

  const DISPPARAMS& given_;
  std::size_t parameters_;
  std::vector<Placed> places_;
  bool put_;
};

automation::Argument convert(const Placed& placed, const automation::Parameter& parameter, LCID locale) {
  if (placed.variant == nullptr) {
    if (!parameter.optional) throw Refusal{DISP_E_BADPARAMCOUNT};
    return {automation::Missing{}};
  }
  try {
    return {toParameter(*placed.variant, parameter, locale, placed.position),
            (placed.variant->vt & VT_BYREF) != 0};
  } catch (const AutomationError& failure) {
    throw Refusal{failure.code(), placed.position};
  }
}

}  // namespace

std::size_t ExportedTable::memberOf(const Call& call) const {
  const auto members = table_.table().members;
  for (std::size_t i = 0; i < members.size(); ++i) {
    if (members[i].dispid != call.id) continue;
    const automation::MemberKind kind = members[i].kind;
    const bool writable =
        kind == automation::MemberKind::readWrite || kind == automation::MemberKind::writeOnly;
    const bool readable = kind != automation::MemberKind::writeOnly;
    if (automation::isPut(call.kind) ? writable : readable) return i;
  }
  throw Refusal{DISP_E_MEMBERNOTFOUND};
}

automation::Value ExportedTable::perform(const Call& call) {
  const std::size_t index = memberOf(call);
  const automation::Member& member = table_.table().members[index];
  const bool put = automation::isPut(call.kind);
  const Places places(call.parameters, member.parameters.size(), put);
  std::vector<automation::Argument> arguments;
  for (std::size_t i = 0; i < places.all().size(); ++i) {
    const bool isNewValue = i == member.parameters.size();
    const automation::Parameter parameter =
        isNewValue ? automation::Parameter{.name = member.name, .type = member.type} : member.parameters[i];
    arguments.push_back(convert(places.all()[i], parameter, call.locale));
  }
  return table_.invoke(index, call.kind, arguments);
}

// ---- objects without one

DISPID ExportedNames::numberOf(std::u16string_view name) {
  for (std::size_t i = 0; i < names_.size(); ++i)
    if (text::equalIgnoringCase(names_[i], name)) return static_cast<DISPID>(i + 1);
  if (!object()->hasMember(name)) return DISPID_UNKNOWN;
  names_.emplace_back(name);
  return static_cast<DISPID>(names_.size());
}

bool ExportedNames::findNames(const std::vector<std::u16string_view>& names, DISPID* ids) {
  ids[0] = numberOf(names.front());
  for (std::size_t i = 1; i < names.size(); ++i) ids[i] = DISPID_UNKNOWN;  // no parameter names here
  return ids[0] != DISPID_UNKNOWN && names.size() == 1;
}

namespace {

bool isCallersMistake(std::int32_t code) {
  return HRESULT_FACILITY(code) == FACILITY_DISPATCH && code != DISP_E_EXCEPTION;
}

std::vector<automation::Argument> asTheyCome(const DISPPARAMS& given) {
  std::vector<automation::Argument> out;
  for (UINT i = given.cArgs; i > 0; --i) {
    const VARIANT& variant = given.rgvarg[i - 1];
    try {
      out.push_back({toValue(variant), (variant.vt & VT_BYREF) != 0});
    } catch (const AutomationError& failure) {
      throw Refusal{failure.code(), static_cast<int>(i - 1)};
    }
  }
  return out;
}

void writeChangesBack(const DISPPARAMS& given, const std::vector<automation::Argument>& before,
                      const std::vector<automation::Argument>& after) {
  for (std::size_t i = 0; i < before.size(); ++i)
    if (after[i].byReference && after[i].value != before[i].value)
      writeBack(given.rgvarg[given.cArgs - 1 - i], after[i].value);
}

}  // namespace

automation::Value ExportedNames::perform(const Call& call) {
  const DISPPARAMS& given = call.parameters;
  if (call.id < 1 || static_cast<std::size_t>(call.id) > names_.size()) throw Refusal{DISP_E_MEMBERNOTFOUND};
  const bool onlyNewValue = given.cNamedArgs == 1 && given.rgdispidNamedArgs[0] == DISPID_PROPERTYPUT;
  if (given.cNamedArgs > 0 && !onlyNewValue) throw Refusal{DISP_E_NONAMEDARGS};
  const std::vector<automation::Argument> before = asTheyCome(given);
  std::vector<automation::Argument> arguments = before;
  try {
    automation::Value value =
        object()->invoke(names_[static_cast<std::size_t>(call.id) - 1], call.kind, arguments);
    writeChangesBack(given, before, arguments);
    return value;
  } catch (const AutomationError& failure) {
    if (!isCallersMistake(failure.code())) throw;
    const int position = failure.argument() < 0 ? -1 : static_cast<int>(given.cArgs) - 1 - failure.argument();
    throw Refusal{failure.code(), position};
  }
}

}  // namespace vordane::com
