#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "qto/diagnostics/error_dialog.hpp"
#include "qto/diagnostics/trace.hpp"
#include "qto/diagnostics/trace_outputs.hpp"

/// The diagnostics are those of the thread: what a test sets up ends with the test.
namespace qto::test {

/// Answers every error report from a script, and keeps what was shown.
class ScriptedDialog {
 public:
  using Outcome = diagnostics::Outcome;
  using Script = std::function<std::optional<std::int32_t>(const diagnostics::DialogContent&)>;

  explicit ScriptedDialog(Outcome outcome)
      : ScriptedDialog([outcome](const auto&) { return static_cast<std::int32_t>(outcome); }) {}
  explicit ScriptedDialog(Script script) {
    dialog_->script = std::move(script);
    diagnostics::set_error_dialog(dialog_);
    token_ = diagnostics::error_reported().add(
        [this](const diagnostics::ErrorReport& report) { reports.push_back(report); });
  }
  ScriptedDialog(const ScriptedDialog&) = delete;
  ScriptedDialog& operator=(const ScriptedDialog&) = delete;
  ~ScriptedDialog() {
    diagnostics::set_error_dialog(nullptr);
    diagnostics::error_reported().remove(token_);
  }

  const std::vector<diagnostics::DialogContent>& shown() const { return dialog_->shown; }
  const std::vector<std::string>& told() const { return dialog_->told; }
  void answer_questions(bool yes) { dialog_->yes = yes; }

  std::vector<diagnostics::ErrorReport> reports;

 private:
  struct Dialog : diagnostics::ErrorDialog {
    std::optional<std::int32_t> show(const diagnostics::DialogContent& content) override {
      shown.push_back(content);
      return script(content);
    }
    bool ask(std::string_view question) override {
      told.emplace_back(question);
      return yes;
    }
    void tell(std::string_view message) override { told.emplace_back(message); }
    Script script;
    std::vector<diagnostics::DialogContent> shown;
    std::vector<std::string> told;
    bool yes = true;
  };

  std::shared_ptr<Dialog> dialog_ = std::make_shared<Dialog>();
  int token_;
};

/// Switches tracing on and hands every line to a function.
class TraceListener {
 public:
  using Listen = std::function<void(std::string_view line, diagnostics::TraceMarker marker)>;
  explicit TraceListener(Listen listen) {
    auto viewer = std::make_shared<Viewer>();
    viewer->listen = std::move(listen);
    diagnostics::set_trace_viewer(std::move(viewer));
    diagnostics::set_viewer_output(true);
    diagnostics::set_tracing(true);
  }
  TraceListener(const TraceListener&) = delete;
  TraceListener& operator=(const TraceListener&) = delete;
  ~TraceListener() {
    diagnostics::set_tracing(false);
    diagnostics::set_viewer_output(false);
    diagnostics::set_trace_viewer(nullptr);
  }

 private:
  struct Viewer : diagnostics::TraceViewer {
    void send(std::string_view line, diagnostics::TraceMarker marker) override {
      listen(line, marker);
    }
    Listen listen;
  };
};

}  // namespace qto::test
