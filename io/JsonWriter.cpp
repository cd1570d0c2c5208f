// The streaming JSON writer and its number and string spelling.
#include "io/JsonWriter.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <stdexcept>

namespace lb::io {

namespace {
constexpr size_t kLineWidth = 100;
constexpr size_t kFlushBytes = 1 << 20;
}  // namespace

void appendJsonNumber(std::string& out, double d) {
  if (!std::isfinite(d)) {
    out += "null";
    return;
  }
  if (std::signbit(d)) {
    out += '-';
    d = -d;
  }
  if (d == 0) {
    out += "0.0";
    return;
  }
  // Shortest round-trip digits in scientific form: "d[.ddd]e[+-]xx".
  char sci[40];
  const auto r = std::to_chars(sci, sci + sizeof sci, d, std::chars_format::scientific);
  char digits[32];
  int len = 0;
  const char* q = sci;
  for (; q < r.ptr && *q != 'e'; ++q)
    if (*q != '.') digits[len++] = *q;
  int exp10 = 0;
  std::from_chars(q + 1 + (q[1] == '+'), r.ptr, exp10);
  // n: position of the decimal point relative to the first digit.
  const int n = exp10 + 1;
  char buf[64];
  char* b = buf;
  if (len <= n && n <= 15) {
    // digits[000].0
    std::memcpy(b, digits, static_cast<size_t>(len));
    b += len;
    for (int k = len; k < n; ++k) *b++ = '0';
    *b++ = '.';
    *b++ = '0';
  } else if (0 < n && n <= 15) {
    // dig.its
    std::memcpy(b, digits, static_cast<size_t>(n));
    b += n;
    *b++ = '.';
    std::memcpy(b, digits + n, static_cast<size_t>(len - n));
    b += len - n;
  } else if (-4 < n && n <= 0) {
    // 0.[000]digits
    *b++ = '0';
    *b++ = '.';
    for (int k = 0; k < -n; ++k) *b++ = '0';
    std::memcpy(b, digits, static_cast<size_t>(len));
    b += len;
  } else {
    // d[.igits]e+xx, at least two exponent digits
    *b++ = digits[0];
    if (len > 1) {
      *b++ = '.';
      std::memcpy(b, digits + 1, static_cast<size_t>(len - 1));
      b += len - 1;
    }
    *b++ = 'e';
    int e = n - 1;
    *b++ = e < 0 ? '-' : '+';
    if (e < 0) e = -e;
    if (e < 10) *b++ = '0';
    b = std::to_chars(b, buf + sizeof buf, e).ptr;
  }
  out.append(buf, b);
}

void appendJsonString(std::string& out, std::string_view s) {
  // Most strings (every key) need no escapes: one append.
  bool plain = true;
  for (const char ch : s) {
    const unsigned char c = static_cast<unsigned char>(ch);
    if (c < 0x20 || c == '"' || c == '\\' || c >= 0x80) {
      plain = false;
      break;
    }
  }
  if (plain) {
    out += '"';
    out.append(s);
    out += '"';
    return;
  }
  out += '"';
  size_t k = 0;
  while (k < s.size()) {
    const unsigned char c = static_cast<unsigned char>(s[k]);
    if (c >= 0x80) {
      // Checked as the reader checks; the bytes are copied as they are.
      size_t n = c >= 0xF0 ? 4 : c >= 0xE0 ? 3 : c >= 0xC2 ? 2 : 0;
      bool ok = n > 0 && c <= 0xF4 && k + n <= s.size();
      uint32_t cp = c & (0x7F >> n);
      for (size_t q = 1; ok && q < n; ++q) {
        const unsigned char cc = static_cast<unsigned char>(s[k + q]);
        ok = (cc & 0xC0) == 0x80;
        cp = (cp << 6) | (cc & 0x3F);
      }
      const uint32_t min = n == 2 ? 0x80 : n == 3 ? 0x800 : 0x10000;
      if (!ok || cp < min || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF))
        throw std::runtime_error("invalid UTF-8 byte at index " + std::to_string(k) + " of a string");
      out.append(s.data() + k, n);
      k += n;
      continue;
    }
    switch (c) {
      case '"': out += "\\\""; break;
      case '\\': out += "\\\\"; break;
      case '\b': out += "\\b"; break;
      case '\f': out += "\\f"; break;
      case '\n': out += "\\n"; break;
      case '\r': out += "\\r"; break;
      case '\t': out += "\\t"; break;
      default:
        if (c < 0x20) {
          static const char kHex[] = "0123456789abcdef";
          out += "\\u00";
          out += kHex[c >> 4];
          out += kHex[c & 15];
        } else {
          out += static_cast<char>(c);
        }
    }
    ++k;
  }
  out += '"';
}

bool JsonWriter::open(char bracket, bool array) {
  if (aborted_) return true;
  beforeValue();
  if (!attempt_) {
    // Try the one-line form first, within the room left on the line.
    const size_t indent = stack_.size() * 2;
    attempt_ = true;
    attemptStart_ = out_.size();
    attemptDepth_ = stack_.size();
    limit_ = attemptStart_ + (indent < kLineWidth ? kLineWidth - indent : 0);
  }
  stack_.push_back(Frame{array, true, true});
  append(std::string_view(&bracket, 1));
  return false;
}

bool JsonWriter::close() {
  const Frame f = stack_.back();
  stack_.pop_back();
  if (!aborted_) append(f.array ? "]" : "}");
  if (stack_.size() > attemptDepth_) return true;  // inside the one-line attempt
  attempt_ = false;
  if (!aborted_) return true;
  // Too long: roll back and write it broken over lines.
  aborted_ = false;
  out_.resize(attemptStart_);
  out_ += f.array ? '[' : '{';
  out_ += '\n';
  stack_.push_back(Frame{f.array, false, true});
  return false;
}

void JsonWriter::finish() {
  const Frame f = stack_.back();
  stack_.pop_back();
  out_ += '\n';
  out_.append(stack_.size() * 2, ' ');
  out_ += f.array ? ']' : '}';
}

void JsonWriter::maybeFlush() {
  if (flush_ && !attempt_ && out_.size() >= kFlushBytes) {
    flush_(out_);
    out_.clear();
  }
}

void JsonWriter::beforeValue() {
  if (stack_.empty()) return;
  Frame& f = stack_.back();
  if (!f.array) return;  // the key wrote the separator
  if (f.compact) {
    if (!f.first) append(", ");
  } else {
    if (!f.first) {
      out_ += ",\n";
      maybeFlush();
    }
    out_.append(stack_.size() * 2, ' ');
  }
  f.first = false;
}

void JsonWriter::key(std::string_view k) {
  if (aborted_) return;
  Frame& f = stack_.back();
  if (f.compact) {
    if (!f.first) out_ += ", ";
  } else {
    if (!f.first) {
      out_ += ",\n";
      maybeFlush();
    }
    out_.append(stack_.size() * 2, ' ');
  }
  f.first = false;
  appendJsonString(out_, k);
  out_ += ": ";
  check();
}

void JsonWriter::number(double d) {
  if (aborted_) return;
  beforeValue();
  appendJsonNumber(out_, d);
  check();
}

void JsonWriter::integer(int64_t i) {
  if (aborted_) return;
  beforeValue();
  char buf[24];
  out_.append(buf, std::to_chars(buf, buf + sizeof buf, i).ptr);
  check();
}

void JsonWriter::boolean(bool b) {
  if (aborted_) return;
  beforeValue();
  append(b ? "true" : "false");
}

void JsonWriter::null() {
  if (aborted_) return;
  beforeValue();
  append("null");
}

void JsonWriter::string(std::string_view s) {
  if (aborted_) return;
  beforeValue();
  appendJsonString(out_, s);
  check();
}

}  // namespace lb::io
