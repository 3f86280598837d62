#include "cli/list_text.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <vector>

#include "cli/part_text.hpp"

namespace qto::cli {
namespace {

/// The columns are as wide as the first lines need; a list may be too long to be read twice.
constexpr std::size_t lines_measured = 1000;
constexpr std::size_t widest_column = 40;

struct Widths {
  std::size_t address = 0;
  std::size_t title = 0;
  std::size_t value = 0;

  void take(const PartText& text) {
    const auto widen = [](std::size_t& width, std::string_view field) {
      width = std::max(width, std::min(letters(field), widest_column));
    };
    widen(address, text.address);
    widen(title, text.title);
    widen(value, text.value);
  }
};

void print_line(std::FILE* out, const PartText& text, const Widths& widths) {
  std::string line;
  std::size_t column = 0;
  const auto put = [&](std::string_view field, std::size_t width) {
    line += field;
    column += width + 2;
    pad(line, std::max(column, letters(line) + 2));
  };
  put(text.address, widths.address);
  if (widths.title > 0) put(text.title, widths.title);
  put(text.value, widths.value);
  line += text.formula;
  line.erase(line.find_last_not_of(' ') + 1);
  fmt::print(out, "{}\n", line);
}

}  // namespace

void print_list(std::FILE* out, const Ref<ModelParts>& parts, const std::string& home_book,
                bool full, Progress& progress) {
  std::vector<PartText> head;
  Widths widths;
  ModelParts::Pass pass(parts);
  while (head.size() < lines_measured) {
    ModelPart* part = pass.next();
    if (!part) break;
    head.push_back(describe(*part, home_book, full));
    widths.take(head.back());
    progress.count_one();
  }
  for (const PartText& text : head) print_line(out, text, widths);
  while (ModelPart* part = pass.next()) {
    print_line(out, describe(*part, home_book, full), widths);
    progress.count_one();
  }
}

}  // namespace qto::cli
