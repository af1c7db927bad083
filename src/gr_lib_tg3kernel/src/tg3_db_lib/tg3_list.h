/// @file
/// TG3List, a list that owns its values.
#pragma once

#include <cstddef>
#include <iterator>
#include <memory>
#include <type_traits>
#include <utility>

#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_status.h"

/// The values in the order in which they were appended. They stay where they are, so pointers to
/// them hold as long as the list. Running out of memory is a status.
template <typename T>
class TG3List {
  struct Node {
    template <typename... Args>
    explicit Node(Args&&... args) : value(std::forward<Args>(args)...) {}
    T value;
    std::unique_ptr<Node> next;
  };

 public:
  template <bool IS_CONST>
  class BasicIterator {
   public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = T;
    using difference_type = std::ptrdiff_t;
    using reference = std::conditional_t<IS_CONST, const T&, T&>;
    using pointer = std::conditional_t<IS_CONST, const T*, T*>;

    BasicIterator() = default;
    explicit BasicIterator(Node* node) : m_node(node) {}
    reference operator*() const { return m_node->value; }
    pointer operator->() const { return &m_node->value; }
    BasicIterator& operator++() {
      m_node = m_node->next.get();
      return *this;
    }
    BasicIterator operator++(int) {
      const BasicIterator before = *this;
      ++*this;
      return before;
    }
    bool operator==(const BasicIterator&) const = default;

   private:
    Node* m_node = nullptr;
  };
  using TG3ListIterator = BasicIterator<false>;
  using TG3ListConstIterator = BasicIterator<true>;

  TG3List() = default;
  ~TG3List() { clear(); }
  TG3List(TG3List&& other) noexcept
      : m_first(std::move(other.m_first)),
        m_last(std::exchange(other.m_last, nullptr)),
        m_size(std::exchange(other.m_size, 0)) {}
  TG3List& operator=(TG3List&& other) noexcept {
    clear();
    m_first = std::move(other.m_first);
    m_last = std::exchange(other.m_last, nullptr);
    m_size = std::exchange(other.m_size, 0);
    return *this;
  }
  TG3List(const TG3List&) = delete;
  TG3List& operator=(const TG3List&) = delete;

  /// Makes a value at the end. @return it, or null when memory runs out
  template <typename... Args>
  [[nodiscard]] T* append(Args&&... args) {
    std::unique_ptr<Node> node = gr_makeUnique<Node>(std::forward<Args>(args)...);
    if (node == nullptr) return nullptr;
    std::unique_ptr<Node>& link = m_last == nullptr ? m_first : m_last->next;
    link = std::move(node);
    m_last = link.get();
    ++m_size;
    return &m_last->value;
  }

  void clear() {
    // One by one: a chain that destroys itself takes a stack frame per value.
    while (m_first != nullptr) m_first = std::move(m_first->next);
    m_last = nullptr;
    m_size = 0;
  }

  size_t size() const { return m_size; }
  bool empty() const { return m_size == 0; }
  TG3ListIterator begin() { return TG3ListIterator(m_first.get()); }
  TG3ListIterator end() { return TG3ListIterator(); }
  TG3ListConstIterator begin() const { return TG3ListConstIterator(m_first.get()); }
  TG3ListConstIterator end() const { return TG3ListConstIterator(); }

 private:
  std::unique_ptr<Node> m_first;
  Node* m_last = nullptr;
  size_t m_size = 0;
};
