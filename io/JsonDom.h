// A compact read-only JSON tree, parsed in one iterative pass with the
// document limits (nesting depth, duplicate keys, trailing bytes) enforced.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "io/FormatError.h"

namespace lb::io {

class JsonTree;

// One value of a JsonTree; cheap to copy. The names follow nlohmann::json
// so that readers read the same either way.
class JsonRef {
 public:
  enum class Kind : uint8_t { Null, Boolean, Integer, Float, String, Array, Object };

  JsonRef(const JsonTree* tree, uint32_t index) : tree_(tree), index_(index) {}

  Kind kind() const;
  uint32_t index() const { return index_; }
  bool is_null() const { return kind() == Kind::Null; }
  bool is_boolean() const { return kind() == Kind::Boolean; }
  bool is_number() const { return kind() == Kind::Integer || kind() == Kind::Float; }
  bool is_number_integer() const { return kind() == Kind::Integer; }
  bool is_number_float() const { return kind() == Kind::Float; }
  bool is_string() const { return kind() == Kind::String; }
  bool is_array() const { return kind() == Kind::Array; }
  bool is_object() const { return kind() == Kind::Object; }
  // "null", "boolean", "number", "string", "array", "object".
  const char* type_name() const;

  // Members of an object or elements of an array.
  size_t size() const;
  // The k-th element or member (walks from the first: for short values).
  JsonRef operator[](size_t k) const;
  // The member named key; only on an object.
  std::optional<JsonRef> find(std::string_view key) const;
  bool contains(std::string_view key) const { return find(key).has_value(); }
  // The member's key, when this value is a member of an object.
  std::string_view key() const;

  double asDouble() const;
  int64_t asInteger() const;
  bool asBool() const;
  std::string_view asString() const;
  template <class T>
  T get() const {
    if constexpr (std::is_same_v<T, bool>) return asBool();
    else if constexpr (std::is_same_v<T, std::string>) return std::string(asString());
    else if constexpr (std::is_floating_point_v<T>) return static_cast<T>(asDouble());
    else return static_cast<T>(asInteger());
  }

  // Iterates the elements of an array or the members of an object.
  class iterator {
   public:
    iterator(const JsonTree* tree, uint32_t index) : tree_(tree), index_(index) {}
    JsonRef operator*() const { return {tree_, index_}; }
    JsonRef value() const { return {tree_, index_}; }
    std::string_view key() const { return JsonRef(tree_, index_).key(); }
    iterator& operator++();
    bool operator==(const iterator& o) const { return index_ == o.index_; }
    bool operator!=(const iterator& o) const { return index_ != o.index_; }

   private:
    const JsonTree* tree_;
    uint32_t index_;
  };
  iterator begin() const;
  iterator end() const;

 private:
  const JsonTree* tree_;
  uint32_t index_;
};

// Limits the parser enforces; a real document never comes near them.
struct JsonLimits {
  int maxDepth = 1000;  // arrays and objects open at once
};

class JsonTree {
 public:
  // Parses text; throws FormatError. Syntax errors are named by line and
  // column ("malformed JSON: ..."); a duplicate key, too deep a nesting or
  // a number out of range by the JSON path of the value.
  static JsonTree parse(std::string_view text, const JsonLimits& limits = {});

  JsonRef root() const { return {this, 0}; }

 private:
  friend class JsonRef;
  friend class JsonParser;
  struct Entry {
    JsonRef::Kind kind;
    uint32_t key;  // index into keys_ of the member's key; kNoKey for array elements and the root
    union {
      double d;
      int64_t i;
      bool b;
      struct {
        uint32_t offset, length;
      } s;
      struct {
        uint32_t count, end;  // children; index past the last descendant
      } c;
    };
  };
  static_assert(sizeof(Entry) == 16, "entries stay compact");
  static constexpr uint32_t kNoKey = 0xffffffffu;

  uint32_t next(uint32_t index) const {
    const Entry& e = entries_[index];
    return (e.kind == JsonRef::Kind::Array || e.kind == JsonRef::Kind::Object) ? e.c.end : index + 1;
  }

  std::vector<Entry> entries_;
  std::string strings_;  // string values, unescaped, back to back
  std::string keyText_;  // distinct keys, back to back
  std::vector<std::pair<uint32_t, uint32_t>> keys_;  // offset, length in keyText_
};

}  // namespace lb::io
