#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

namespace qto::cli {

/// Writes one JSON document as it comes, without holding it: answers may list a million cells.
/// Elements of the outer levels stand on lines of their own.
class JsonWriter {
 public:
  explicit JsonWriter(std::FILE* out) : out_(out) {}
  JsonWriter(const JsonWriter&) = delete;
  JsonWriter& operator=(const JsonWriter&) = delete;
  ~JsonWriter() { flush(); }

  void begin_object() { begin('{'); }
  void end_object() { end('}'); }
  void begin_array() { begin('['); }
  void end_array() { end(']'); }
  void key(std::string_view name);

  void text(std::string_view value);
  /// Not a number and the infinities become null.
  void number(double value);
  void number(std::int64_t value);
  void boolean(bool value);
  void null();

  void member(std::string_view name, std::string_view value) { key(name), text(value); }
  void member(std::string_view name, const char* value) { key(name), text(value); }
  void member(std::string_view name, bool value) { key(name), boolean(value); }
  void member(std::string_view name, std::int64_t value) { key(name), number(value); }

  /// Ends the document's last line and hands everything to the stream.
  void finish();

 private:
  void begin(char bracket);
  void end(char bracket);
  void separate();
  void append_quoted(std::string_view value);
  void flush();

  std::FILE* out_;
  std::string buffer_;
  int depth_ = 0;
  bool first_ = true;  ///< nothing stands yet in the innermost object or array
  bool after_key_ = false;
};

}  // namespace qto::cli
