#pragma once
// The common base of every object a post-processor script can hold.

namespace Orvo {

class ScriptObject {
public:
  ScriptObject() noexcept = default;
  ScriptObject(ScriptObject const&) noexcept = default;
  ScriptObject& operator=(ScriptObject const&) noexcept = default;

  /// The script class name of the class this object's class derives from, for
  /// a host that mirrors the class tree in its script engine. The root answers
  /// an empty text; a direct subclass answers "ScriptObject".
  virtual char const* getBaseClass() const noexcept;
  virtual ~ScriptObject() = default;
};

}  // namespace Orvo
