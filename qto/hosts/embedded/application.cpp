#include "qto/hosts/embedded/application.hpp"

#include <algorithm>

#include "qto/hosts/embedded/objects/application_object.hpp"
#include "qto/hosts/embedded/objects/checks/full_name.hpp"
#include "qto/hosts/embedded/objects/checks/raise.hpp"
#include "qto/hosts/embedded/objects/links.hpp"
#include "qto/hosts/embedded/objects/locate_file.hpp"
#include "qto/hosts/embedded/objects/workbook_object.hpp"

namespace qto::embedded {

Application::Application() : object_(new ApplicationObject), host_(object_) {}

Application::~Application() = default;

void Application::add_search_folder(std::string_view folder) {
  object_->search_folders.emplace_back(folder);
  for (const auto& open : object_->books())
    resolve_links(open->book(), object_->search_folders, open->stored_links);
}

std::optional<std::string> Application::find_file(std::string_view full_name) const {
  if (is_internet_address(full_name)) return std::nullopt;
  return locate_file(*object_, full_name);
}

void Application::set_now(double moment) { object_->fixed_now = moment; }

void Application::set_window_size(int rows, int columns) {
  object_->window_rows = std::max(rows, 1);
  object_->window_columns = std::max(columns, 1);
}

void Application::set_open_progress(void (*progress)(double, void*), void* data) {
  object_->open_options.progress = progress;
  object_->open_options.progress_data = data;
}

void Application::set_limits(const Limits& limits) { object_->open_options.limits = limits; }

Event<const host::OpenError&>& Application::open_failed() { return object_->open_failed; }

Event<std::string_view, bool&>& Application::hyperlink_followed() {
  return object_->hyperlink_followed;
}

Ref<host::Workbook> Application::adopt(std::unique_ptr<Book> book) {
  if (object_->find_book(book->name)) fail("A workbook named " + book->name + " is open");
  return object_->add_book(std::move(book)).workbook();
}

}  // namespace qto::embedded
