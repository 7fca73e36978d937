// What crosses a process, against bare COM in the same run:
//
//   automation_bench call | record ENTRIES
//
// The add-in must be registered and its suite installed.
#include <windows.h>

#include <oleauto.h>
#include <shellapi.h>

#include <cstdlib>
#include <stdexcept>
#include <string>

#include "bench/common/measure.h"
#include "bench/windows/started.h"
#include "bench/windows/trivial_server.h"
#include "pbx/answer_reading.h"
#include "platform/windows/com/apartment.h"
#include "platform/windows/com/objects.h"

namespace vordane::bench {
namespace {

void check(HRESULT result, const char* step) {
  if (FAILED(result)) throw std::runtime_error(step);
}

com::ComPtr<IDispatch> create(REFCLSID type) {
  com::ComPtr<IDispatch> object;
  check(CoCreateInstance(type, nullptr, CLSCTX_LOCAL_SERVER, IID_IDispatch, object.putVoid()),
        "CoCreateInstance");
  return object;
}

com::ComPtr<IDispatch> create(const wchar_t* name) {
  CLSID type;
  check(CLSIDFromProgID(name, &type), "CLSIDFromProgID");
  return create(type);
}

DISPID numberOf(IDispatch* object, const wchar_t* name) {
  LPOLESTR names[] = {const_cast<LPOLESTR>(name)};
  DISPID id = DISPID_UNKNOWN;
  check(object->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id), "GetIDsOfNames");
  return id;
}

void bareGet(IDispatch* object, DISPID id, VARIANT* argument = nullptr) {
  com::Variant value;
  DISPPARAMS parameters{argument, nullptr, argument == nullptr ? 0U : 1U, 0};
  check(object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &parameters, &value, nullptr,
                       nullptr),
        "Invoke");
}

std::wstring besideThisProgram(const wchar_t* name) {
  wchar_t path[MAX_PATH];
  GetModuleFileNameW(nullptr, path, MAX_PATH);
  std::wstring folder(path);
  return folder.substr(0, folder.rfind(L'\\') + 1) + name;
}

com::ComPtr<IDispatch> createTrivial() {
  for (int i = 0; i < 200; ++i) {
    com::ComPtr<IDispatch> object;
    if (SUCCEEDED(
            CoCreateInstance(trivialClass, nullptr, CLSCTX_LOCAL_SERVER, IID_IDispatch, object.putVoid())))
      return object;
    Sleep(50);
  }
  throw std::runtime_error("the trivial server did not start");
}

void measureCall() {
  constexpr int calls = 200;
  const Started server(besideThisProgram(L"trivial_server.exe"));
  const auto trivial = createTrivial();
  const auto layer = create(L"Vordane10013.cOLELayer");
  const DISPID member = numberOf(layer.get(), L"Visible"), one = numberOf(trivial.get(), L"Member");
  const auto time = [&](IDispatch* object, DISPID id) {
    return seconds([&] {
      for (int i = 0; i < calls; ++i) bareGet(object, id);
    });
  };
  time(layer.get(), member);
  time(trivial.get(), one);
  Comparison comparison("one call on cOLELayer from another process", "a server with one member",
                        timeAtMost(1.2));
  for (int run = 0; run < runs; ++run) {
    const double ours = time(layer.get(), member);
    comparison.add(ours, time(trivial.get(), one));
  }
  comparison.print(calls);
}

void bareCopy(IDispatch* record, int entries, const DISPID (&members)[4]) {
  for (int i = 0; i < entries; ++i) {
    for (const DISPID member : members) {
      com::Variant index;
      index.get().vt = VT_I2;
      index.get().iVal = static_cast<SHORT>(i);
      bareGet(record, member, &index.get());
    }
  }
}

void measureRecord(int entries) {
  const auto record = create(L"Vordane10013.cListRequest");
  const auto object = com::importObject(record.get());
  for (int i = 0; i < entries; ++i)
    automation::call(*object, u"AddToList",
                     {automation::byVal(std::u16string(u"LEA0")),
                      automation::byVal(std::u16string(u"01 MJ LP 0C 26/11/20 20:58 01 02 03"))});
  const DISPID members[] = {numberOf(record.get(), L"CMD"), numberOf(record.get(), L"FirstData"),
                            numberOf(record.get(), L"SecondData"), numberOf(record.get(), L"ExtraData")};
  Comparison comparison("take over an answer of " + std::to_string(entries) + " entries",
                        "the bare Invoke calls", timeAtMost(1.1));
  for (int run = 0; run < runs; ++run) {
    cListRequest copy;
    const double ours = seconds([&] { pbx::copyEntries(*object, entries, copy, [] { return true; }); });
    if (copy.Count() != entries) throw std::runtime_error("entries are missing");
    comparison.add(ours, seconds([&] { bareCopy(record.get(), entries, members); }));
  }
  comparison.print(entries);
}

int run(int count, wchar_t** words) {
  const std::wstring what = count > 1 ? words[1] : L"";
  if (what == L"call") {
    measureCall();
  } else if (what == L"record" && count == 3) {
    measureRecord(_wtoi(words[2]));
  } else {
    std::fputs("usage: automation_bench call | record ENTRIES\n", stderr);
    return 2;
  }
  return 0;
}

}  // namespace
}  // namespace vordane::bench

int main() {
  int count = 0;
  wchar_t** const words = CommandLineToArgvW(GetCommandLineW(), &count);
  vordane::com::Apartment apartment;
  try {
    return vordane::bench::run(count, words);
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "failed: %s\n", failure.what());
    return 1;
  }
}
