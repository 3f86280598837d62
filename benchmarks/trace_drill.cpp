// FindInputs over a chain of a million parts, in memory. Two programs are made of it: one with the
// library as it is and tracing off, one with a library in which tracing was compiled out. What they
// differ by is what tracing costs that is off. On a busy machine instruction counts tell more than
// seconds:
//
//   valgrind --tool=callgrind --toggle-collect='qto::DrillDown::FindInputs()' trace_off 20000 1
//
//   trace_off [ROWS [ROUNDS]]       seconds of every round, parts
//   trace_off ROWS ROUNDS FILE      the same with a trace log

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "qto/diagnostics/trace.hpp"
#include "qto/diagnostics/trace_outputs.hpp"
#include "qto/engine/drill_down.hpp"
#include "qto/host/host.hpp"
#include "qto/hosts/embedded/application.hpp"

int main(int argc, char** argv) {
  using Clock = std::chrono::steady_clock;
  const int rows = argc > 1 ? std::atoi(argv[1]) : 500'000;
  const int rounds = argc > 2 ? std::atoi(argv[2]) : 5;
  if (rows < 3 || rounds < 1)
    return std::fprintf(stderr, "usage: %s [ROWS [ROUNDS]]\n", argv[0]), 1;
  qto::embedded::Application application;
  const auto book = application.Workbooks()->Add();
  const auto sheet = book->Worksheets(1);
  sheet->Range("A1:B" + std::to_string(rows))->put_value(1.0);
  sheet->Range("A2:A" + std::to_string(rows))->put_Formula("=A1+B2");
  const auto start = sheet->Range("A" + std::to_string(rows));
  sheet->CircularReference();  // once per state of the book, not per drill
  if (argc > 3) {
    qto::diagnostics::set_trace_log(argv[3], "trace_drill");
    qto::diagnostics::set_log_output(true);
    qto::diagnostics::set_tracing(true);
  }
  for (int round = 0; round < rounds; ++round) {
    const auto drill = qto::make_ref<qto::DrillDown>();
    drill->putref_StartUnderlyingObject(start);
    const auto begin = Clock::now();
    drill->FindInputs();
    const double seconds = std::chrono::duration<double>(Clock::now() - begin).count();
    std::printf("%.4f %d\n", seconds, rows - 1 + drill->InputCells()->Count());
  }
  return 0;
}
