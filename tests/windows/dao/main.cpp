// One apartment for all tests of this program; the server beside it is registered for their time.
#include <gtest/gtest.h>

#include <string>

#include "platform/windows/com/apartment.h"
#include "platform/windows/com/owned.h"
#include "platform/windows/services/services.h"

namespace {

int runServer(const std::wstring& argument) {
  const std::u16string own = vordane::windows::executablePath();
  const std::wstring folder(own.begin(), own.begin() + static_cast<std::ptrdiff_t>(own.rfind(u'\\') + 1));
  std::wstring line = L"\"" + folder + L"daoserver.exe\" " + argument;
  STARTUPINFOW start{};
  start.cb = sizeof start;
  PROCESS_INFORMATION process{};
  if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &process))
    return -1;
  const vordane::com::Handle running(process.hProcess);
  const vordane::com::Handle thread(process.hThread);
  WaitForSingleObject(running.get(), 60000);
  DWORD code = 99;
  GetExitCodeProcess(running.get(), &code);
  return static_cast<int>(code);
}

class RegisteredServer : public testing::Environment {
 public:
  void SetUp() override {
    ASSERT_EQ(runServer(L"/RegServer"), 0);
    keeper_ = vordane::windows::ComObjectCreator().create(u"DAO.DBEngine.120");
  }
  void TearDown() override {
    keeper_ = nullptr;
    EXPECT_EQ(runServer(L"/UnregServer"), 0);
  }

 private:
  vordane::automation::ObjectRef keeper_;  // starting the server for each test would take most of the time
};

}  // namespace

int main(int count, char** arguments) {
  testing::InitGoogleTest(&count, arguments);
  const vordane::com::Apartment apartment;
  testing::AddGlobalTestEnvironment(new RegisteredServer);
  return RUN_ALL_TESTS();
}
