#pragma once
// A pair of iterators presented as a range, and an iterator adaptor that
// dereferences owning pointers, so that a tree can hand out its
// std::vector<std::unique_ptr<T>> of children as a range of T&.

#include <cstddef>
#include <iterator>
#include <type_traits>

namespace Orvo {

/// Iterates over owning pointers and yields T& (T may be const, which keeps a
/// const tree's children const).
template <typename Iter, typename T>
class DereferenceIterator {
public:
  using iterator_category = typename std::iterator_traits<Iter>::iterator_category;
  using reference = T&;
  using value_type = std::remove_cv_t<T>;
  using difference_type = typename std::iterator_traits<Iter>::difference_type;
  using pointer = T*;

  DereferenceIterator() = default;
  explicit DereferenceIterator(Iter it) : m_it(it) {}

  reference operator*() const { return **m_it; }
  pointer operator->() const { return &**m_it; }
  reference operator[](difference_type n) const { return *m_it[n]; }

  DereferenceIterator& operator++() { ++m_it; return *this; }
  DereferenceIterator operator++(int) { auto t = *this; ++m_it; return t; }
  DereferenceIterator& operator--() { --m_it; return *this; }
  DereferenceIterator operator--(int) { auto t = *this; --m_it; return t; }
  DereferenceIterator& operator+=(difference_type n) { m_it += n; return *this; }
  DereferenceIterator& operator-=(difference_type n) { m_it -= n; return *this; }
  friend DereferenceIterator operator+(DereferenceIterator a, difference_type n) { return a += n; }
  friend DereferenceIterator operator-(DereferenceIterator a, difference_type n) { return a -= n; }
  friend difference_type operator-(DereferenceIterator const& a, DereferenceIterator const& b) { return a.m_it - b.m_it; }
  friend bool operator==(DereferenceIterator const& a, DereferenceIterator const& b) { return a.m_it == b.m_it; }
  friend bool operator!=(DereferenceIterator const& a, DereferenceIterator const& b) { return a.m_it != b.m_it; }
  friend bool operator<(DereferenceIterator const& a, DereferenceIterator const& b) { return a.m_it < b.m_it; }

  Iter base() const { return m_it; }

private:
  Iter m_it{};
};

template <typename Iter>
class Subrange {
public:
  Subrange(Iter first, Iter last) : m_first(first), m_last(last) {}
  Iter begin() const { return m_first; }
  Iter end() const { return m_last; }
  bool empty() const { return m_first == m_last; }
  std::size_t size() const { return static_cast<std::size_t>(std::distance(m_first, m_last)); }
  decltype(auto) operator[](std::size_t i) const { return *std::next(m_first, static_cast<std::ptrdiff_t>(i)); }
  decltype(auto) front() const { return *m_first; }

private:
  Iter m_first;
  Iter m_last;
};

/// The elements of a container of owning pointers as a range of T&.
template <typename T, typename Container>
auto makeDereferencedRange(Container& c) {
  using It = decltype(c.begin());
  using DI = DereferenceIterator<It, T>;
  return Subrange<DI>(DI(c.begin()), DI(c.end()));
}

}  // namespace Orvo
