// A streaming JSON writer with the document layout: two-space indents, and
// any array or object whose one-line form fits in 100 columns on one line.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace lb::io {

// Numbers in the shortest form that reads back to the same double, spelled
// as the JSON library spells them ("1.0", "0.25", "1e-05", "1e+16").
void appendJsonNumber(std::string& out, double d);
// A JSON string literal (quotes, escapes). Throws std::runtime_error on
// text that is not valid UTF-8.
void appendJsonString(std::string& out, std::string_view s);

class JsonWriter {
 public:
  // Text is appended to out; when flush is given, it is handed the text
  // written so far (and out cleared) whenever out has grown past a
  // megabyte at a point where no one-line attempt is pending.
  explicit JsonWriter(std::string& out, std::function<void(std::string&)> flush = {})
      : out_(out), flush_(std::move(flush)) {}

  // An object or array whose members body writes. body runs once for the
  // one-line attempt and, if that does not fit, once more for the broken
  // form; it must write the same both times.
  template <class Body>
  void object(Body&& body) {
    if (open('{', false)) return;
    body();
    if (close()) return;
    body();
    finish();
  }
  template <class Body>
  void array(Body&& body) {
    if (open('[', true)) return;
    body();
    if (close()) return;
    body();
    finish();
  }

  // The key of the next object member.
  void key(std::string_view k);
  void number(double d);
  void integer(int64_t i);
  void boolean(bool b);
  void null();
  void string(std::string_view s);

  // Convenience members.
  void member(std::string_view k, double d) { key(k), number(d); }
  void memberInt(std::string_view k, int64_t i) { key(k), integer(i); }
  void member(std::string_view k, bool b) { key(k), boolean(b); }
  void member(std::string_view k, const char* s) { key(k), string(s); }
  void member(std::string_view k, const std::string& s) { key(k), string(s); }

  // True while a one-line attempt has run out of room: further writes are
  // ignored, so long loops may stop early.
  bool aborted() const { return aborted_; }

 private:
  struct Frame {
    bool array;
    bool compact;  // written on one line
    bool first;
  };

  // Starts a container; true when nothing more is to be done (a write
  // inside an attempt that has already failed).
  bool open(char bracket, bool array);
  // Ends the first pass; true when the container is complete (it fitted on
  // one line, or it lies inside another container's one-line attempt).
  bool close();
  // Ends the broken-over-lines pass.
  void finish();
  void beforeValue();
  void append(std::string_view s) {
    out_.append(s);
    check();
  }
  void check() {
    if (attempt_ && out_.size() > limit_) aborted_ = true;
  }
  void maybeFlush();

  std::string& out_;
  std::function<void(std::string&)> flush_;
  std::vector<Frame> stack_;
  bool attempt_ = false;        // a one-line attempt is being written
  bool aborted_ = false;
  size_t attemptStart_ = 0;     // where the attempt began, for rolling it back
  size_t limit_ = 0;
  size_t attemptDepth_ = 0;     // stack size at which the attempt began
};

}  // namespace lb::io
