#include "text/markup.h"

#include <gtest/gtest.h>

namespace vordane::text {
namespace {

std::string marked(std::u16string_view text) {
  std::string out = "before ";
  appendMarkup(text, out);
  return out;
}

TEST(Markup, CharactersThatMeanSomethingInAPageAreWrittenOut) {
  EXPECT_EQ(marked(u"<b> & \"c\" 'd'"), "before &lt;b&gt; &amp; &quot;c&quot; 'd'");
  EXPECT_EQ(marked(u"&lt;"), "before &amp;lt;");
  EXPECT_EQ(marked(u""), "before ");
}

TEST(Markup, OtherLettersAndLineEndsStay) {
  EXPECT_EQ(marked(u"Ж\t\U0001F600\r\nx"), "before Ж\t\U0001F600\r\nx");
}

TEST(Markup, WhatNoPageMayHoldIsStoodInFor) {
  EXPECT_EQ(marked(std::u16string(u"a\0b\x1B", 4)),
            "before a\xEF\xBF\xBD"
            "b\xEF\xBF\xBD");
}

}  // namespace
}  // namespace vordane::text
