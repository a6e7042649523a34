#include "exporters/XmlText.h"

#include <gtest/gtest.h>

namespace zuvo::exporters {
namespace {

TEST(XmlEscaped, replacesTheFiveCharacters) {
    EXPECT_EQ(xmlEscaped(R"(a & b < c > d " e ' f)"), "a &amp; b &lt; c &gt; d &quot; e &apos; f");
    EXPECT_EQ(xmlEscaped("&&<<"), "&amp;&amp;&lt;&lt;");
}

TEST(XmlEscaped, escapesWhatLooksLikeAnEntityOnce) {
    EXPECT_EQ(xmlEscaped("&amp;"), "&amp;amp;");
    EXPECT_EQ(xmlEscaped("&lt;<"), "&amp;lt;&lt;");
}

TEST(XmlEscaped, leavesAllElse) {
    EXPECT_EQ(xmlEscaped(""), "");
    EXPECT_EQ(xmlEscaped("Renée 🎬\r\n\t–"), "Renée 🎬\r\n\t–");
}

TEST(XmlEscaped, leavesWhatXmlDoesNotKnow) {
    EXPECT_EQ(xmlEscaped(std::string("\0\x01\xFF<", 4)), std::string("\0\x01\xFF&lt;", 7));
}

} // namespace
} // namespace zuvo::exporters
