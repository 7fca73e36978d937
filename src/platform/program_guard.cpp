#include "platform/program_guard.h"

#include <algorithm>
#include <map>
#include <string_view>

namespace vordane::guard {
namespace {

// The bits of a file's or folder's rights that lead to another program in its place.
constexpr std::uint32_t writeData = 0x2;  // of a folder: adds a file, a library beside the program among them
constexpr std::uint32_t deleteChild = 0x40;
constexpr std::uint32_t deleteIt = 0x10000;
constexpr std::uint32_t writeRights = 0x40000;
constexpr std::uint32_t takeOver = 0x80000;
constexpr std::uint32_t writeAll = 0x40000000, doAll = 0x10000000;  // not yet spelt out

constexpr std::uint32_t rightsThatReplace(Kind kind) {
  switch (kind) {
    case Kind::program:
      return writeData | deleteIt | writeRights | takeOver;
    case Kind::folder:
      return writeData | deleteChild | deleteIt | writeRights | takeOver;
    case Kind::above:  // a folder of one's own there does no harm; renaming the one below does
      return deleteChild | deleteIt | writeRights | takeOver;
  }
  return 0;
}

std::uint32_t speltOut(std::uint32_t rights) {
  if ((rights & doAll) != 0) rights |= writeData | deleteChild | deleteIt | writeRights | takeOver;
  if ((rights & writeAll) != 0) rights |= writeData;
  return rights;
}

constexpr std::u16string_view everyone = u"S-1-1-0";
constexpr std::u16string_view ownerRights = u"S-1-3-4";
// The system, administrators, the system's installer; "creator owner" stands for nobody on a place itself.
constexpr std::u16string_view trusted[] = {u"S-1-5-18", u"S-1-5-32-544",
                                           u"S-1-5-80-956008885-3418522649-1831038044-1853292631-2271478464",
                                           u"S-1-3-0"};
// Of a domain or a workstation: its first account, domain administrators, enterprise administrators.
constexpr std::u16string_view administratorEnds[] = {u"-500", u"-512", u"-519"};

bool isTrusted(std::u16string_view sid) {
  if (std::find(std::begin(trusted), std::end(trusted), sid) != std::end(trusted)) return true;
  return sid.starts_with(u"S-1-5-21-") &&
         std::any_of(std::begin(administratorEnds), std::end(administratorEnds),
                     [&](std::u16string_view end) { return sid.ends_with(end); });
}

class Reader {
 public:
  Reader(const Place& place, std::vector<Finding>& findings) : place_(place), findings_(findings) {}

  void read() {
    if (place_.unguarded) return add({std::u16string(everyone), u"Everyone"});
    if (!limitsOwner()) allow(place_.owner, writeRights);  // an owner may always give himself the rest
    for (const Entry& entry : place_.entries) take(entry);
  }

 private:
  bool limitsOwner() const {
    return std::any_of(place_.entries.begin(), place_.entries.end(), [](const Entry& entry) {
      return !entry.forOthersOnly && entry.account.sid == ownerRights;
    });
  }

  void take(const Entry& entry) {
    if (entry.forOthersOnly) return;
    const Account& account = entry.account.sid == ownerRights ? place_.owner : entry.account;
    const std::uint32_t rights = speltOut(entry.rights);
    if (entry.allows)
      allow(account, rights);
    else
      denied_[account.sid] |= rights;
  }

  // The first line that speaks of a right decides; a group's denial is not known to hold for its members.
  void allow(const Account& account, std::uint32_t rights) {
    rights &= rightsThatReplace(place_.kind) & ~denied_[account.sid] & ~denied_[std::u16string(everyone)];
    if (rights != 0 && !isTrusted(account.sid)) add(account);
  }

  void add(const Account& account) {
    const Finding finding{place_.path, account.name.empty() ? account.sid : account.name};
    if (std::find(findings_.begin(), findings_.end(), finding) == findings_.end())
      findings_.push_back(finding);
  }

  const Place& place_;
  std::vector<Finding>& findings_;
  std::map<std::u16string, std::uint32_t> denied_;
};

}  // namespace

std::vector<Finding> whoMayReplace(std::span<const Place> places) {
  std::vector<Finding> findings;
  for (const Place& place : places) Reader(place, findings).read();
  return findings;
}

std::u16string sentence(const Finding& finding) {
  return finding.account + u" may write to " + finding.path;
}

}  // namespace vordane::guard
