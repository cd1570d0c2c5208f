// The compact JSON tree: an iterative parser (no recursion, so nesting
// cannot overflow the stack) writing one 16-byte entry per value.
#include "io/JsonDom.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <unordered_set>

namespace lb::io {

using Kind = JsonRef::Kind;

// ---- navigation -----------------------------------------------------------

Kind JsonRef::kind() const { return tree_->entries_[index_].kind; }

const char* JsonRef::type_name() const {
  switch (kind()) {
    case Kind::Null: return "null";
    case Kind::Boolean: return "boolean";
    case Kind::Integer:
    case Kind::Float: return "number";
    case Kind::String: return "string";
    case Kind::Array: return "array";
    case Kind::Object: return "object";
  }
  return "null";
}

size_t JsonRef::size() const {
  const auto& e = tree_->entries_[index_];
  return (e.kind == Kind::Array || e.kind == Kind::Object) ? e.c.count : 0;
}

JsonRef JsonRef::operator[](size_t k) const {
  uint32_t at = index_ + 1;
  for (size_t n = 0; n < k; ++n) at = tree_->next(at);
  return {tree_, at};
}

std::optional<JsonRef> JsonRef::find(std::string_view key) const {
  if (!is_object()) return std::nullopt;
  for (auto it = begin(); it != end(); ++it)
    if (it.key() == key) return *it;
  return std::nullopt;
}

std::string_view JsonRef::key() const {
  const uint32_t k = tree_->entries_[index_].key;
  if (k == JsonTree::kNoKey) return {};
  const auto& [offset, length] = tree_->keys_[k];
  return std::string_view(tree_->keyText_).substr(offset, length);
}

double JsonRef::asDouble() const {
  const auto& e = tree_->entries_[index_];
  return e.kind == Kind::Integer ? static_cast<double>(e.i) : e.d;
}
int64_t JsonRef::asInteger() const {
  const auto& e = tree_->entries_[index_];
  return e.kind == Kind::Float ? static_cast<int64_t>(e.d) : e.i;
}
bool JsonRef::asBool() const { return tree_->entries_[index_].b; }
std::string_view JsonRef::asString() const {
  const auto& e = tree_->entries_[index_];
  return std::string_view(tree_->strings_).substr(e.s.offset, e.s.length);
}

JsonRef::iterator& JsonRef::iterator::operator++() {
  index_ = tree_->next(index_);
  return *this;
}
JsonRef::iterator JsonRef::begin() const { return {tree_, index_ + 1}; }
JsonRef::iterator JsonRef::end() const {
  return {tree_, (is_array() || is_object()) ? tree_->entries_[index_].c.end : index_ + 1};
}

// ---- parsing --------------------------------------------------------------

class JsonParser {
 public:
  JsonParser(std::string_view text, const JsonLimits& limits, JsonTree& tree)
      : begin_(text.data()), p_(text.data()), end_(text.data() + text.size()), limits_(limits), t_(tree) {
    // A written document has about one value per 20 bytes; compact JSON
    // can have more, then the vector grows.
    t_.entries_.reserve(text.size() / 12 + 16);
  }

  void run() {
    skipSpace();
    bool want = true;  // a value is to be read next
    for (;;) {
      if (want) {
        want = value();
        continue;
      }
      if (stack_.empty()) break;
      Frame& f = stack_.back();
      skipSpace();
      if (p_ == end_) syntax(f.object ? "unexpected end of input; expected ',' or '}'" : "unexpected end of input; expected ',' or ']'");
      const char c = *p_;
      if (c == ',') {
        ++p_;
        skipSpace();
        if (f.object) member();
        ++stack_.back().count;
        want = true;
      } else if (c == (f.object ? '}' : ']')) {
        ++p_;
        close();
      } else {
        syntax(f.object ? "expected ',' or '}'" : "expected ',' or ']'");
      }
    }
    skipSpace();
    if (p_ != end_) syntax("unexpected data after the document");
  }

 private:
  struct Frame {
    uint32_t entry;
    bool object;
    uint32_t count;  // members begun
    // Keys of a large object, for the duplicate check; small ones scan.
    std::unique_ptr<std::unordered_set<uint32_t>> seen;
  };

  [[noreturn]] void syntax(const std::string& what) const {
    throw FormatError(place(), "malformed JSON: " + what);
  }

  std::string place() const {
    size_t line = 1, column = 1;
    for (const char* q = begin_; q < p_ && q < end_; ++q) {
      if (*q == '\n') {
        ++line;
        column = 1;
      } else {
        ++column;
      }
    }
    return "line " + std::to_string(line) + ", column " + std::to_string(column);
  }

  // The JSON path of the value being read, in the readers' notation.
  std::string path() const {
    std::string out;
    for (const Frame& f : stack_) {
      if (f.object) {
        const auto& key = lastKeys_[&f - stack_.data()];
        const auto& [off, len] = t_.keys_[key];
        if (!out.empty()) out += '.';
        out.append(t_.keyText_, off, len);
      } else {
        out += '[' + std::to_string(f.count ? f.count - 1 : 0) + ']';
      }
    }
    return out.empty() ? "document" : out;
  }

  [[noreturn]] void semantic(const std::string& what) const { throw FormatError(path(), what + " (" + place() + ")"); }

  void skipSpace() {
    while (p_ != end_ && (*p_ == ' ' || *p_ == '\n' || *p_ == '\r' || *p_ == '\t')) ++p_;
  }

  uint32_t push(Kind kind) {
    if (t_.entries_.size() >= 0xfffffff0u) syntax("document too large");
    JsonTree::Entry e;
    e.kind = kind;
    e.key = pendingKey_;
    e.i = 0;
    pendingKey_ = JsonTree::kNoKey;
    t_.entries_.push_back(e);
    return static_cast<uint32_t>(t_.entries_.size() - 1);
  }

  // Reads `"key" :` inside an object and checks it is not a repeat.
  void member() {
    if (p_ == end_ || *p_ != '"') syntax(p_ == end_ ? "unexpected end of input; expected a key" : "expected a string key");
    const std::string_view text = readString();
    const uint32_t id = intern(text);
    Frame& f = stack_.back();
    lastKeys_[stack_.size() - 1] = id;
    if (f.count < 16) {
      for (auto it = JsonRef(&t_, f.entry).begin(), end = JsonRef::iterator(&t_, static_cast<uint32_t>(t_.entries_.size()));
           it != end; ++it)
        if (t_.entries_[(*it).index()].key == id) duplicate(text);
      if (f.count == 15) {
        f.seen = std::make_unique<std::unordered_set<uint32_t>>();
        for (auto it = JsonRef(&t_, f.entry).begin(), end = JsonRef::iterator(&t_, static_cast<uint32_t>(t_.entries_.size()));
             it != end; ++it)
          f.seen->insert(t_.entries_[(*it).index()].key);
        f.seen->insert(id);
      }
    } else if (!f.seen->insert(id).second) {
      duplicate(text);
    }
    skipSpace();
    if (p_ == end_ || *p_ != ':') syntax("expected ':' after a key");
    ++p_;
    skipSpace();
    pendingKey_ = id;
  }

  [[noreturn]] void duplicate(std::string_view key) {
    ++stack_.back().count;  // name the repeated member in the path
    semantic("duplicate key \"" + std::string(key) + "\"");
  }

  uint32_t intern(std::string_view key) {
    // Open addressing on a small power-of-two table; documents have few
    // distinct keys.
    if (keyTable_.empty()) keyTable_.assign(64, JsonTree::kNoKey);
    uint64_t h = 1469598103934665603ull;
    for (unsigned char c : key) h = (h ^ c) * 1099511628211ull;
    size_t mask = keyTable_.size() - 1;
    for (size_t slot = h & mask;; slot = (slot + 1) & mask) {
      const uint32_t id = keyTable_[slot];
      if (id == JsonTree::kNoKey) break;
      const auto& [off, len] = t_.keys_[id];
      if (len == key.size() && std::memcmp(t_.keyText_.data() + off, key.data(), len) == 0) return id;
    }
    if (t_.keyText_.size() + key.size() >= 0xfffffff0u) syntax("document too large");
    const uint32_t id = static_cast<uint32_t>(t_.keys_.size());
    t_.keys_.emplace_back(static_cast<uint32_t>(t_.keyText_.size()), static_cast<uint32_t>(key.size()));
    t_.keyText_.append(key);
    if ((t_.keys_.size() + 1) * 2 > keyTable_.size()) {
      std::vector<uint32_t> bigger(keyTable_.size() * 2, JsonTree::kNoKey);
      mask = bigger.size() - 1;
      for (uint32_t k = 0; k < t_.keys_.size(); ++k) {
        const auto& [o, l] = t_.keys_[k];
        uint64_t hk = 1469598103934665603ull;
        for (size_t q = 0; q < l; ++q) hk = (hk ^ static_cast<unsigned char>(t_.keyText_[o + q])) * 1099511628211ull;
        size_t slot = hk & mask;
        while (bigger[slot] != JsonTree::kNoKey) slot = (slot + 1) & mask;
        bigger[slot] = k;
      }
      keyTable_.swap(bigger);
    } else {
      size_t slot = h & mask;
      while (keyTable_[slot] != JsonTree::kNoKey) slot = (slot + 1) & mask;
      keyTable_[slot] = id;
    }
    return id;
  }

  // Opens an array or object; true when its first element is to be read.
  bool open(Kind kind) {
    if (static_cast<int>(stack_.size()) >= limits_.maxDepth)
      semantic("nested deeper than " + std::to_string(limits_.maxDepth) + " levels");
    const uint32_t e = push(kind);
    ++p_;
    stack_.push_back(Frame{e, kind == Kind::Object, 0, nullptr});
    if (lastKeys_.size() < stack_.size()) lastKeys_.resize(stack_.size());
    skipSpace();
    if (p_ != end_ && *p_ == (kind == Kind::Object ? '}' : ']')) {
      ++p_;
      close();
      return false;
    }
    if (kind == Kind::Object) member();
    stack_.back().count = 1;
    return true;
  }

  void close() {
    Frame& f = stack_.back();
    auto& e = t_.entries_[f.entry];
    e.c.count = f.count;
    e.c.end = static_cast<uint32_t>(t_.entries_.size());
    stack_.pop_back();
  }

  // Reads one value; an array or object is only opened (true when its
  // first element follows), its elements are read by run().
  bool value() {
    if (p_ == end_) syntax("unexpected end of input; expected a value");
    switch (*p_) {
      case '{': return open(Kind::Object);
      case '[': return open(Kind::Array);
      case '"': {
        const std::string_view s = readString();
        if (t_.strings_.size() + s.size() >= 0xfffffff0u) syntax("document too large");
        const uint32_t e = push(Kind::String);
        t_.entries_[e].s.offset = static_cast<uint32_t>(t_.strings_.size());
        t_.entries_[e].s.length = static_cast<uint32_t>(s.size());
        t_.strings_.append(s);
        return false;
      }
      case 't': literal("true", Kind::Boolean, true); return false;
      case 'f': literal("false", Kind::Boolean, false); return false;
      case 'n': literal("null", Kind::Null, false); return false;
      default:
        if (*p_ == '-' || (*p_ >= '0' && *p_ <= '9')) {
          number();
          return false;
        }
        if (*p_ == '\0') syntax("unexpected NUL byte");
        syntax(std::string("unexpected '") + *p_ + "'");
    }
  }

  void literal(const char* word, Kind kind, bool b) {
    const size_t n = std::strlen(word);
    if (static_cast<size_t>(end_ - p_) < n || std::memcmp(p_, word, n) != 0) syntax("invalid literal");
    p_ += n;
    const uint32_t e = push(kind);
    t_.entries_[e].b = b;
  }

  void number() {
    const char* start = p_;
    const char* q = p_;
    if (q != end_ && *q == '-') ++q;
    if (q == end_ || !(*q >= '0' && *q <= '9')) {
      p_ = q;
      syntax("invalid number; expected a digit");
    }
    if (*q == '0') {
      ++q;
    } else {
      while (q != end_ && *q >= '0' && *q <= '9') ++q;
    }
    bool isFloat = false;
    if (q != end_ && *q == '.') {
      isFloat = true;
      ++q;
      if (q == end_ || !(*q >= '0' && *q <= '9')) {
        p_ = q;
        syntax("invalid number; expected a digit after '.'");
      }
      while (q != end_ && *q >= '0' && *q <= '9') ++q;
    }
    if (q != end_ && (*q == 'e' || *q == 'E')) {
      isFloat = true;
      ++q;
      if (q != end_ && (*q == '+' || *q == '-')) ++q;
      if (q == end_ || !(*q >= '0' && *q <= '9')) {
        p_ = q;
        syntax("invalid number; expected a digit in the exponent");
      }
      while (q != end_ && *q >= '0' && *q <= '9') ++q;
    }
    p_ = q;
    if (!isFloat) {
      int64_t i = 0;
      const auto r = std::from_chars(start, q, i);
      if (r.ec == std::errc() && r.ptr == q) {
        const uint32_t e = push(Kind::Integer);
        t_.entries_[e].i = i;
        return;
      }
    }
    double d = 0;
    const auto r = std::from_chars(start, q, d);
    if (r.ec == std::errc::result_out_of_range) {
      // Underflow reads as zero (as strtod does); overflow is refused.
      const std::string copy(start, q);
      d = std::strtod(copy.c_str(), nullptr);
    }
    if (!std::isfinite(d)) semantic("number is not finite");
    const uint32_t e = push(Kind::Float);
    t_.entries_[e].d = d;
  }

  // Reads a string starting at the opening quote; the result points into
  // the text when it has no escapes, else into scratch_.
  std::string_view readString() {
    ++p_;
    const char* start = p_;
    // Fast path: plain ASCII up to the closing quote.
    while (p_ != end_) {
      const unsigned char c = static_cast<unsigned char>(*p_);
      if (c == '"') {
        const std::string_view s(start, static_cast<size_t>(p_ - start));
        ++p_;
        return s;
      }
      if (c == '\\' || c < 0x20 || c >= 0x80) break;
      ++p_;
    }
    scratch_.assign(start, p_);
    while (p_ != end_) {
      const unsigned char c = static_cast<unsigned char>(*p_);
      if (c == '"') {
        ++p_;
        return scratch_;
      }
      if (c < 0x20) syntax(c == 0 ? "unexpected NUL byte in a string" : "control character in a string");
      if (c == '\\') {
        ++p_;
        if (p_ == end_) break;
        const char esc = *p_++;
        switch (esc) {
          case '"': scratch_ += '"'; break;
          case '\\': scratch_ += '\\'; break;
          case '/': scratch_ += '/'; break;
          case 'b': scratch_ += '\b'; break;
          case 'f': scratch_ += '\f'; break;
          case 'n': scratch_ += '\n'; break;
          case 'r': scratch_ += '\r'; break;
          case 't': scratch_ += '\t'; break;
          case 'u': {
            uint32_t cp = hex4();
            if (cp >= 0xD800 && cp <= 0xDBFF) {
              if (end_ - p_ < 2 || p_[0] != '\\' || p_[1] != 'u') syntax("unpaired surrogate in \\u escape");
              p_ += 2;
              const uint32_t lo = hex4();
              if (lo < 0xDC00 || lo > 0xDFFF) syntax("unpaired surrogate in \\u escape");
              cp = 0x10000 + ((cp - 0xD800) << 10) + (lo - 0xDC00);
            } else if (cp >= 0xDC00 && cp <= 0xDFFF) {
              syntax("unpaired surrogate in \\u escape");
            }
            appendUtf8(cp);
            break;
          }
          default:
            --p_;
            syntax("invalid escape in a string");
        }
        continue;
      }
      if (c < 0x80) {
        scratch_ += static_cast<char>(c);
        ++p_;
        continue;
      }
      // A multi-byte UTF-8 sequence: checked, then copied.
      const size_t n = utf8Length();
      scratch_.append(p_, n);
      p_ += n;
    }
    syntax("unexpected end of input in a string");
  }

  uint32_t hex4() {
    if (end_ - p_ < 4) syntax("\\u needs four hex digits");
    uint32_t v = 0;
    for (int k = 0; k < 4; ++k) {
      const char c = *p_;
      v <<= 4;
      if (c >= '0' && c <= '9') v |= static_cast<uint32_t>(c - '0');
      else if (c >= 'a' && c <= 'f') v |= static_cast<uint32_t>(c - 'a' + 10);
      else if (c >= 'A' && c <= 'F') v |= static_cast<uint32_t>(c - 'A' + 10);
      else syntax("\\u needs four hex digits");
      ++p_;
    }
    return v;
  }

  void appendUtf8(uint32_t cp) {
    if (cp < 0x80) {
      scratch_ += static_cast<char>(cp);
    } else if (cp < 0x800) {
      scratch_ += static_cast<char>(0xC0 | (cp >> 6));
      scratch_ += static_cast<char>(0x80 | (cp & 0x3F));
    } else if (cp < 0x10000) {
      scratch_ += static_cast<char>(0xE0 | (cp >> 12));
      scratch_ += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
      scratch_ += static_cast<char>(0x80 | (cp & 0x3F));
    } else {
      scratch_ += static_cast<char>(0xF0 | (cp >> 18));
      scratch_ += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
      scratch_ += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
      scratch_ += static_cast<char>(0x80 | (cp & 0x3F));
    }
  }

  // Length of the valid UTF-8 sequence at p_; a bad one is a syntax error.
  size_t utf8Length() const {
    const auto* u = reinterpret_cast<const unsigned char*>(p_);
    const size_t left = static_cast<size_t>(end_ - p_);
    size_t n;
    uint32_t min;
    if (u[0] >= 0xC2 && u[0] <= 0xDF) n = 2, min = 0x80;
    else if (u[0] >= 0xE0 && u[0] <= 0xEF) n = 3, min = 0x800;
    else if (u[0] >= 0xF0 && u[0] <= 0xF4) n = 4, min = 0x10000;
    else syntax("invalid UTF-8 in a string");
    if (left < n) syntax("invalid UTF-8 in a string");
    uint32_t cp = u[0] & (0x7F >> n);
    for (size_t k = 1; k < n; ++k) {
      if ((u[k] & 0xC0) != 0x80) syntax("invalid UTF-8 in a string");
      cp = (cp << 6) | (u[k] & 0x3F);
    }
    if (cp < min || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) syntax("invalid UTF-8 in a string");
    return n;
  }

  const char* begin_;
  const char* p_;
  const char* end_;
  JsonLimits limits_;
  JsonTree& t_;
  std::vector<Frame> stack_;
  std::vector<uint32_t> lastKeys_;  // per open object, the key of the member being read
  std::vector<uint32_t> keyTable_;
  uint32_t pendingKey_ = JsonTree::kNoKey;
  std::string scratch_;
};

JsonTree JsonTree::parse(std::string_view text, const JsonLimits& limits) {
  JsonTree tree;
  JsonParser parser(text, limits, tree);
  parser.run();
  // No shrink_to_fit: the unused reserve was never touched (it costs
  // address space, not memory), and a copy would double the tree at its
  // peak.
  return tree;
}

}  // namespace lb::io
