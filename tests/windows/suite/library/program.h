// Programs in processes of their own. Whatever a test has started ends with it.
#pragma once

#include <windows.h>

#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "library/layout.h"
#include "library/output.h"
#include "platform/windows/com/owned.h"

namespace vordane::suite {

class Program {
 public:
  using Arguments = std::vector<std::wstring>;
  enum class Station { shown, unseen };  // unseen: a window station that nobody sees, as a service has

  // Starts it in `folder`; throws Failure when it can't be started.
  Program(const Path& file, const Arguments& arguments, const Path& folder, Station station = Station::shown);
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;
  ~Program();  // ends it, if it has not ended

  bool runs() const;
  int wait() const;   // its exit code; throws Failure when it does not end
  void kill() const;  // without a word; returns when it has gone
  const Output& output() const { return *output_; }
  Output& output() { return *output_; }
  const std::string& name() const { return name_; }

 private:
  std::string name_;
  std::unique_ptr<Output> output_ = std::make_unique<Output>();
  com::Handle process_;
};

struct Ended {
  int code;
  std::string output;
};
// Runs it to its end.
Ended run(const Path& file, const Program::Arguments& arguments, const Path& folder = layout().programs);

// The running programs whose file lies below one of the suite's folders, by their numbers; with `name` those
// of that name alone ("VORDANE.EXE").
std::vector<DWORD> suitePrograms(const std::wstring& name = {});
bool isSuiteProgram(DWORD processId);
// Ends them and returns when they have gone.
void endSuitePrograms(const std::wstring& name = {});
// Waits until none of that name runs; throws Failure when one stays.
void awaitGone(const std::wstring& name = L"VORDANE.EXE");

}  // namespace vordane::suite
