#include "status/list_account.h"

#include "language/message_numbers.h"
#include "text/numbers.h"

namespace vordane::status {
namespace {

// Behind the account's own words, empty when they say enough.
std::u16string reason(const SharedState& state, const ListAccount& account) {
  switch (account.end) {
    case ListEnd::tooLong:
      return messageText(state, message::reasonTooLong);
    case ListEnd::textCut:
      return messageText(state, message::reasonTextCut);
    case ListEnd::accessError:
      return fillText(messageText(state, message::reasonAccess), {account.cause});
    case ListEnd::databaseError:
      return fillText(messageText(state, message::reasonDatabase), {account.cause});
    case ListEnd::noDatabase:
      return messageText(state, message::databaseNotOpen);
    default:
      return {};
  }
}

std::u16string withReason(const SharedState& state, const ListAccount& account, std::u16string line) {
  if (const std::u16string why = reason(state, account); !why.empty()) (line += u": ") += why;
  return line;
}

}  // namespace

std::u16string reasonText(const SharedState& state, const ListAccount& account) {
  return account.end == ListEnd::cutShort ? messageText(state, message::reasonCutShort)
                                          : reason(state, account);
}

std::u16string statusText(const SharedState& state, const ListAccount& account) {
  const auto pattern = account.complete() ? message::statusListComplete : message::statusListIncomplete;
  return withReason(
      state, account,
      fillText(messageText(state, pattern),
               {account.when, text::decimal(account.received), text::decimal(account.added),
                text::decimal(account.alreadyStored), text::decimal(account.refused()), account.exchange}));
}

std::u16string runLogText(const SharedState& state, const ListAccount& account) {
  const auto pattern = account.complete() ? message::runListComplete : message::runListIncomplete;
  return withReason(state, account,
                    fillText(messageText(state, pattern),
                             {text::decimal(account.received), text::decimal(account.added),
                              text::decimal(account.alreadyStored), text::decimal(account.refused())}));
}

}  // namespace vordane::status
