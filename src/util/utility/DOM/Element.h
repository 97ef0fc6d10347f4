#pragma once
// An element of an XML document: a name, attributes and children. Names and
// values are wide strings; the document keeps them in UTF-8.

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "util/utility/DOM/Node.h"

namespace Orvo::DOM {

class Element : public Node {
public:
  Element() noexcept = default;

  bool hasAttribute(std::wstring const& name) const;
  /// The attribute's value, absent when the element has no such attribute.
  std::optional<std::wstring> getAttribute(std::wstring const& name) const;
  /// The attribute's value as the document holds it, in UTF-8, or null when
  /// the element has no such attribute; the name is UTF-8 too. Valid while
  /// the document lives.
  char const* getAttributeUtf8(char const* name) const noexcept;
  /// One attribute as the document holds it, in UTF-8.
  struct AttributeUtf8 {
    char const* name;
    char const* value;
  };
  /// The first `capacity` attributes in document order into `out`; returns
  /// how many the element has, which may be more. Valid while the document
  /// lives: for a reader that takes every attribute of an element in one
  /// walk instead of searching the list once for each name.
  std::size_t getAttributesUtf8(AttributeUtf8* out, std::size_t capacity) const noexcept;
  /// Sets the attribute, adding it after the existing ones when it is new.
  void setAttribute(std::wstring const& name, std::wstring const& value);
  /// The attributes' names in document order.
  std::vector<std::wstring> getAttributeNames() const;

  Element getFirstChildElement() const noexcept;
  /// The first child element with the name, or a null element.
  Element getFirstChildElement(std::wstring const& name) const;
  Element getNextSiblingElement() const noexcept;
  std::vector<Element> getChildElements() const;

  /// A new element with the name, appended as the last child.
  Element appendElement(std::wstring const& name);
  /// Replaces the children by one text node holding `text`.
  void setTextContent(std::wstring const& text);

private:
  explicit Element(pugi::xml_node_struct* node) noexcept : Node(node) {}

  friend class Node;
  friend class Document;
};

}  // namespace Orvo::DOM
