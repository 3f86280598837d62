#include "cli/answer/list_text.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <span>
#include <vector>

#include "cli/output/cell_run.hpp"
#include "cli/output/part_text.hpp"

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

/// Whole columns are full of cells that hold nothing; a line says so for all of a block.
PartText describe_empty(ModelPart& first, const CellRun& run, const std::string& home_book) {
  PartText text;
  text.address = readable_address(first, home_book, address_of(run.block));
  text.value = fmt::format("{} empty cells", run.cells);
  return text;
}

}  // namespace

void print_list(std::FILE* out, const Ref<ModelParts>& parts, const std::string& home_book,
                bool full, Progress& progress) {
  std::vector<ModelPart*> items;
  items.reserve(static_cast<std::size_t>(parts->Count()));
  parts->for_each([&items](ModelPart& part) { items.push_back(&part); });
  std::vector<PartText> head;
  Widths widths;
  for (std::span<ModelPart* const> rest(items); !rest.empty();) {
    const CellRun run = full ? CellRun{} : empty_run_at_front(rest);
    const std::size_t taken = std::max<std::size_t>(run.cells, 1);
    const PartText text =
        run.cells ? describe_empty(*rest[0], run, home_book) : describe(*rest[0], home_book, full);
    rest = rest.subspan(taken);
    progress.count(taken);
    if (head.size() < lines_measured) {
      head.push_back(text);
      widths.take(text);
      if (head.size() < lines_measured && !rest.empty()) continue;
      for (const PartText& first : head) print_line(out, first, widths);
    } else {
      print_line(out, text, widths);
    }
  }
}

}  // namespace qto::cli
