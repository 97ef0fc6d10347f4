#pragma once
// Something that can happen to an object, with the functions to call when it
// does. Raising an event calls each subscriber, in the order they
// subscribed, with the event's value; without subscribers it does nothing.
//
// Subscribers belong to the object whose event they subscribed to, not to its
// value. A copy starts without subscribers, and an assignment leaves the
// subscribers of the assigned-to event as they are: a subscriber that watches
// one object is never called for a copy of it, and assigning a new value to
// an object keeps everyone who watches it. Moving an event into a new one
// takes its subscribers along, since that is the same object in a new place.

#include <cstddef>
#include <functional>
#include <utility>
#include <vector>

namespace Orvo {
namespace Events {

class Event {
public:
  using Subscriber = std::function<void(int)>;

  Event() = default;
  Event(Event const&) noexcept {}
  Event(Event&& other) noexcept : m_subscribers(std::move(other.m_subscribers)) { other.m_subscribers.clear(); }
  Event& operator=(Event const&) noexcept { return *this; }
  Event& operator=(Event&&) noexcept { return *this; }
  ~Event() = default;

  /// Adds `subscriber` behind the others. An empty function is ignored.
  void subscribe(Subscriber subscriber);
  /// Drops every subscriber.
  void unsubscribeAll() noexcept { m_subscribers.clear(); }
  bool hasSubscribers() const noexcept { return !m_subscribers.empty(); }
  std::size_t getNumberOfSubscribers() const noexcept { return m_subscribers.size(); }

  /// Calls every subscriber with `value`. Those that subscribe or unsubscribe
  /// during the call take effect from the next one. An exception from a
  /// subscriber leaves the event and skips the rest.
  void raise(int value) const;

private:
  std::vector<Subscriber> m_subscribers;
};

}  // namespace Events
}  // namespace Orvo
