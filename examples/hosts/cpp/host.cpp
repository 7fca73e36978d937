// A host in C++, bound early: it was compiled against Vordane10013.h, the classes of the type library that
// VORDANE.EXE carries, and calls every member by its number. (A compiler that has #import makes such a header
// by itself, with the same names: #import "VORDANE.EXE".) It is its own exchange server, runs a job
// unattended, prints every notification, and lets go.
//
//   cpphost [EXCHANGE [KEY [SECONDS]]]      defaults: CPP 1 60
//
// Exit code: 0 the job's end was notified, 1 it was not, 2 an error, 3 the installed add-in has another
// library.
#include <cstdio>
#include <cstdlib>
#include <deque>

#include "Vordane10013.h"
#include "lent_object.h"
#include "library_check.h"

namespace {

using dispatch::Arguments;
using dispatch::Object;
using dispatch::Value;

void tell(const std::wstring& line) {
  std::string bytes(3 * line.size() + 1, '\0');
  const int length = WideCharToMultiByte(CP_UTF8, 0, line.data(), static_cast<int>(line.size()), bytes.data(),
                                         static_cast<int>(bytes.size()), nullptr, nullptr);
  std::printf("%.*s\n", length, bytes.data());
  std::fflush(stdout);
}

std::wstring hexadecimal(HRESULT code) {
  wchar_t text[16];
  swprintf(text, 16, L"0x%08lX", static_cast<unsigned long>(code));
  return text;
}

// Who asked the exchange, and what.
struct Question {
  Object window;
  Vordane10013::cListRequest record;
};

// The exchange server of this host: takes requests, and answers them when the host says so.
class Exchange {
 public:
  Object object() {
    return dispatch::lend({
        {L"Login",
         [this](const Arguments& given) { return login(given.as<std::wstring>(0), given.as<Object>(1)); }},
        {L"SendRequest", [this](const Arguments& given) { return take(given.as<Object>(0)); }},
        {L"LogOut",
         [](const Arguments& given) {
           tell(L"LogOut " + given.as<std::wstring>(0) + L" " + given.as<std::wstring>(1));
           return Value();
         }},
        {L"CancelRequest",
         [this](const Arguments&) {
           tell(L"CancelRequest");
           questions_.clear();
           return Value();
         }},
    });
  }

  bool asked() const { return !questions_.empty(); }

  void answer() {
    const Question question = questions_.front();
    questions_.pop_front();
    const auto answer = dispatch::create<Vordane10013::cListRequest>();
    answer.PutTag(question.record.GetTag());
    answer.PutLoginID(question.record.GetLoginID());
    answer.PutErrCode(0);
    if (question.record.GetTag() == L"10")
      for (const wchar_t* part : {L"11 MJ LP 0C", L"06/11/27 10:15", L"02 00 00", L"00"})
        answer.AddToList(L"LEA0", part);
    else
      answer.AddToList(L"EA1", L"00", L"10", L"OK");
    tell(L"answering with " + std::to_wstring(answer.GetCount()) + L" entries");
    question.window.call(L"CallBack", Value(answer.get()));
  }

  void letGo() {
    questions_.clear();
    window_.release();
  }

 private:
  Value login(const std::wstring& name, const Object& window) {
    tell(L"Login " + name);
    window_ = window;
    return Value(L"C" + std::to_wstring(++logins_));
  }
  Value take(const Object& given) {
    const auto record = dispatch::as<Vordane10013::cListRequest>(given);
    tell(L"SendRequest " + record.GetCMD(0) + L" tag " + record.GetTag() + L" for " + record.GetPBXName());
    questions_.push_back({window_, record});
    return Value(L"TAKEN");
  }

  Object window_;
  std::deque<Question> questions_;
  int logins_ = 0;
};

class Host {
 public:
  Object object() {
    const Object access = dispatch::lend({
        {L"getsysinfo", [](const Arguments&) { return Value(static_cast<short>(2)); }},
        {L"GetMPVersion", [](const Arguments&) { return Value(L"SC-1000 M"); }},
    });
    const Object exchange = exchange_.object();
    return dispatch::lend({
        {L"oPBX", [exchange](const Arguments&) { return Value(exchange.get()); }},
        {L"oZUL", [access](const Arguments&) { return Value(access.get()); }},
        {L"ShowMessage",
         [](const Arguments& given) { return told(L"ShowMessage " + given.as<std::wstring>(0)); }},
        {L"ShowCode", [](const Arguments& given) { return told(L"ShowCode " + given.as<std::wstring>(0)); }},
        {L"TurnOnFlow", [this](const Arguments&) { return flowing_ = true, told(L"TurnOnFlow"); }},
        {L"TurnOffFlow", [this](const Arguments&) { return flowing_ = false, told(L"TurnOffFlow"); }},
        {L"EndProcess",
         [this](const Arguments& given) {
           ended_ = true;
           return told(L"EndProcess " + given.as<std::wstring>(0) + L" " + given.as<std::wstring>(1));
         }},
        {L"UnloadChild",
         [this](const Arguments& given) {
           unloaded_ = true;
           return told(L"UnloadChild " + given.as<std::wstring>(0));
         }},
        {L"GetComData",
         [](const Arguments& given) {
           given.put(2, L"1200,900");  // where the window stood last
           return told(L"GetComData " + given.as<std::wstring>(1));
         }},
        {L"REGComData",
         [](const Arguments& given) {
           return told(L"REGComData " + given.as<std::wstring>(1) + L" " + given.as<std::wstring>(2));
         }},
    });
  }

  // Serves calls, and answers what the exchange was asked once the window has heard that it was accepted.
  bool waitForEnd(int seconds) {
    const ULONGLONG end = GetTickCount64() + 1000ULL * seconds;
    while (!(ended_ && unloaded_) && GetTickCount64() < end) {
      if (flowing_ && exchange_.asked()) exchange_.answer();
      MSG message;
      MsgWaitForMultipleObjects(0, nullptr, FALSE, 50, QS_ALLINPUT);
      while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
    }
    return ended_ && unloaded_;
  }

  void letGo() { exchange_.letGo(); }

 private:
  static Value told(const std::wstring& line) {
    tell(line);
    return Value();
  }
  Exchange exchange_;
  bool flowing_ = false, ended_ = false, unloaded_ = false;
};

template <class Class>
dispatch::CompiledClass compiled(const wchar_t* name) {
  return {name, Class::iid, Class::members};
}

bool libraryFits() {
  const dispatch::CompiledClass classes[] = {compiled<Vordane10013::cOLELayer>(L"cOLELayer"),
                                             compiled<Vordane10013::cListRequest>(L"cListRequest"),
                                             compiled<Vordane10013::cSLVRequest>(L"cSLVRequest")};
  const auto found = dispatch::differences(Vordane10013::libid, classes);
  for (const std::wstring& line : found) tell(line);
  std::size_t members = 0;
  for (const auto& one : classes) members += one.members.size();
  if (found.empty())
    tell(L"the installed library has the " + std::to_wstring(members) + L" members of this host");
  return found.empty();
}

// A wrong argument is refused with its position, and the object goes on.
void showRefusal(const Vordane10013::cOLELayer& layer) {
  try {
    layer.call(L"SetBackGround", Value(L"the blue ones"));
  } catch (const dispatch::Error& error) {
    tell(L"SetBackGround refused " + hexadecimal(error.code()) + L" argument " +
         std::to_wstring(error.argument()));
  }
  layer.SetBackGround(0);
}

// The other kind of record: bytes, long numbers, and a file that is not there.
void showFileRecord() {
  const auto files = dispatch::create<Vordane10013::cSLVRequest>();
  files.PutAreaNum(200);
  files.PutErrCount(70000);
  files.AddFileName(L"OFFICE.DAT");
  tell(L"a file record " + std::to_wstring(files.GetObjectID()) + L": " +
       std::to_wstring(files.GetAreaNum()) + L" " + std::to_wstring(files.GetErrCount()) + L" " +
       std::to_wstring(files.GetFileCount()) + L" [" + files.GetFileName(0) + L"] [" + files.GetFileName(1) +
       L"]");
}

int converse(const std::wstring& exchange, const std::wstring& key, int seconds) {
  if (!libraryFits()) return 3;
  Host host;
  bool ended = false;
  {
    const Object parent = host.object();
    const auto layer = dispatch::create<Vordane10013::cOLELayer>();
    tell(std::wstring(L"RegisterPBX ") +
         (layer.RegisterPBX(exchange, parent.get(), 7) ? L"failed" : L"done"));
    layer.PutVisible(true);
    tell(std::wstring(L"Visible ") + (layer.GetVisible() ? L"True" : L"False"));
    showRefusal(layer);
    showFileRecord();
    tell(L"RunSchedule " + std::to_wstring(layer.RunSchedule(key)));
    ended = host.waitForEnd(seconds);
    host.letGo();
  }  // the last reference to the layer goes here, and the add-in's process with it
  tell(ended ? L"done" : L"the job did not end in time");
  return ended ? 0 : 1;
}

}  // namespace

int wmain(int count, wchar_t** values) {
  const auto argument = [&](int index, const wchar_t* usual) {
    return std::wstring(count > index ? values[index] : usual);
  };
  int result = 2;
  if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return result;
  try {
    result = converse(argument(1, L"CPP"), argument(2, L"1"),
                      static_cast<int>(wcstol(argument(3, L"60").c_str(), nullptr, 10)));
  } catch (const dispatch::Error& error) {
    tell(L"error " + hexadecimal(error.code()) + L" " + error.description());
  }
  CoUninitialize();
  return result;
}
