#include "machine/machine/PostToTableTransformer.h"

#include "util/utility/Basic.h"

namespace machine {

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\PostToTableTransformer";

Orvo::Frame const kIdentityFrame{Orvo::IdentityTag{}};

bool isTag(Orvo::TaggedFrame const& frame, char const* tag, char const* baseFrameTag) {
  return frame.tag() == tag && frame.baseFrameTag() == baseFrameTag;
}
}  // namespace

PostToTableTransformer::PostToTableTransformer() noexcept
    : m_postOutputFrameInNcTable(kIdentityFrame),
      m_workCsInModelCs(kIdentityFrame),
      m_tpcsInModelCs(kIdentityFrame),
      m_partReferenceInModelCs(kIdentityFrame),
      m_userTableAttachInTableAttach(kIdentityFrame),
      m_postToTableCoordinateTransform(Orvo::IdentityTag{}),
      m_tiltedWorkPlaneInWorkCs(kIdentityFrame),
      m_calculationMode(CalculationMode::WORK_ORIGIN_TPCS_ORIENTATION) {}

void PostToTableTransformer::onTaggedFrame(Orvo::TaggedFrame const& frame) {
  if (isTag(frame, "ToolReference", "ToolCS")) {
    // The tool reference belongs to the solver, which takes it itself.
  } else if (isTag(frame, "WorkCS", "ModelCS")) {
    m_workCsInModelCs = frame.frame();
  } else if (isTag(frame, "PartReference", "ModelCS")) {
    m_partReferenceInModelCs = frame.frame();
  } else if (isTag(frame, "UserTableAttach", "TableAttach")) {
    m_userTableAttachInTableAttach = frame.frame();
  } else if (isTag(frame, "TPCS", "ModelCS")) {
    m_tpcsInModelCs = frame.frame();
  } else if (isTag(frame, "PostOutput", "NCTable")) {
    m_postOutputFrameInNcTable = frame.frame();
  }
  updatePostToTableTransform();
}

void PostToTableTransformer::setCalculationMode(CalculationMode mode) {
  m_calculationMode = mode;
  updatePostToTableTransform();
}

void PostToTableTransformer::setTableToPostTransformation(Orvo::Transform3D const& transform) {
  m_postOutputFrameInNcTable = kIdentityFrame.transformedBy(transform);
  updatePostToTableTransform();
}

void PostToTableTransformer::setTiltedWorkPlaneInWorkCs(Orvo::Frame const& frame) {
  ORVO_ASSERT(m_calculationMode == CalculationMode::SET_TILTED_WORK_PLANE);
  m_tiltedWorkPlaneInWorkCs = frame;
  updatePostToTableTransform();
}

void PostToTableTransformer::update() { updatePostToTableTransform(); }

void PostToTableTransformer::updatePostToTableTransform() {
  Orvo::Frame w = kIdentityFrame;
  switch (m_calculationMode) {
    case CalculationMode::TCP_WORK_CS:
      w = m_workCsInModelCs;
      break;
    case CalculationMode::WORK_ORIGIN_TPCS_ORIENTATION: {
      auto const f = Orvo::Frame::make(m_workCsInModelCs.origin(), m_tpcsInModelCs.xAxis(), m_tpcsInModelCs.zAxis());
      ORVO_ASSERT(f);
      if (f) w = *f;
      break;
    }
    case CalculationMode::SET_TILTED_WORK_PLANE:
      m_postToTableCoordinateTransform = calcPostToTableTransForSetTiltedWorkPlane();
      return;
    default:
      break;
  }
  // Read from the right: post output coordinates into the frame the post
  // output frame is given in, from W to model coordinates, and with the part
  // from its reference to where the user attached it on the table.
  m_postToTableCoordinateTransform =
      compose(Orvo::activeTransform3D(m_partReferenceInModelCs, m_userTableAttachInTableAttach),
              compose(Orvo::coordinateTransform3D(w, kIdentityFrame),
                      Orvo::coordinateTransform3D(m_postOutputFrameInNcTable, kIdentityFrame)));
}

Orvo::Transform3D PostToTableTransformer::calcPostToTableTransForSetTiltedWorkPlane() const noexcept {
  return compose(Orvo::activeTransform3D(m_partReferenceInModelCs, m_userTableAttachInTableAttach),
                 compose(Orvo::coordinateTransform3D(m_workCsInModelCs, kIdentityFrame),
                         Orvo::coordinateTransform3D(m_tiltedWorkPlaneInWorkCs, kIdentityFrame)));
}

}  // namespace machine
