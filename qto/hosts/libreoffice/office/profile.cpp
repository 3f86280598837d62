#include "qto/hosts/libreoffice/office/profile.hpp"

#include <stdlib.h>

#include <fstream>
#include <system_error>

#include "qto/hosts/libreoffice/office/fail.hpp"

namespace qto::libreoffice {
namespace {

struct Setting {
  const char* path;
  const char* name;
  const char* value;
};

constexpr Setting settings[] = {
    // Files are only read: no lock files beside them, and those of others do not matter.
    {"Office.Common/Misc", "UseLocking", "false"},
    {"Office.Common/Misc", "UseDocumentSystemFileLocking", "false"},
    {"Office.Common/Misc", "UseDocumentOOoLockFile", "false"},
    {"Office.Common/Misc", "FirstRun", "false"},
    {"Office.Recovery/AutoSave", "Enabled", "false"},
    {"Office.Recovery/RecoveryInfo", "Enabled", "false"},
    // Values are those of the file, as for any other host.
    {"Setup/L10N", "ooSetupSystemLocale", "en-US"},
    {"Office.Calc/Formula/Load", "OOXMLRecalcMode", "1"},
    {"Office.Calc/Formula/Load", "ODFRecalcMode", "1"},
    {"Office.Calc/Content/Update", "Link", "2"},
    {"Office.Common/Security/Scripting", "DisableMacrosExecution", "true"},
    {"Office.Common/Security/Scripting", "MacroSecurityLevel", "3"},
    {"Office.Common/Security/Scripting", "DisableActiveContent", "true"},
};

void write_settings(const std::filesystem::path& file) {
  std::ofstream out(file);
  out << R"(<?xml version="1.0" encoding="UTF-8"?>
<oor:items xmlns:oor="http://openoffice.org/2001/registry">
)";
  for (const Setting& setting : settings)
    out << "<item oor:path=\"/org.openoffice." << setting.path << "\"><prop oor:name=\""
        << setting.name << "\" oor:op=\"fuse\"><value>" << setting.value
        << "</value></prop></item>\n";
  out << "</oor:items>\n";
  if (!out.flush()) fail("The profile for LibreOffice cannot be written: " + file.string());
}

}  // namespace

Profile::Profile() {
  std::error_code failure;
  const std::filesystem::path temporary = std::filesystem::temp_directory_path(failure);
  std::string pattern = (temporary / "qto-libreoffice-XXXXXX").string();
  if (failure || !mkdtemp(pattern.data()))
    fail("No folder can be made for the profile of LibreOffice: " + pattern);
  folder_ = pattern;
  std::filesystem::create_directory(folder_ / "user", failure);
  write_settings(folder_ / "user" / "registrymodifications.xcu");
}

Profile::~Profile() {
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

}  // namespace qto::libreoffice
