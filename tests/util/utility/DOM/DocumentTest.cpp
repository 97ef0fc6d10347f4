#include "util/utility/DOM/Document.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "util/utility/ParseException.h"

using Orvo::DOM::Document;
using Orvo::DOM::Element;

namespace {

std::string parseFailure(std::wstring const& text) {
  Document document;
  EXPECT_TRUE(document.create());
  try {
    document.loadFromText(text);
  } catch (Orvo::ParseException const& e) {
    EXPECT_TRUE(document.getRoot().isNull());
    return e.what();
  }
  return "no failure";
}

}  // namespace

TEST(DocumentTest, ReadsElementsAttributesAndText) {
  Document document;
  ASSERT_TRUE(document.create());
  document.loadFromText(L"<?xml version=\"1.0\"?>\n<machine version=\"1.0\"><vendor>Acme &amp; S\u00f6hne</vendor>"
                        L"<!-- a comment --><axis id=\"X\"/><axis id=\"Y\"/></machine>");
  Element const root = document.getRoot();
  ASSERT_FALSE(root.isNull());
  EXPECT_EQ(root.getName(), L"machine");
  EXPECT_EQ(root.getAttribute(L"version").value(), L"1.0");
  EXPECT_FALSE(root.getAttribute(L"inherit").has_value());
  EXPECT_FALSE(root.hasAttribute(L"inherit"));
  auto const children = root.getChildElements();
  ASSERT_EQ(children.size(), 3u);
  EXPECT_EQ(children[0].getTextContent(), L"Acme & S\u00f6hne");
  EXPECT_EQ(children[1].getAttribute(L"id").value(), L"X");
  EXPECT_EQ(children[2].getAttribute(L"id").value(), L"Y");
  EXPECT_EQ(root.getFirstChildElement(L"axis"), children[1]);
  EXPECT_TRUE(root.getFirstChildElement(L"spindle").isNull());
  EXPECT_EQ(children[1].getParent(), root);
}

TEST(DocumentTest, WritesWhatItReadsBack) {
  Document document;
  ASSERT_TRUE(document.create());
  Element root = document.createRoot(L"machine");
  root.setAttribute(L"version", L"1.0");
  root.appendElement(L"vendor").setTextContent(L"A < B \"quoted\"");
  Element axis = root.appendElement(L"axis");
  axis.setAttribute(L"id", L"X");
  axis.setAttribute(L"range", L"-100 100");
  axis.setAttribute(L"id", L"Y");  // replaces, keeps its place
  std::wstring const text = document.getXML();
  EXPECT_EQ(text,
            L"<?xml version=\"1.0\"?>\n<machine version=\"1.0\">\n  <vendor>A &lt; B \"quoted\"</vendor>\n"
            L"  <axis id=\"Y\" range=\"-100 100\" />\n</machine>\n");
  Document again;
  ASSERT_TRUE(again.create());
  again.loadFromText(text);
  EXPECT_EQ(again.getRoot().getFirstChildElement(L"vendor").getTextContent(), L"A < B \"quoted\"");
  EXPECT_EQ(again.getRoot().getFirstChildElement(L"axis").getAttributeNames(),
            (std::vector<std::wstring>{L"id", L"range"}));
}

TEST(DocumentTest, MalformedTextGivesLineAndColumn) {
  EXPECT_EQ(parseFailure(L"<machine>\n  <axis id=\"X\">\n</machine>"),
            "Malformed XML: Start-end tags mismatch at line 3, column 3.");
  EXPECT_EQ(parseFailure(L""), "Malformed XML: No document element found at line 1, column 1.");
  EXPECT_EQ(parseFailure(L"<a x=1/>"), "Malformed XML: Error parsing element attribute at line 1, column 6.");
}

TEST(DocumentTest, FailuresInWideTextArePlacedInTheTextAsGiven) {
  // Wide text is parsed in place, where line ends and references are
  // rewritten; the place of a failure is still that of the text given, the
  // same as from its UTF-8.
  std::wstring const text = L"<m a=\"x&amp;y\">\r\n  <b>t&#233;xt\r\n</m>";
  std::string failureFromUtf8;
  Document document;
  ASSERT_TRUE(document.create());
  try {
    document.loadFromUtf8("<m a=\"x&amp;y\">\r\n  <b>t&#233;xt\r\n</m>");
  } catch (Orvo::ParseException const& e) {
    failureFromUtf8 = e.what();
  }
  EXPECT_EQ(parseFailure(text), "Malformed XML: Start-end tags mismatch at line 3, column 3.");
  EXPECT_EQ(parseFailure(text), failureFromUtf8);
  // After a byte order mark, counted from the character after it.
  EXPECT_EQ(parseFailure(L"\uFEFF<a x=1/>"), "Malformed XML: Error parsing element attribute at line 1, column 6.");
}

TEST(DocumentTest, ADocumentLoadedAgainHoldsOnlyTheNewText) {
  Document document;
  ASSERT_TRUE(document.create());
  document.loadFromText(L"\uFEFF<first a=\"1\"><x>one</x></first>");
  EXPECT_EQ(document.getRoot().getName(), L"first");
  document.loadFromText(L"<second b=\"2\"><y>two &amp; more</y></second>");
  EXPECT_EQ(document.getRoot().getName(), L"second");
  EXPECT_EQ(document.getRoot().getAttribute(L"b").value(), L"2");
  EXPECT_EQ(document.getRoot().getFirstChildElement(L"y").getTextContent(), L"two & more");
  EXPECT_FALSE(document.getRoot().getAttribute(L"a").has_value());
  document.loadFromUtf8("<third/>");
  EXPECT_EQ(document.getRoot().getName(), L"third");
  // A failed load leaves the document empty, and the next load works.
  EXPECT_EQ(parseFailure(L"<broken"), "Malformed XML: Error parsing start element tag at line 1, column 7.");
  EXPECT_THROW(document.loadFromText(L"<broken"), Orvo::ParseException);
  EXPECT_TRUE(document.getRoot().isNull());
  document.loadFromText(L"<fourth/>");
  EXPECT_EQ(document.getRoot().getName(), L"fourth");
}

TEST(DocumentTest, NestingIsCountedPastTheFirstBlockOfText) {
  // The '<' are counted sixteen bytes at a time in blocks of 4,080 bytes;
  // deep nesting after a long first block is still found, from both forms.
  std::wstring text = L"<root pad=\"" + std::wstring(5000, L'x') + L"\">";
  std::size_t const depth = Document::kNestingLimit;
  for (std::size_t i = 0; i < depth; ++i) text += L"<e>";
  for (std::size_t i = 0; i < depth; ++i) text += L"</e>";
  text += L"</root>";
  EXPECT_EQ(parseFailure(text), "Malformed XML: elements nested deeper than 256 levels at line 1, column 5780.");
  Document document;
  ASSERT_TRUE(document.create());
  EXPECT_THROW(document.loadFromUtf8(std::string(text.begin(), text.end())), Orvo::ParseException);
}

TEST(DocumentTest, NestingBeyondTheLimitIsRefused) {
  auto nested = [](std::size_t depth) {
    std::wstring text;
    for (std::size_t i = 0; i < depth; ++i) text += L"<e>";
    text += L"x";
    for (std::size_t i = 0; i < depth; ++i) text += L"</e>";
    return text;
  };
  Document document;
  ASSERT_TRUE(document.create());
  EXPECT_NO_THROW(document.loadFromText(nested(Document::kNestingLimit)));
  // The place is that of the name of the first element too deep.
  EXPECT_EQ(parseFailure(nested(Document::kNestingLimit + 1)),
            "Malformed XML: elements nested deeper than 256 levels at line 1, column 770.");
}

TEST(DocumentTest, AWideShallowDocumentWithMoreTagsThanTheNestingLimitIsAccepted) {
  // More '<' than the limit, so the tree is walked, but only two levels deep.
  std::wstring text = L"<root>";
  for (std::size_t i = 0; i < 2 * Document::kNestingLimit; ++i) text += L"<e a='1'/>";
  text += L"</root>";
  Document document;
  ASSERT_TRUE(document.create());
  EXPECT_NO_THROW(document.loadFromText(text));
  std::size_t children = 0;
  for (Element e = document.getRoot().getFirstChildElement(); e; e = e.getNextSiblingElement()) ++children;
  EXPECT_EQ(children, 2 * Document::kNestingLimit);
}

TEST(DocumentTest, EntitiesOfADocumentTypeAreNotExpanded) {
  // Neither an external entity nor an internal one is ever resolved: the
  // reference stays as text.
  Document document;
  ASSERT_TRUE(document.create());
  document.loadFromText(
      L"<!DOCTYPE machine [<!ENTITY secret SYSTEM \"file:///etc/passwd\"><!ENTITY a \"aaaa\">]>"
      L"<machine><vendor>&secret;&a;</vendor></machine>");
  EXPECT_EQ(document.getRoot().getFirstChildElement(L"vendor").getTextContent(), L"&secret;&a;");
}

TEST(DocumentTest, NamesAndAttributeValuesAsTheDocumentHoldsThemInUtf8) {
  Document document;
  ASSERT_TRUE(document.create());
  document.loadFromText(L"<axis range=\"-1 1\" id=\"U\" name=\"B&#246;\"><k\u00f6/>text</axis>");
  Element const root = document.getRoot();
  EXPECT_STREQ(root.getNameUtf8(), "axis");
  EXPECT_STREQ(root.getFirstChildElement().getNameUtf8(), "k\xC3\xB6");
  EXPECT_STREQ(root.getAttributeUtf8("name"), "B\xC3\xB6");
  EXPECT_STREQ(root.getAttributeUtf8("range"), "-1 1");
  EXPECT_EQ(root.getAttributeUtf8("Range"), nullptr);
  // Not an element, and no element at all.
  EXPECT_STREQ(root.getFirstChild().getNextSibling().getNameUtf8(), "");
  EXPECT_STREQ(Element().getNameUtf8(), "");
  EXPECT_EQ(Element().getAttributeUtf8("id"), nullptr);
}

TEST(DocumentTest, AllAttributesInDocumentOrderInOneWalk) {
  Document document;
  ASSERT_TRUE(document.create());
  document.loadFromText(L"<axis range=\"-1 1\" id=\"U\" name=\"B&#246;\"/>");
  Element const root = document.getRoot();
  Element::AttributeUtf8 attributes[3] = {};
  ASSERT_EQ(root.getAttributesUtf8(attributes, 3), 3u);
  EXPECT_STREQ(attributes[0].name, "range");
  EXPECT_STREQ(attributes[0].value, "-1 1");
  EXPECT_STREQ(attributes[1].name, "id");
  EXPECT_STREQ(attributes[1].value, "U");
  EXPECT_STREQ(attributes[2].name, "name");
  EXPECT_STREQ(attributes[2].value, "B\xC3\xB6");
  // Fewer places than attributes: the first ones, and the whole count.
  Element::AttributeUtf8 first[1] = {};
  EXPECT_EQ(root.getAttributesUtf8(first, 1), 3u);
  EXPECT_STREQ(first[0].name, "range");
  EXPECT_EQ(root.getAttributesUtf8(nullptr, 0), 3u);
  EXPECT_EQ(Element().getAttributesUtf8(attributes, 3), 0u);
}

TEST(DocumentTest, NullHandlesAnswerEmpty) {
  Element const none;
  EXPECT_TRUE(none.isNull());
  EXPECT_EQ(none.getName(), L"");
  EXPECT_FALSE(none.getAttribute(L"id").has_value());
  EXPECT_TRUE(none.getChildElements().empty());
  Document document;
  EXPECT_FALSE(document.isCreated());
  EXPECT_TRUE(document.getRoot().isNull());
  EXPECT_EQ(document.getXML(), L"");
}
