#include "qto/hosts/embedded/objects/resolve_links.hpp"

#include "qto/hosts/embedded/objects/checks/full_name.hpp"
#include "qto/hosts/embedded/objects/locate_file.hpp"

namespace qto::embedded {
namespace {

bool look_in(const std::string& folder, Book& book, std::size_t number, StoredNames& stored) {
  if (folder.empty()) return false;
  ExternalBook& link = book.externals[number];
  const auto found = file_in_folder(folder, link.name);
  if (!found) return false;
  std::string before = stored_name(book, number, stored);
  if (stored.size() <= number) stored.resize(number + 1);
  stored[number] = std::move(before);
  link.folder = join_path(folder, "");
  link.name = *found;
  return true;
}

}  // namespace

std::string stored_name(const Book& book, std::size_t number, const StoredNames& stored) {
  if (number < stored.size() && !stored[number].empty()) return stored[number];
  const ExternalBook& link = book.externals[number];
  return join_path(link.folder.empty() ? book.path : link.folder, link.name);
}

void resolve_link(Book& book, std::size_t number, const std::vector<std::string>& folders,
                  StoredNames& stored) {
  const ExternalBook& link = book.externals[number];
  if (link.kind != ExternalBook::Kind::workbook || link.name.empty()) return;
  if (is_internet_address(link.folder)) return;
  if (!link.folder.empty() && is_file_here(link.folder + link.name)) return;
  if (look_in(book.path, book, number, stored)) return;
  for (const std::string& folder : folders)
    if (look_in(folder, book, number, stored)) return;
}

void resolve_links(Book& book, const std::vector<std::string>& folders, StoredNames& stored) {
  for (std::size_t number = 0; number < book.externals.size(); ++number)
    resolve_link(book, number, folders, stored);
}

}  // namespace qto::embedded
