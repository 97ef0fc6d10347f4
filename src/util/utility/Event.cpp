#include "util/utility/Event.h"

#include <utility>

namespace Orvo {
namespace Events {

void Event::subscribe(Subscriber subscriber) {
  if (subscriber) m_subscribers.push_back(std::move(subscriber));
}

void Event::raise(int value) const {
  if (m_subscribers.empty()) return;
  // A snapshot, so that a subscriber may change the list, or destroy the
  // object that holds the event, while it is being walked.
  std::vector<Subscriber> const subscribers = m_subscribers;
  for (Subscriber const& subscriber : subscribers) subscriber(value);
}

}  // namespace Events
}  // namespace Orvo
