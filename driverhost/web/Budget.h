#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

namespace driverhost {

// The bytes of lines and answers that all connections together may keep.
class Budget {
 public:
  bool Take(std::size_t bytes) {
    if (bytes > m_Left) return false;
    m_Left -= bytes;
    return true;
  }
  void Give(std::size_t bytes) { m_Left += bytes; }

 private:
  std::size_t m_Left = std::size_t{16} << 20U;
};

// A text of a connection that is paid for out of the budget.
class PaidText {
 public:
  // `budget` outlives the object.
  explicit PaidText(Budget& budget) : m_Budget(budget) {}
  ~PaidText() { Clear(); }
  PaidText(const PaidText&) = delete;
  PaidText& operator=(const PaidText&) = delete;

  const std::string& Text() const { return m_Text; }

  // Return false, and change nothing, when there are no bytes left.
  bool Append(std::string_view part) {
    const std::size_t needed = m_Text.size() + part.size();
    if (needed > m_Paid) {
      const std::size_t more = std::max(needed, 2 * m_Paid) - m_Paid;
      if (!m_Budget.Take(more)) return false;
      m_Paid += more;
      m_Text.reserve(m_Paid);
    }
    m_Text += part;
    return true;
  }
  bool Set(std::string text) {
    Clear();
    if (!m_Budget.Take(text.capacity())) return false;
    m_Paid = text.capacity();
    m_Text = std::move(text);
    return true;
  }

  // Hands the text out and goes on paying for it.
  std::string Lend() { return std::move(m_Text); }

  // Takes over the other's text, and what was paid for it.
  void TakeFrom(PaidText& other) {
    Clear();
    m_Text = std::exchange(other.m_Text, {});
    m_Paid = std::exchange(other.m_Paid, 0);
  }

  void Clear() {
    std::string().swap(m_Text);  // an assignment would keep the memory
    m_Budget.Give(std::exchange(m_Paid, 0));
  }

 private:
  Budget& m_Budget;
  std::string m_Text;
  std::size_t m_Paid = 0;
};

}  // namespace driverhost
