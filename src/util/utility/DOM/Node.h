#pragma once
// A handle to a node of an XML document (Document). Handles are small values
// that do not own their node: they stay valid as long as the document that
// made them lives and the node is not removed. A default handle is null, and
// every query on a null handle gives an empty or null answer.

#include <cstddef>
#include <string>

namespace pugi {
struct xml_node_struct;
}

namespace Orvo::DOM {

class Element;

class Node {
public:
  Node() noexcept = default;

  bool isNull() const noexcept { return m_node == nullptr; }
  explicit operator bool() const noexcept { return m_node != nullptr; }
  bool isElement() const noexcept;
  /// True for character data (text or CDATA).
  bool isText() const noexcept;

  /// The element's name; empty for other nodes.
  std::wstring getName() const;
  /// The element's name as the document holds it, in UTF-8; "" for other
  /// nodes. Valid while the document lives: for a reader that matches many
  /// names and converts none.
  char const* getNameUtf8() const noexcept;
  /// The node's own value: the characters of a text node. For an element,
  /// the characters of its first text child, which is how a leaf element
  /// such as <vendor>Acme</vendor> holds its value.
  std::wstring getTextContent() const;

  Node getParent() const noexcept;
  Node getFirstChild() const noexcept;
  Node getNextSibling() const noexcept;
  /// This node as an element, or a null element when it is not one.
  Element toElement() const noexcept;

  /// The byte offset of the node in the text it was read from, for
  /// messages; 0 for nodes made in memory.
  std::size_t getSourceOffset() const noexcept;

  friend bool operator==(Node const& a, Node const& b) noexcept { return a.m_node == b.m_node; }
  friend bool operator!=(Node const& a, Node const& b) noexcept { return a.m_node != b.m_node; }

protected:
  explicit Node(pugi::xml_node_struct* node) noexcept : m_node(node) {}
  pugi::xml_node_struct* m_node = nullptr;

  friend class Document;
};

}  // namespace Orvo::DOM
