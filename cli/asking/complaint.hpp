#pragma once

#include <exception>
#include <stdexcept>
#include <string>

namespace qto::cli {

/// What the command ends with; docs/command.md tells the same to its users.
enum ExitStatus : int {
  done = 0,
  wrong_usage = 1,
  refused = 2,
  done_in_part = 3,  ///< an answer, but problems arose or the drill was interrupted
  unreadable = 4,
};

class JsonWriter;

/// Why there is no answer, for people and for programs.
struct Complaint : std::runtime_error {
  Complaint(ExitStatus exit_status, const std::string& text, std::string number_text = {})
      : std::runtime_error(text), status(exit_status), number(std::move(number_text)) {}
  ExitStatus status;
  std::string number;  ///< of the engine's refusal, "" otherwise
  std::string file;    ///< of an unreadable book: the file, the part of it and the line there
  std::string part;
  long line = 0;
};

/// The member "error" of an answer that is none.
void write_error(JsonWriter& json, const Complaint& complaint);
/// Prints it on standard error, or as a JSON object on standard output.
void print_complaint(const Complaint& complaint, bool json);

}  // namespace qto::cli
