# The libraries that the product is built from, under the same names on every system.
find_package(Threads REQUIRED)
if(NOT WIN32)
  list(APPEND CMAKE_MODULE_PATH ${CMAKE_CURRENT_LIST_DIR})
  find_package(ICU REQUIRED COMPONENTS uc i18n)
  find_package(EXPAT REQUIRED)
  find_package(libzip REQUIRED)
  find_package(fmt REQUIRED)
  find_package(OpenSSL REQUIRED COMPONENTS Crypto)
  find_package(PCRE2 REQUIRED)
  find_package(Boost REQUIRED)
  find_package(CLI11 REQUIRED)
  find_package(nlohmann_json REQUIRED)
  if(QTO_TESTS)
    find_package(GTest REQUIRED)
  endif()
  # For people who report what they saw.
  set(qto_library_versions "expat ${EXPAT_VERSION_STRING}" "libzip ${libzip_VERSION}"
    "PCRE2 ${PCRE2_VERSION}" "OpenSSL ${OPENSSL_VERSION}" "ICU ${ICU_VERSION}"
    "Boost ${Boost_VERSION_STRING}" "fmt ${fmt_VERSION}" "CLI11 ${CLI11_VERSION}"
    "${CMAKE_CXX_COMPILER_ID} ${CMAKE_CXX_COMPILER_VERSION}")
  set(qto_text_libraries ICU::uc ICU::i18n)
  set(qto_cipher_libraries OpenSSL::Crypto)
  return()
endif()

# Windows itself stands in for ICU and OpenSSL.
set(qto_library_versions expat libzip PCRE2 Boost fmt CLI11 "${CMAKE_CXX_COMPILER_ID} ${CMAKE_CXX_COMPILER_VERSION}")
set(qto_text_libraries)
set(qto_cipher_libraries bcrypt)
if(CMAKE_SIZEOF_VOID_P EQUAL 8)
  set(machine x64)
else()
  set(machine x86)
endif()
set(third_party ${CMAKE_SOURCE_DIR}/build/windows/third_party/${machine})
if(NOT EXISTS ${third_party}/complete)
  message(FATAL_ERROR "The third-party libraries for Windows are not built yet; run\n"
    "    tools/windows/build_dependencies.sh ${machine}")
endif()

function(third_party_library name file definition)
  add_library(${name} STATIC IMPORTED GLOBAL)
  set_target_properties(${name} PROPERTIES
    IMPORTED_LOCATION ${third_party}/lib/lib${file}.a
    INTERFACE_INCLUDE_DIRECTORIES ${third_party}/include
    INTERFACE_COMPILE_DEFINITIONS ${definition}
    INTERFACE_LINK_LIBRARIES "${ARGN}")
endfunction()
third_party_library(EXPAT::EXPAT expat XML_STATIC)
third_party_library(libzip::zip zip ZIP_STATIC z)
third_party_library(PCRE2::16BIT pcre2-16 PCRE2_STATIC)

foreach(name fmt::fmt CLI11::CLI11 nlohmann_json::nlohmann_json Boost::headers)
  add_library(${name} INTERFACE IMPORTED GLOBAL)
  set_target_properties(${name} PROPERTIES INTERFACE_INCLUDE_DIRECTORIES ${third_party}/include)
endforeach()
set_target_properties(fmt::fmt PROPERTIES INTERFACE_COMPILE_DEFINITIONS FMT_HEADER_ONLY)

if(QTO_TESTS)
  # Debian's sources of GoogleTest.
  set(INSTALL_GTEST OFF)
  add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
endif()
