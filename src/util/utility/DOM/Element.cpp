#include "util/utility/DOM/Element.h"

#include <pugixml.hpp>

#include "util/utility/Messages.h"

namespace Orvo::DOM {

namespace {

pugi::xml_node node(pugi::xml_node_struct* n) noexcept { return pugi::xml_node(n); }

}  // namespace

bool Element::hasAttribute(std::wstring const& name) const {
  return !node(m_node).attribute(Messages::wideToUtf8(name).c_str()).empty();
}

std::optional<std::wstring> Element::getAttribute(std::wstring const& name) const {
  pugi::xml_attribute const attribute = node(m_node).attribute(Messages::wideToUtf8(name).c_str());
  if (attribute.empty()) return std::nullopt;
  return Messages::utf8ToWide(attribute.value());
}

char const* Element::getAttributeUtf8(char const* name) const noexcept {
  pugi::xml_attribute const attribute = node(m_node).attribute(name);
  return attribute.empty() ? nullptr : attribute.value();
}

std::size_t Element::getAttributesUtf8(AttributeUtf8* out, std::size_t capacity) const noexcept {
  std::size_t count = 0;
  for (pugi::xml_attribute a = node(m_node).first_attribute(); a; a = a.next_attribute(), ++count)
    if (count < capacity) out[count] = AttributeUtf8{a.name(), a.value()};
  return count;
}

void Element::setAttribute(std::wstring const& name, std::wstring const& value) {
  pugi::xml_node n = node(m_node);
  if (n.empty()) return;
  std::string const key = Messages::wideToUtf8(name);
  pugi::xml_attribute attribute = n.attribute(key.c_str());
  if (attribute.empty()) attribute = n.append_attribute(key.c_str());
  attribute.set_value(Messages::wideToUtf8(value).c_str());
}

std::vector<std::wstring> Element::getAttributeNames() const {
  std::vector<std::wstring> names;
  for (pugi::xml_attribute const& attribute : node(m_node).attributes())
    names.push_back(Messages::utf8ToWide(attribute.name()));
  return names;
}

Element Element::getFirstChildElement() const noexcept {
  for (pugi::xml_node n = node(m_node).first_child(); n; n = n.next_sibling())
    if (n.type() == pugi::node_element) return Element(n.internal_object());
  return Element();
}

Element Element::getFirstChildElement(std::wstring const& name) const {
  return Element(node(m_node).child(Messages::wideToUtf8(name).c_str()).internal_object());
}

Element Element::getNextSiblingElement() const noexcept {
  for (pugi::xml_node n = node(m_node).next_sibling(); n; n = n.next_sibling())
    if (n.type() == pugi::node_element) return Element(n.internal_object());
  return Element();
}

std::vector<Element> Element::getChildElements() const {
  std::vector<Element> children;
  for (Element e = getFirstChildElement(); e; e = e.getNextSiblingElement()) children.push_back(e);
  return children;
}

Element Element::appendElement(std::wstring const& name) {
  pugi::xml_node n = node(m_node);
  if (n.empty()) return Element();
  return Element(n.append_child(Messages::wideToUtf8(name).c_str()).internal_object());
}

void Element::setTextContent(std::wstring const& text) {
  pugi::xml_node n = node(m_node);
  if (n.empty()) return;
  while (n.first_child()) n.remove_child(n.first_child());
  n.append_child(pugi::node_pcdata).set_value(Messages::wideToUtf8(text).c_str());
}

}  // namespace Orvo::DOM
