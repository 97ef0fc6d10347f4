#include "machine/machine/PostMachineConfig/UnitConsumer.h"

#include <list>
#include <stdexcept>

#include "util/utility/Basic.h"
#include "util/utility/Process.h"

namespace com {
namespace vantora {
namespace post {

namespace {
// The list, guarded by Orvo::Process::mutex. All constant-initialised, so
// consumers made during static initialisation find it ready.
UnitConsumer* g_first = nullptr;
std::size_t g_count = 0;
std::size_t g_limitUnderTest = 0;

std::size_t standardLimit() {
  static std::size_t const limit = std::list<UnitConsumer*>().max_size();
  return limit;
}

std::size_t limitLocked() {
  if (g_limitUnderTest != 0 && Orvo::_debug::isTesting()) return g_limitUnderTest;
  return standardLimit();
}

[[noreturn]] __attribute__((cold)) void throwListTooLong() { throw std::length_error("list too long"); }
}  // namespace

UnitConsumer::UnitConsumer() { enlist(); }

UnitConsumer::UnitConsumer(UnitConsumer const& other)
    : m_toInternal(other.m_toInternal), m_toExternal(other.m_toExternal) {
  enlist();
}

UnitConsumer::~UnitConsumer() { delist(); }

void UnitConsumer::setInchMode(bool inch) noexcept {
  m_toInternal = inch ? INCH_TO_MILLIMETRE : 1.0;
  m_toExternal = inch ? MILLIMETRE_TO_INCH : 1.0;
}

std::size_t UnitConsumer::getNumberOfConsumers() {
  Orvo::Mutex::Lock const lock(Orvo::Process::mutex);
  return g_count;
}

std::size_t UnitConsumer::getListLimit() {
  Orvo::Mutex::Lock const lock(Orvo::Process::mutex);
  return limitLocked();
}

void UnitConsumer::setListLimitUnderTest(std::size_t limit) {
  if (!Orvo::_debug::isTesting()) return;
  Orvo::Mutex::Lock const lock(Orvo::Process::mutex);
  g_limitUnderTest = limit;
}

void UnitConsumer::enlist() {
  Orvo::Mutex::Lock const lock(Orvo::Process::mutex);
  if (g_count >= limitLocked()) throwListTooLong();
  m_next = g_first;
  if (g_first) g_first->m_previous = this;
  g_first = this;
  ++g_count;
}

void UnitConsumer::delist() noexcept {
  Orvo::Mutex::Lock const lock(Orvo::Process::mutex);
  if (m_previous)
    m_previous->m_next = m_next;
  else
    g_first = m_next;
  if (m_next) m_next->m_previous = m_previous;
  --g_count;
}

}  // namespace post
}  // namespace vantora
}  // namespace com
