#pragma once

#include <filesystem>
#include <string>

namespace qto::libreoffice {

/// A user profile for this process alone: in the folder for temporary files, gone when the object
/// is. It is set up so that nothing is asked, locked, recalculated, contacted or saved.
class Profile {
 public:
  /// Throws HostFailure when the folder cannot be made.
  Profile();
  ~Profile();
  Profile(const Profile&) = delete;
  Profile& operator=(const Profile&) = delete;

  const std::filesystem::path& folder() const noexcept { return folder_; }

 private:
  std::filesystem::path folder_;
};

}  // namespace qto::libreoffice
