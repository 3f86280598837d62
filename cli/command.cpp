#include "cli/command.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <vector>

#include "cli/answer/answer_json.hpp"
#include "cli/answer/answer_text.hpp"
#include "cli/answer/drill.hpp"
#include "cli/answer/refusal.hpp"
#include "cli/asking/complaint.hpp"
#include "cli/asking/starts.hpp"
#include "cli/book/contents.hpp"
#include "cli/book/item.hpp"
#include "cli/book/open_start_book.hpp"
#include "cli/diagnostics.hpp"
#include "cli/links/folder_links.hpp"
#include "cli/links/link_states.hpp"
#include "cli/links/linked_books.hpp"
#include "cli/output/reports.hpp"
#include "cli/show/show.hpp"
#include "cli/terminal/progress.hpp"
#include "cli/terminal/terminal.hpp"
#include "qto/automation/error.hpp"
#include "qto/automation/file_path.hpp"
#include "qto/links/main.hpp"

namespace qto::cli {
namespace {

/// One run of the command: what its steps share.
class Run {
 public:
  explicit Run(const Arguments& arguments)
      : arguments_(arguments), tracing_(arguments), dialog_(arguments, progress_) {}

  ExitStatus answer() {
    try {
      if (arguments_.operation == Operation::links &&
          std::filesystem::is_directory(text::to_path(arguments_.book)))
        return folder_links();
      open();
      if (arguments_.operation == Operation::links) return links();
      if (arguments_.operation == Operation::part)
        return arguments_.item.empty() ? contents() : part();
      if (arguments_.operation == Operation::show) return show();
      return drill();
    } catch (const ItemError& error) {
      throw Complaint(wrong_usage, error.what());
    }
  }

 private:
  void open() {
    progress_.stage("opening " + text::from_path(text::to_path(arguments_.book).filename()));
    application_.set_limits(arguments_.limits);
    book_ = open_start_book(application_, arguments_, progress_);
    // Parts of names evaluate before any drill has announced the application.
    Main::set_shared_application(book_->Application());
  }

  ExitStatus links() {
    const auto states = link_states(application_, book_, arguments_, progress_, failures_);
    progress_.hide();
    arguments_.json ? write_book_links(states, reports_) : print_links(*book_, states);
    return finish();
  }

  ExitStatus folder_links() {
    const FolderLinks found = read_folder_links(arguments_, progress_);
    progress_.hide();
    arguments_.json ? write_folder_links(found) : print_folder_links(found);
    const bool partial = std::any_of(found.books.begin(), found.books.end(),
                                     [](const auto& book) { return !book.second.problem.empty(); });
    const ExitStatus status = finish();
    return partial ? done_in_part : status;
  }

  ExitStatus part() {
    Item item = find_item(book_, arguments_.item);
    if (is_pivot_cell(item)) item.type = "Pivot Table";
    const auto part = make_ref<ModelPart>();
    if (item.seen_from) part->putref_ParentRange(item.seen_from);
    part->Create(item.object, item.type);
    if (!part->CheckedForPrecedents()) parse_only(part);
    progress_.hide();
    arguments_.json ? write_item(part, reports_) : print_item(part);
    return finish();
  }

  ExitStatus contents() {
    const Contents contents = contents_of(book_);
    progress_.hide();
    arguments_.json ? write_contents(contents, reports_) : print_contents(contents);
    return finish();
  }

  ExitStatus show() {
    const Item item = find_shown(book_, arguments_.item);
    const PictureSize size = picture_size();
    // A letter of the terminal is about as wide as a digit of a spreadsheet: 9 of them a column.
    application_.set_window_size(size.rows, static_cast<int>(size.width / 9));
    progress_.hide();
    show_item(arguments_, item, size, reports_);
    return finish();
  }

  ExitStatus drill() {
    std::vector<Start> starts;
    for (const std::string& text : written_starts(arguments_))
      std::ranges::move(find_starts(book_, text), std::back_inserter(starts));
    JsonWriter json(stdout);
    const ExitStatus status =
        starts.size() == 1 ? drill_from(starts[0], reports_, json) : drill_from_each(starts, json);
    if (arguments_.json) json.finish();
    return std::max(status, finish());
  }

  ExitStatus drill_from(const Start& start, const Reports& reports, JsonWriter& json) {
    Drill drill(arguments_, progress_);
    progress_.stage("following formulas");
    try {
      drill.run(start.object);
    } catch (const AutomationError& error) {
      throw Complaint(refused, refusal_text(error.number, book_, start.text, start.object),
                      error_number_text(error.number));
    }
    // On a terminal the answer itself is what moves.
    is_terminal(Stream::output) ? progress_.hide() : progress_.stage("writing the answer");
    if (arguments_.json)
      write_drill(json, arguments_, drill, failures_, reports, progress_);
    else
      print_drill(arguments_, drill, failures_, progress_);
    if (!drill.ended_by().empty()) ended_by_ = drill.ended_by();
    return drill.engine().ExceededMaxItems() ? done_in_part : done;
  }

  /// One answer after the other. A start that is refused does not keep the others from theirs.
  ExitStatus drill_from_each(const std::vector<Start>& starts, JsonWriter& json) {
    if (arguments_.json) begin_answers(json, arguments_.operation);
    ExitStatus status = done;
    std::size_t refusals = 0;
    for (const Start& start : starts) {
      if (!arguments_.json && &start != &starts.front()) fmt::print("\n");
      try {
        const Reports reports;
        status = std::max(status, drill_from(start, reports, json));
      } catch (const Complaint& complaint) {
        ++refusals;
        refuse(start, complaint, json);
      }
      if (!ended_by_.empty()) break;
    }
    if (arguments_.json) end_answers(json);
    if (refusals == starts.size()) return refused;
    return refusals > 0 ? done_in_part : status;
  }

  void refuse(const Start& start, const Complaint& complaint, JsonWriter& json) {
    progress_.hide();
    if (!arguments_.json) return print_complaint(complaint, false);
    json.begin_object();
    json.member("item", start.text);
    write_error(json, complaint);
    json.end_object();
  }

  ExitStatus finish() {
    std::fflush(stdout);
    progress_.hide();
    if (!ended_by_.empty())
      fmt::print(stderr, "qto: {}; this is what was found until then\n", ended_by_);
    reports_.print();
    return !ended_by_.empty() || reports_.count() > 0 ? done_in_part : done;
  }

  const Arguments& arguments_;
  Reports reports_;
  Progress progress_;
  Tracing tracing_;
  AskAboutReports dialog_;
  embedded::Application application_;
  OpenFailures failures_{application_};
  Ref<host::Workbook> book_;
  std::string ended_by_;  // what ended a drill before its time
};

int complain(const Arguments& arguments, const Complaint& complaint) {
  print_complaint(complaint, arguments.json);
  return complaint.status;
}

int answer(const Arguments& arguments) {
  try {
    return Run(arguments).answer();
  } catch (const Complaint& complaint) {
    return complain(arguments, complaint);
  } catch (const std::bad_alloc&) {
    return complain(arguments, Complaint(refused, "not enough memory for " + arguments.book));
  } catch (const AutomationError& error) {
    const std::string number = error_number_text(error.number);
    return complain(arguments, Complaint(refused, arguments.book + ": " + error.what(), number));
  } catch (const std::exception& failure) {
    return complain(arguments, Complaint(refused, arguments.book + ": " + failure.what()));
  }
}

}  // namespace

int run_command(const Arguments& arguments) {
  const int status = answer(arguments);
  if (std::fflush(stdout) == 0 && !std::ferror(stdout)) return status;
  fmt::print(stderr, "qto: the answer could not be written to standard output\n");
  return wrong_usage;
}

}  // namespace qto::cli
