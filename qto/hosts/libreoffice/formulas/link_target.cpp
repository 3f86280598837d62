#include "qto/hosts/libreoffice/formulas/link_target.hpp"

#include <algorithm>
#include <cctype>

#include "qto/automation/address.hpp"

namespace qto::libreoffice {
namespace {

int hex_digit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  c = static_cast<char>(c | 0x20);
  return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

std::string unescaped(std::string_view url) {
  std::string out;
  for (std::size_t i = 0; i < url.size(); ++i) {
    const int high = url[i] == '%' && i + 2 < url.size() ? hex_digit(url[i + 1]) : -1;
    const int low = high >= 0 ? hex_digit(url[i + 2]) : -1;
    if (low < 0) {
      out.push_back(url[i]);
      continue;
    }
    out.push_back(static_cast<char>(high * 16 + low));
    i += 2;
  }
  return out;
}

bool sheets_need_quotes(std::string_view sheets) {
  const std::size_t colon = sheets.find(':');
  if (colon == std::string_view::npos) return needs_quotes(sheets);
  return needs_quotes(sheets.substr(0, colon)) || needs_quotes(sheets.substr(colon + 1));
}

}  // namespace

LinkTarget link_target(std::string_view url) {
  constexpr std::string_view scheme = "file://";
  std::string path;
  if (url.starts_with(scheme)) {
    path = unescaped(url.substr(scheme.size()));
    const bool drive = path.size() > 3 && path[0] == '/' && path[2] == ':' &&
                       std::isalpha(static_cast<unsigned char>(path[1]));
    if (drive) path.erase(0, 1);
    if (drive || !path.starts_with('/')) {  // another system's drive or share
      if (!drive) path.insert(0, "//");
      std::replace(path.begin(), path.end(), '/', '\\');
    }
  } else {
    path = url;
  }
  const std::size_t end = path.find_last_of("/\\");
  if (end == std::string::npos) return {"", path};
  return {path.substr(0, end + 1), path.substr(end + 1)};
}

void append_link(std::string& out, const LinkTarget& link, std::string_view sheets) {
  std::string text = link.folder;
  if (sheets.empty())
    text += link.name;
  else
    text.append("[").append(link.name).append("]").append(sheets);
  const bool quotes = !link.folder.empty() || needs_quotes(link.name) ||
                      (!sheets.empty() && sheets_need_quotes(sheets));
  // Brackets alone do not ask for apostrophes.
  quotes ? append_sheet_name(out, text) : void(out += text);
  out.push_back('!');
}

void append_sheets(std::string& out, std::string_view first, std::string_view last) {
  std::string text(first);
  if (!last.empty()) text.append(":").append(last);
  sheets_need_quotes(text) ? append_sheet_name(out, text) : void(out += text);
  out.push_back('!');
}

}  // namespace qto::libreoffice
