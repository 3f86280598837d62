#include "qto/hosts/embedded/stored_links.hpp"

#include "qto/automation/file_path.hpp"
#include "qto/hosts/embedded/objects/checks/full_name.hpp"
#include "qto/hosts/embedded/objects/links.hpp"
#include "qto/hosts/embedded/objects/locate_file.hpp"
#include "qto/hosts/embedded/xlsx/open_workbook.hpp"

namespace qto::embedded {
namespace {

std::unique_ptr<Book> read_links_only(const std::string& file, const std::string& password) {
  OpenOptions options;
  options.links_only = true;
  options.password = password;
  try {
    return open_workbook(file, options);
  } catch (const OpenFailure& failure) {
    throw failure.for_clients();
  }
}

StoredLink link_to_workbook(const Book& book, std::size_t number, const StoredNames& stored) {
  const ExternalBook& external = book.externals[number];
  StoredLink link;
  link.source = stored_name(book, number, stored);
  const std::string place = external.folder + external.name;
  if (is_internet_address(link.source))
    link.kind = StoredLink::Kind::internet;
  else if (is_file_here(place))
    link.found_at = text::from_path(text::to_path(native_path(place)).lexically_normal());
  return link;
}

}  // namespace

std::vector<StoredLink> read_stored_links(const std::string& file,
                                          const std::vector<std::string>& folders,
                                          const std::string& password) {
  const auto book = read_links_only(file, password);
  StoredNames stored;
  resolve_links(*book, folders, stored);
  std::vector<StoredLink> links;
  for (std::size_t i = 0; i < book->externals.size(); ++i) {
    const ExternalBook& external = book->externals[i];
    if (external.kind != ExternalBook::Kind::workbook) {
      if (!external.application.empty())
        links.push_back(
            {StoredLink::Kind::application, external.application + "|" + external.document, {}});
    } else if (!external.name.empty()) {
      links.push_back(link_to_workbook(*book, i, stored));
    }
  }
  return links;
}

}  // namespace qto::embedded
