#include "util/utility/DOM/Node.h"

#include <pugixml.hpp>

#include "util/utility/DOM/Element.h"
#include "util/utility/Messages.h"

namespace Orvo::DOM {

namespace {

pugi::xml_node node(pugi::xml_node_struct* n) noexcept { return pugi::xml_node(n); }

}  // namespace

bool Node::isElement() const noexcept { return node(m_node).type() == pugi::node_element; }

bool Node::isText() const noexcept {
  auto const type = node(m_node).type();
  return type == pugi::node_pcdata || type == pugi::node_cdata;
}

std::wstring Node::getName() const {
  if (!isElement()) return std::wstring();
  return Messages::utf8ToWide(node(m_node).name());
}

char const* Node::getNameUtf8() const noexcept {
  if (!isElement()) return "";
  return node(m_node).name();
}

std::wstring Node::getTextContent() const {
  pugi::xml_node const n = node(m_node);
  // Decoded straight from the document, without a narrow copy on the way.
  std::wstring text;
  Messages::appendUtf8AsWide(isText() ? n.value() : n.text().get(), text);
  return text;
}

Node Node::getParent() const noexcept { return Node(node(m_node).parent().internal_object()); }
Node Node::getFirstChild() const noexcept { return Node(node(m_node).first_child().internal_object()); }
Node Node::getNextSibling() const noexcept { return Node(node(m_node).next_sibling().internal_object()); }

Element Node::toElement() const noexcept { return isElement() ? Element(m_node) : Element(); }

std::size_t Node::getSourceOffset() const noexcept {
  auto const offset = node(m_node).offset_debug();
  return offset < 0 ? 0 : static_cast<std::size_t>(offset);
}

}  // namespace Orvo::DOM
