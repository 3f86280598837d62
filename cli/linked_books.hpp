#pragma once

#include <string>

#include "cli/arguments.hpp"
#include "cli/json_writer.hpp"
#include "cli/progress.hpp"
#include "qto/links/linked_books.hpp"
#include "qto/model/model_part.hpp"

namespace qto::cli {

/// Decides for the user, or asks, whether a linked book is opened and with which password.
class LinkedBookChoices {
 public:
  LinkedBookChoices(const Arguments& arguments, Progress& progress)
      : arguments_(arguments), progress_(progress), policy_(arguments.open) {}

  bool opens(const ModelPart& unknown);
  std::string password(const ModelPart& unknown);

 private:
  const Arguments& arguments_;
  Progress& progress_;
  OpenPolicy policy_;  // "all" and "none" as answers hold for the rest
};

void write_books(JsonWriter& json, const LinkedBooks& books);
/// Lines about the books that were opened and those that were not, with the reason.
std::string describe_books(const LinkedBooks& opened, const LinkedBooks& not_opened);

}  // namespace qto::cli
