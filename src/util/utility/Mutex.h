#pragma once
// A plain, non-recursive mutual exclusion lock.
//
// Plain rather than recursive: the library holds it only around a few pointer
// updates that call nothing else, so nothing ever locks it twice on one
// thread, and a plain lock is the cheaper of the two on every lock and
// unlock. Locking it again on the thread that holds it deadlocks.
//
// It is constant-initialised, so a lock with static storage is usable by
// other static objects while the program loads.

#include <mutex>

namespace Orvo {

class Mutex {
public:
  constexpr Mutex() noexcept = default;
  Mutex(Mutex const&) = delete;
  Mutex& operator=(Mutex const&) = delete;

  void lock() { m_mutex.lock(); }
  void unlock() noexcept { m_mutex.unlock(); }
  /// Takes the lock if it is free; never waits.
  bool tryLock() noexcept { return m_mutex.try_lock(); }
  /// tryLock under the name std::lock and std::scoped_lock call.
  bool try_lock() noexcept { return tryLock(); }

  /// Holds the lock for its lifetime.
  class Lock {
  public:
    explicit Lock(Mutex& mutex) : m_mutex(mutex) { m_mutex.lock(); }
    ~Lock() { m_mutex.unlock(); }
    Lock(Lock const&) = delete;
    Lock& operator=(Lock const&) = delete;

  private:
    Mutex& m_mutex;
  };

private:
  std::mutex m_mutex;
};

}  // namespace Orvo
