# PCRE2::16BIT, regular expressions over UTF-16: PCRE2 of Debian 12 comes without a CMake package.
find_path(PCRE2_INCLUDE_DIR pcre2.h)
find_library(PCRE2_16BIT_LIBRARY pcre2-16)
mark_as_advanced(PCRE2_INCLUDE_DIR PCRE2_16BIT_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(PCRE2 REQUIRED_VARS PCRE2_16BIT_LIBRARY PCRE2_INCLUDE_DIR)
if(PCRE2_FOUND AND NOT TARGET PCRE2::16BIT)
  add_library(PCRE2::16BIT UNKNOWN IMPORTED)
  set_target_properties(PCRE2::16BIT PROPERTIES IMPORTED_LOCATION ${PCRE2_16BIT_LIBRARY}
    INTERFACE_INCLUDE_DIRECTORIES ${PCRE2_INCLUDE_DIR})
endif()
