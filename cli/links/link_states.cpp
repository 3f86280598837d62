#include "cli/links/link_states.hpp"

#include <fmt/format.h>

#include <algorithm>

#include "cli/output/part_text.hpp"
#include "qto/automation/file_path.hpp"
#include "qto/host/host.hpp"
#include "qto/links/link_list.hpp"
#include "qto/links/path_helpers.hpp"

namespace qto::cli {
namespace {

/// The type of link sources that are DDE and OLE links; the embedded host lists them.
constexpr std::int32_t link_type_applications = 2;

bool has_circle(const host::Workbook& book) {
  for (int i = 1; i <= book.WorksheetsCount(); ++i)
    if (book.Worksheets(i)->CircularReference()) return true;
  return false;
}

/// Tries one book after the other.
class Tries {
 public:
  Tries(embedded::Application& application, const Ref<host::Workbook>& book,
        LinkedBookChoices& choices, const OpenFailures& failures)
      : application_(application), book_(book), choices_(choices), failures_(failures) {}

  LinkState state_of(const std::string& source) {
    LinkState state;
    state.source = source;
    if (Main::IsURL(source)) return not_opened(state, qtownoUserDecision, internet_text);
    // What a book links to lies beside it before it lies beside others.
    book_->Activate();
    const auto found = application_.find_file(source);
    if (!found) return not_opened(state, qtownoNotFound);
    state.found_at = *found;
    const std::string name = text::from_path(text::to_path(*found).filename());
    if (const auto open = application_.Workbooks()->find(name))
      return open->FullName() == *found ? state : not_opened(state, qtownoDuplicateName);
    if (!choices_.opens(*found)) return not_opened(state, qtownoUserDecision);
    return open(state, name);
  }

 private:
  static LinkState not_opened(LinkState state, qtoReasonNotOpened reason, std::string words = {}) {
    state.reason = reason;
    state.words = words.empty() ? reason_text(reason) : std::move(words);
    return state;
  }

  LinkState open(const LinkState& state, const std::string& name) {
    Ref<host::Workbook> opened = try_open(state.found_at, "");
    if (!opened) {
      const std::string password = choices_.password(name);
      if (!password.empty()) opened = try_open(state.found_at, password);
    }
    if (!opened) return not_opened(state, qtownoOther, failures_.of(name));
    const bool circle = has_circle(*opened);
    opened->Close(false);
    return circle ? not_opened(state, qtoWNOCircularReference) : state;
  }

  Ref<host::Workbook> try_open(const std::string& file, const std::string& password) {
    try {
      return application_.Workbooks()->Open(file, false, true, password);
    } catch (const host::HostFailure&) {
      return nullptr;
    }
  }

  embedded::Application& application_;
  const Ref<host::Workbook>& book_;
  LinkedBookChoices& choices_;
  const OpenFailures& failures_;
};

std::string state_text(const LinkState& link) {
  if (!link.workbook) return "link to another application";
  std::string text = link.reason == qtoWNOOK ? "opened"
                                             : fmt::format("not opened: {} (reason {})", link.words,
                                                           static_cast<int>(link.reason));
  if (!link.found_at.empty() && link.found_at != link.source) text += "; found at " + link.found_at;
  return text;
}

}  // namespace

std::vector<LinkState> link_states(embedded::Application& application,
                                   const Ref<host::Workbook>& book, const Arguments& arguments,
                                   Progress& progress, const OpenFailures& failures) {
  LinkedBookChoices choices(arguments, progress);
  Tries tries(application, book, choices, failures);
  std::vector<LinkState> states;
  const auto list = make_ref<LinkList>();
  list->putref_Workbook(book);
  for (std::int32_t i = 1; i <= list->CountLinks(); ++i) {
    progress.stage("looking at " + list->Links(i));
    states.push_back(tries.state_of(list->Links(i)));
  }
  for (const std::string& source : book->LinkSources(link_type_applications))
    states.push_back({source, false, "", qtoWNOOK, ""});
  return states;
}

void print_links(const host::Workbook& book, const std::vector<LinkState>& links) {
  for (const LinkState& link : links)
    fmt::print("{}\n    {}\n", one_line(link.source), one_line(state_text(link)));
  const auto books = std::count_if(links.begin(), links.end(),
                                   [](const LinkState& link) { return link.workbook; });
  const auto others = std::ssize(links) - books;
  fmt::print(
      "{}{} links to {}", links.empty() ? "" : "\n", book.Name(),
      books == 0 ? "no other book" : fmt::format("{} other book{}", books, books == 1 ? "" : "s"));
  if (others > 0)
    fmt::print(" and {} document{} of other applications", others, others == 1 ? "" : "s");
  fmt::print("\n");
}

void write_links(JsonWriter& json, const std::vector<LinkState>& links) {
  json.key("Links");
  json.begin_array();
  for (const LinkState& link : links) {
    json.begin_object();
    json.member("FullNameWithPath", link.source);
    json.member("Kind", link.workbook ? "workbook" : "application");
    if (link.workbook) {
      json.member("Exists", !link.found_at.empty());
      json.member("FoundAt", link.found_at);
      json.member("Opened", link.reason == qtoWNOOK);
      json.member("WhyNotOpened", std::int64_t{link.reason});
      json.member("Reason", link.words);
    }
    json.end_object();
  }
  json.end_array();
}

}  // namespace qto::cli
