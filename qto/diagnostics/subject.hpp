#pragma once

#include <string>
#include <utility>

namespace qto::diagnostics {

/// Names the formula cell that is being parsed; called only when a report is made. It asks nothing
/// of the host through procedures: a host that fails would be reported within the report.
using DescribeSubject = std::string (*)(const void* subject);

namespace detail {
struct SubjectMark {
  const void* subject = nullptr;
  DescribeSubject describe = nullptr;
};
inline thread_local constinit SubjectMark current_subject;
}  // namespace detail

/// Marks what is being parsed on this thread while it lives.
class Subject {
 public:
  Subject(const void* subject, DescribeSubject describe) noexcept
      : outer_(std::exchange(detail::current_subject, {subject, describe})) {}
  Subject(const Subject&) = delete;
  Subject& operator=(const Subject&) = delete;
  ~Subject() { detail::current_subject = outer_; }

 private:
  const detail::SubjectMark outer_;
};

/// The text of the innermost mark, "" where there is none.
std::string describe_subject() noexcept;

}  // namespace qto::diagnostics
