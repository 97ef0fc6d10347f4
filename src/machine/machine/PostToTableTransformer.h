#pragma once
// Keeps the transform from a post-processor's output coordinates to table
// coordinates up to date, from the frames the post-processor announces as
// tagged frames and from the calculation mode, which follows the TCP and
// tilted work plane modes of the controller.

#include "nc/TaggedFrame.h"
#include "util/utility/math/Frame.h"
#include "util/utility/math/Point3D.h"
#include "util/utility/math/Transform3D.h"
#include "util/utility/math/Vector3D.h"

namespace machine {

class PostToTableTransformer {
public:
  enum class CalculationMode : int {
    /// The work offset's origin with the orientation of the TPCS.
    WORK_ORIGIN_TPCS_ORIENTATION = 0,
    /// The work CS whole, for TCP mode.
    TCP_WORK_CS = 1,
    /// The tilted work plane in place of the post output frame.
    SET_TILTED_WORK_PLANE = 2,
  };

  /// All frames and the transform the identity; nothing computed yet.
  PostToTableTransformer() noexcept;

  /// Takes the frame if its tag and base tag name one this class keeps; in
  /// every case the transform is then updated.
  void onTaggedFrame(Orvo::TaggedFrame const& frame);
  void setCalculationMode(CalculationMode mode);
  /// The post output frame becomes the identity frame carried by `transform`.
  void setTableToPostTransformation(Orvo::Transform3D const& transform);
  /// Requires SET_TILTED_WORK_PLANE, but stores the frame in any mode.
  void setTiltedWorkPlaneInWorkCs(Orvo::Frame const& frame);
  void update();

  Orvo::Point3D convertFromPostToTable(Orvo::Point3D const& point) const noexcept {
    return m_postToTableCoordinateTransform(point);
  }
  /// A vector takes the rotation alone.
  Orvo::Vector3D convertFromPostToTable(Orvo::Vector3D const& vector) const noexcept {
    return m_postToTableCoordinateTransform(vector);
  }
  /// The inverse, computed at each call.
  Orvo::Point3D convertFromTableToPost(Orvo::Point3D const& point) const noexcept {
    return m_postToTableCoordinateTransform.inverse()(point);
  }

  Orvo::Frame const& postOutputFrameInNcTable() const noexcept { return m_postOutputFrameInNcTable; }
  Orvo::Transform3D const& postToTableCoordinateTransform() const noexcept { return m_postToTableCoordinateTransform; }
  CalculationMode calculationMode() const noexcept { return m_calculationMode; }

private:
  void updatePostToTableTransform();
  Orvo::Transform3D calcPostToTableTransForSetTiltedWorkPlane() const noexcept;

  Orvo::Frame m_postOutputFrameInNcTable;
  Orvo::Frame m_workCsInModelCs;
  Orvo::Frame m_tpcsInModelCs;
  Orvo::Frame m_partReferenceInModelCs;
  Orvo::Frame m_userTableAttachInTableAttach;
  Orvo::Transform3D m_postToTableCoordinateTransform;
  Orvo::Frame m_tiltedWorkPlaneInWorkCs;
  CalculationMode m_calculationMode;
};

}  // namespace machine
