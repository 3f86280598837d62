#pragma once

#include <string>
#include <vector>

namespace qto::test {

struct Outcome {
  int status = -1;  ///< exit status, or minus the signal that ended the process
  std::string out;
  std::string err;
};

/// Runs the built command. Standard input is `typed`, then its end.
Outcome run_qto(const std::vector<std::string>& arguments, const std::string& typed = "");

/// Runs it, and once standard error holds `prompt` sends the interrupt of Ctrl-C.
Outcome interrupt_qto(const std::vector<std::string>& arguments, const std::string& prompt);

/// The shipped example.
std::string plan();

}  // namespace qto::test
