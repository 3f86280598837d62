#include "qto/hosts/embedded/xlsx/xml_scanner.hpp"

#include <algorithm>
#include <array>
#include <cstring>

#include "qto/automation/text.hpp"
#include "qto/hosts/embedded/xlsx/xml_entity.hpp"

namespace qto::embedded {
namespace {

// Tokens beyond this are left to the full tokenizer, which bounds them.
constexpr std::size_t longest_token = std::size_t{1} << 16;
constexpr std::size_t most_attributes = 16;

/// What a byte may be part of. Bytes of several classes in one text are told from their union.
enum ByteClass : unsigned {
  less_than = 1,
  ampersand = 2,
  forbidden = 4,  ///< control characters; carriage returns, which ask for normalization
  beyond_ascii = 8,
  bracket = 16,
  line_space = 32,  ///< tabs and line breaks, which attribute values turn into spaces
  name_start = 64,
  name_more = 128,
};

constexpr std::array<unsigned char, 256> classes_of_bytes() {
  std::array<unsigned char, 256> table{};
  for (int c = 0; c < 256; ++c) {
    unsigned classes = 0;
    if (c < 0x20) classes = c == '\t' || c == '\n' ? line_space : forbidden;
    if (c >= 0x80) classes = beyond_ascii;
    if (c == '<') classes = less_than;
    if (c == '&') classes = ampersand;
    if (c == ']') classes = bracket;
    const bool letter = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
    if (letter) classes |= name_start | name_more;
    if ((c >= '0' && c <= '9') || c == '.' || c == '-' || c == ':') classes |= name_more;
    table[static_cast<std::size_t>(c)] = static_cast<unsigned char>(classes);
  }
  return table;
}
constexpr std::array<unsigned char, 256> byte_classes = classes_of_bytes();

unsigned class_of(char c) noexcept { return byte_classes[static_cast<unsigned char>(c)]; }
// Without carriage returns: lines are counted by their line feeds.
bool is_space(char c) noexcept { return c == ' ' || c == '\n' || c == '\t'; }

}  // namespace

bool XmlScanner::feed(std::string_view bytes) {
  buffer_.erase(buffer_.begin(), buffer_.begin() + static_cast<std::ptrdiff_t>(at_));
  at_ = 0;
  buffer_.insert(buffer_.end(), bytes.begin(), bytes.end());
  newlines_ += std::count(bytes.begin(), bytes.end(), '\n');
  while (at_ < buffer_.size()) {
    const Step step = !in_document_         ? scan_prolog()
                      : buffer_[at_] == '<' ? scan_tag()
                                            : scan_text();
    if (step == Step::beyond) return false;
    if (step == Step::incomplete) return buffer_.size() - at_ <= longest_token;
  }
  return true;
}

std::string XmlScanner::context() const {
  if (!seen_root_) return moved_ ? " " : "";
  return open_.empty() ? "<a/>" : tags_;
}

long XmlScanner::line() const noexcept {
  const std::string_view ahead = rest();
  return 1 + newlines_ - static_cast<long>(std::count(ahead.begin(), ahead.end(), '\n'));
}

XmlScanner::Step XmlScanner::scan_prolog() {
  const std::string_view text = rest();
  const std::size_t length = plain_prolog_length(text);
  if (length == std::string_view::npos) {
    // Whatever it is, it begins with a declaration that is cut off, or is not plain.
    const bool may_go_on = text.size() < 256 && text.find('>') == std::string_view::npos;
    return may_go_on ? Step::incomplete : Step::beyond;
  }
  if (length == text.size()) return Step::incomplete;
  at_ += length;
  moved_ = length > 0;
  in_document_ = true;
  return Step::done;
}

XmlScanner::Step XmlScanner::scan_text() {
  const char* const begin = buffer_.data() + at_;
  const char* const end = buffer_.data() + buffer_.size();
  unsigned classes = 0;
  const char* p = begin;
  while (p != end && *p != '<') classes |= class_of(*p++);
  if (p == end && (!open_.empty() || p == begin)) return Step::incomplete;
  const std::string_view text(begin, static_cast<std::size_t>(p - begin));
  if (open_.empty()) {
    // Around the root there is white space only.
    if (!std::ranges::all_of(text, is_space)) return Step::beyond;
    at_ += text.size();
    moved_ = true;
    return Step::done;
  }
  if (!acceptable(text, classes) ||
      ((classes & bracket) && text.find("]]>") != std::string_view::npos))
    return Step::beyond;
  const std::size_t from = at_;
  at_ += text.size();
  if (classes & ampersand) {
    char* const first = buffer_.data() + from;
    events_.text({first, decode_entities(first, first + text.size())});
  } else {
    events_.text(text);
  }
  return Step::done;
}

bool XmlScanner::acceptable(std::string_view text, unsigned classes) const {
  if (classes & (forbidden | less_than)) return false;
  if ((classes & beyond_ascii) && !is_xml_utf8(text)) return false;
  return !(classes & ampersand) || entities_are_known(text);
}

XmlScanner::Step XmlScanner::scan_tag() {
  const std::size_t size = buffer_.size();
  std::size_t p = at_ + 1;
  if (p == size) return Step::incomplete;
  if (buffer_[p] == '/') return scan_end_tag();
  if (!(class_of(buffer_[p]) & name_start) || (seen_root_ && open_.empty())) return Step::beyond;
  const std::size_t name = p;
  while (p < size && (class_of(buffer_[p]) & name_more)) ++p;
  const std::size_t name_end = p;
  attributes_.clear();
  bool is_empty = false;
  for (;;) {
    const std::size_t before = p;
    while (p < size && is_space(buffer_[p])) ++p;
    if (p == size) return Step::incomplete;
    if (buffer_[p] == '>') break;
    if (buffer_[p] == '/') {
      if (++p == size) return Step::incomplete;
      if (buffer_[p] != '>') return Step::beyond;
      is_empty = true;
      break;
    }
    if (p == before) return Step::beyond;
    if (const Step step = scan_attribute(p); step != Step::done) return step;
  }
  if (!acceptable_attributes()) return Step::beyond;
  ++p;
  open_.push_back({tags_.size(), name_end - name});
  tags_.append(buffer_.data() + at_, p - at_);
  seen_root_ = true;
  at_ = p;
  report_start(name, name_end);
  if (is_empty) {
    const OpenTag tag = open_.back();
    events_.end(std::string_view(tags_).substr(tag.offset + 1, tag.name_length));
    tags_.resize(tag.offset);
    open_.pop_back();
  }
  return Step::done;
}

XmlScanner::Step XmlScanner::scan_attribute(std::size_t& p) {
  const std::size_t size = buffer_.size();
  Attribute attribute{p, 0, 0, 0, 0};
  if (!(class_of(buffer_[p]) & name_start)) return Step::beyond;
  while (p < size && (class_of(buffer_[p]) & name_more)) ++p;
  attribute.name_end = p;
  if (p + 1 >= size) return Step::incomplete;
  const char quote = buffer_[p + 1];
  if (buffer_[p] != '=' || (quote != '"' && quote != '\'')) return Step::beyond;
  p += 2;
  attribute.value = p;
  const char* const data = buffer_.data();
  while (p < size && data[p] != quote) attribute.classes |= class_of(data[p++]);
  if (p == size) return Step::incomplete;
  attribute.value_end = p++;
  attributes_.push_back(attribute);
  return attributes_.size() <= most_attributes ? Step::done : Step::beyond;
}

bool XmlScanner::acceptable_attributes() const {
  const auto part = [&](std::size_t from, std::size_t to) {
    return std::string_view(buffer_.data() + from, to - from);
  };
  for (std::size_t i = 0; i < attributes_.size(); ++i) {
    const Attribute& attribute = attributes_[i];
    if ((attribute.classes & line_space) ||
        !acceptable(part(attribute.value, attribute.value_end), attribute.classes))
      return false;
    for (std::size_t k = 0; k < i; ++k)
      if (part(attributes_[k].name, attributes_[k].name_end) ==
          part(attribute.name, attribute.name_end))
        return false;
  }
  return true;
}

void XmlScanner::report_start(std::size_t name, std::size_t name_end) {
  char* const data = buffer_.data();
  list_.clear();
  for (const Attribute& attribute : attributes_) {
    std::size_t end = attribute.value_end;
    if (attribute.classes & ampersand)
      end = attribute.value + decode_entities(data + attribute.value, data + attribute.value_end);
    data[attribute.name_end] = '\0';
    data[end] = '\0';
    list_.push_back(data + attribute.name);
    list_.push_back(data + attribute.value);
  }
  list_.push_back(nullptr);
  events_.start({data + name, name_end - name}, list_.data());
}

XmlScanner::Step XmlScanner::scan_end_tag() {
  const std::size_t size = buffer_.size();
  const std::size_t name = at_ + 2;
  std::size_t p = name;
  while (p < size && (class_of(buffer_[p]) & name_more)) ++p;
  const std::size_t name_end = p;
  while (p < size && is_space(buffer_[p])) ++p;
  if (p == size) return Step::incomplete;
  if (buffer_[p] != '>' || open_.empty()) return Step::beyond;
  const OpenTag tag = open_.back();
  const std::string_view wanted = std::string_view(tags_).substr(tag.offset + 1, tag.name_length);
  if (wanted != std::string_view(buffer_.data() + name, name_end - name)) return Step::beyond;
  at_ = p + 1;
  events_.end(wanted);
  tags_.resize(tag.offset);
  open_.pop_back();
  return Step::done;
}

}  // namespace qto::embedded
