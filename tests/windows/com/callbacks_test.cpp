// What fails inside a function that the system calls stays there.
#include <gtest/gtest.h>

#include <stdexcept>

#include "platform/windows/com/apartment.h"

namespace vordane::com {
namespace {

TEST(MessageLoop, GoesOnBehindAMessageThatFails) {
  constexpr UINT failing = WM_APP + 50, last = WM_APP + 51;
  PostThreadMessageW(GetCurrentThreadId(), failing, 0, 0);
  PostThreadMessageW(GetCurrentThreadId(), last, 0, 0);
  int seen = 0;
  const int code = runMessageLoop([&](MSG& message) {
    ++seen;
    if (message.message == last) PostQuitMessage(3);
    throw std::runtime_error("no room");
    return true;
  });
  EXPECT_EQ(code, 3);
  EXPECT_GE(seen, 2);
}

class FailingQuestions : public platform::CallQuestions {
 public:
  bool unattended() override {
    ++asked;
    throw std::runtime_error("no room");
  }
  bool askWhileBusy() override {
    ++asked;
    throw std::runtime_error("no room");
  }
  void tellPending() override {
    ++asked;
    throw std::runtime_error("no room");
  }
  int asked = 0;
};

TEST(CallFilter, AQuestionThatFailsGivesTheCallUpAndAPendingOneGoesOn) {
  FailingQuestions questions;
  Apartment apartment;
  apartment.filterCalls(questions);
  apartment.setCallTimes({0, 0});
  ComPtr<IMessageFilter> filter;
  ASSERT_EQ(CoRegisterMessageFilter(nullptr, filter.put()), S_OK);
  ASSERT_TRUE(filter);
  EXPECT_EQ(filter->RetryRejectedCall(nullptr, 60000, SERVERCALL_RETRYLATER), static_cast<DWORD>(-1));
  EXPECT_EQ(filter->MessagePending(nullptr, 60000, PENDINGTYPE_TOPLEVEL),
            static_cast<DWORD>(PENDINGMSG_WAITDEFPROCESS));
  EXPECT_EQ(questions.asked, 2);
}

}  // namespace
}  // namespace vordane::com
