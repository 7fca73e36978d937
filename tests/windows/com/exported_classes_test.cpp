// Every value that our own classes and the simulator's hold can be read in each way that callers use.
#include <gtest/gtest.h>

#include "pbx/cListRequest.h"
#include "pbx/cSLVRequest.h"
#include "platform/windows/com/objects.h"
#include "raw_call.h"
#include "zulsim/core/answer_record.h"

namespace vordane::test {
namespace {

using automation::MemberKind;

std::shared_ptr<automation::TableObject> listRequest() {
  auto record = std::make_shared<cListRequest>();
  record->AddToList(u"LEA0", u"11 MJ", u"");
  return record;
}
std::shared_ptr<automation::TableObject> filesRequest() {
  auto record = std::make_shared<cSLVRequest>(u"20.11.2026 21:14");
  record->AddFileName(u"FAULT.TXT");
  return record;
}
std::shared_ptr<automation::TableObject> answer() {
  auto record = std::make_shared<zulsim::AnswerRecord>();
  record->addEntry(u"LEA0", {});
  return record;
}

class Values : public testing::TestWithParam<std::shared_ptr<automation::TableObject> (*)()> {};

TEST_P(Values, AreReadAsPropertyAsMethodAndAsBoth) {
  const auto object = GetParam()();
  const com::ComPtr<IDispatch> face = com::exportObject(object);
  int read = 0;
  for (const automation::Member& member : object->table().members) {
    if (member.kind != MemberKind::readOnly && member.kind != MemberKind::readWrite) continue;
    SCOPED_TRACE(std::string(member.name.begin(), member.name.end()));
    const std::vector<VARIANT> index(member.parameters.size(), raw(std::int16_t{0}));
    const Answer plain = rawInvoke(face.get(), member.dispid, get, index);
    ASSERT_EQ(plain.result, S_OK);
    for (const WORD flags : {method, static_cast<WORD>(method | get)}) {
      const Answer other = rawInvoke(face.get(), member.dispid, flags, index);
      EXPECT_EQ(other.result, S_OK);
      EXPECT_EQ(other.value.type(), plain.value.type());
      EXPECT_EQ(text(other), text(plain));
    }
    ++read;
  }
  EXPECT_GE(read, 18);
}

INSTANTIATE_TEST_SUITE_P(Records, Values, testing::Values(&listRequest, &filesRequest, &answer));

}  // namespace
}  // namespace vordane::test
