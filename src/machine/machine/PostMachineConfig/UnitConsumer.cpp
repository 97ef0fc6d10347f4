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

UnitConsumer::UnitConsumer() { enlistTogether({this}); }

UnitConsumer::UnitConsumer(UnitConsumer const& other)
    : m_toInternal(other.m_toInternal), m_toExternal(other.m_toExternal) {
  enlistTogether({this});
}

UnitConsumer::~UnitConsumer() {
  if (m_listed) delistTogether({this});
}

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

void UnitConsumer::enlistTogether(std::initializer_list<UnitConsumer*> consumers) {
  std::size_t count = 0;
  for (UnitConsumer const* c : consumers) count += c->m_listed ? 0 : 1;
  Orvo::Mutex::Lock const lock(Orvo::Process::mutex);
  std::size_t const limit = limitLocked();
  if (g_count > limit || count > limit - g_count) throwListTooLong();
  for (UnitConsumer* c : consumers)
    if (!c->m_listed) c->linkLocked();
}

void UnitConsumer::delistTogether(std::initializer_list<UnitConsumer*> consumers) noexcept {
  // Whether a consumer is listed is its destroying thread's to know, so it
  // is read without the lock; consumers their owner took off already do not
  // take it again.
  bool listed = false;
  for (UnitConsumer const* c : consumers) listed = listed || c->m_listed;
  if (!listed) return;
  Orvo::Mutex::Lock const lock(Orvo::Process::mutex);
  for (UnitConsumer* c : consumers)
    if (c->m_listed) c->unlinkLocked();
}

void UnitConsumer::linkLocked() noexcept {
  m_previous = nullptr;
  m_next = g_first;
  if (g_first) g_first->m_previous = this;
  g_first = this;
  ++g_count;
  m_listed = true;
}

void UnitConsumer::unlinkLocked() noexcept {
  if (m_previous)
    m_previous->m_next = m_next;
  else
    g_first = m_next;
  if (m_next) m_next->m_previous = m_previous;
  --g_count;
  m_listed = false;
}

}  // namespace post
}  // namespace vantora
}  // namespace com
