// Length-prefixed text of at most 255 bytes with inline storage: the one text
// type of the system. Bytes are Mazovia; positions count from 1.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>

// Text of at most Cap bytes (1..255). Assigning a longer value cuts it.
template <int Cap>
class BasicShortText {
  static_assert(Cap >= 1 && Cap <= 255, "a short text holds 1 to 255 bytes");

 public:
  static constexpr int kCapacity = Cap;

  constexpr BasicShortText() = default;
  constexpr BasicShortText(const char* s) { Assign(std::string_view(s ? s : "")); }
  constexpr BasicShortText(std::string_view s) { Assign(s); }
  explicit BasicShortText(const std::string& s) { Assign(std::string_view(s)); }
  template <int C2>
  constexpr BasicShortText(const BasicShortText<C2>& o) { Assign(o.View()); }

  // Length in bytes, 0..Cap.
  constexpr int Length() const { return len_; }
  constexpr bool Empty() const { return len_ == 0; }
  // Shortens or lengthens to n (cut to 0..Cap); bytes beyond the old length keep what they held.
  constexpr void SetLength(int n) { len_ = static_cast<uint8_t>(n < 0 ? 0 : (n > Cap ? Cap : n)); }
  constexpr void Clear() { len_ = 0; }

  // Byte at 1-based position; positions outside 1..Length() read as 0.
  constexpr unsigned char At(int pos) const {
    // pos <= Cap is implied by the length; said again, it lets the compiler see the bound.
    return (pos >= 1 && pos <= len_ && pos <= Cap) ? static_cast<unsigned char>(buf_[pos - 1]) : 0;
  }
  // Writable byte at 1-based position 1..Cap (the caller keeps it in range).
  constexpr char& operator[](int pos) { return buf_[pos - 1]; }
  constexpr char operator[](int pos) const { return buf_[pos - 1]; }

  constexpr const char* Data() const { return buf_; }
  constexpr char* Data() { return buf_; }
  constexpr std::string_view View() const { return std::string_view(buf_, len_); }
  std::string Str() const { return std::string(buf_, len_); }

  constexpr void Assign(std::string_view s) {
    len_ = 0;
    Append(s);
  }
  // Appends what fits; the rest is cut.
  constexpr void Append(std::string_view s) {
    for (char c : s) {
      if (len_ >= Cap) break;
      buf_[len_++] = c;
    }
  }
  constexpr void Append(char c) {
    if (len_ < Cap) buf_[len_++] = c;
  }
  constexpr BasicShortText& operator+=(std::string_view s) { Append(s); return *this; }
  template <int C2>
  constexpr BasicShortText& operator+=(const BasicShortText<C2>& s) { Append(s.View()); return *this; }
  constexpr BasicShortText& operator+=(char c) { Append(c); return *this; }

  // Count bytes from 1-based start (Pascal Copy): out-of-range parts give less or nothing.
  constexpr BasicShortText Copy(int start, int count) const {
    BasicShortText r;
    if (start < 1) { count += start - 1; start = 1; }
    for (int i = start; i < start + count && i <= len_; ++i) r.buf_[r.len_++] = buf_[i - 1];
    return r;
  }
  // 1-based position of the first occurrence of needle, 0 when absent or empty.
  constexpr int Pos(std::string_view needle) const { return PosFrom(needle, 1); }
  constexpr int PosFrom(std::string_view needle, int from) const {
    if (needle.empty() || from < 1) return 0;
    std::size_t p = View().find(needle, static_cast<std::size_t>(from - 1));
    return p == std::string_view::npos ? 0 : static_cast<int>(p) + 1;
  }
  constexpr int Pos(char c) const {
    for (int i = 0; i < len_; ++i)
      if (buf_[i] == c) return i + 1;
    return 0;
  }
  // Removes count bytes from start (Pascal Delete).
  constexpr void Delete(int start, int count) {
    if (start < 1 || start > len_ || count <= 0) return;
    int end = start - 1 + count;
    if (end > len_) end = len_;
    for (int i = end; i < len_; ++i) buf_[i - (end - start + 1)] = buf_[i];
    len_ = static_cast<uint8_t>(len_ - (end - start + 1));
  }
  // Inserts s before position pos (Pascal Insert); the result is cut at Cap.
  constexpr void Insert(std::string_view s, int pos) {
    if (pos < 1) pos = 1;
    if (pos > len_ + 1) pos = len_ + 1;
    BasicShortText r = Copy(1, pos - 1);
    r.Append(s);
    r.Append(Copy(pos, len_).View());
    *this = r;
  }

  template <int C2>
  constexpr bool operator==(const BasicShortText<C2>& o) const { return View() == o.View(); }
  constexpr bool operator==(std::string_view o) const { return View() == o; }
  constexpr bool operator==(const char* o) const { return View() == std::string_view(o); }
  // Byte order, as unsigned bytes.
  template <int C2>
  constexpr std::strong_ordering operator<=>(const BasicShortText<C2>& o) const {
    return Compare(View(), o.View());
  }

 private:
  static constexpr std::strong_ordering Compare(std::string_view a, std::string_view b) {
    std::size_t n = a.size() < b.size() ? a.size() : b.size();
    for (std::size_t i = 0; i < n; ++i) {
      auto x = static_cast<unsigned char>(a[i]), y = static_cast<unsigned char>(b[i]);
      if (x != y) return x <=> y;
    }
    return a.size() <=> b.size();
  }

  uint8_t len_ = 0;
  char buf_[Cap] = {};
};

using ShortText = BasicShortText<255>;
using ShortText4 = BasicShortText<4>;
using ShortText5 = BasicShortText<5>;
using ShortText10 = BasicShortText<10>;
using ShortText13 = BasicShortText<13>;
using ShortText15 = BasicShortText<15>;
using ShortText76 = BasicShortText<76>;
using ShortText79 = BasicShortText<79>;
using ShortText80 = BasicShortText<80>;

// Concatenation, cut at 255 bytes.
template <int A, int B>
constexpr ShortText operator+(const BasicShortText<A>& a, const BasicShortText<B>& b) {
  ShortText r(a.View());
  r.Append(b.View());
  return r;
}
template <int A>
constexpr ShortText operator+(const BasicShortText<A>& a, std::string_view b) {
  ShortText r(a.View());
  r.Append(b);
  return r;
}
template <int A>
constexpr ShortText operator+(std::string_view a, const BasicShortText<A>& b) {
  ShortText r(a);
  r.Append(b.View());
  return r;
}
template <int A>
constexpr ShortText operator+(const BasicShortText<A>& a, char c) {
  ShortText r(a.View());
  r.Append(c);
  return r;
}

// Writes the text quoted, bytes outside printable ASCII as \xNN (used by test
// failure messages; GoogleTest finds PrintTo by argument lookup).
void PrintShortText(std::string_view bytes, std::ostream* os);
template <int Cap>
void PrintTo(const BasicShortText<Cap>& t, std::ostream* os) {
  PrintShortText(t.View(), os);
}
