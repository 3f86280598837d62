# How every target of the project is made: one folder, one static library, one set of warnings.

add_library(qto_flags INTERFACE)
add_library(qto::flags ALIAS qto_flags)
target_compile_features(qto_flags INTERFACE cxx_std_20)
target_compile_options(qto_flags INTERFACE $<BUILD_INTERFACE:-Wall;-Wextra;-Wpedantic>)
if(QTO_WERROR)
  target_compile_options(qto_flags INTERFACE $<BUILD_INTERFACE:-Werror>)
endif()
if(WIN32)
  # Texts in wide characters, and not the hundred headers that windows.h would bring.
  target_compile_definitions(qto_flags INTERFACE
    $<BUILD_INTERFACE:UNICODE;_UNICODE;NOMINMAX;WIN32_LEAN_AND_MEAN>
    $<BUILD_INTERFACE:_POSIX_THREAD_SAFE_FUNCTIONS=200112L>)
  # g++ 12 complains of visibility that the standard library asks for itself, and, the less it
  # optimises, of optional values that are never read unset.
  target_compile_options(qto_flags INTERFACE
    $<BUILD_INTERFACE:-Wno-attributes;-Wno-maybe-uninitialized>)
endif()
if(QTO_SANITIZE_THREADS)
  target_compile_options(qto_flags INTERFACE $<BUILD_INTERFACE:-fsanitize=thread>)
  target_link_options(qto_flags INTERFACE $<BUILD_INTERFACE:-fsanitize=thread>)
endif()
if(QTO_SANITIZE)
  # Null is found by AddressSanitizer as well, and alignment, harmless on the machines we build for,
  # doubles the time that the compiler takes.
  define_property(TARGET PROPERTY QTO_MEMORY_ONLY BRIEF_DOCS "Watched by AddressSanitizer only")
  set(behaviour -fsanitize=undefined -fno-sanitize=null,alignment -fno-sanitize-recover=all)
  set(behaviour "$<$<NOT:$<BOOL:$<TARGET_PROPERTY:QTO_MEMORY_ONLY>>>:${behaviour}>")
  target_compile_options(qto_flags INTERFACE
    $<BUILD_INTERFACE:-fsanitize=address;-fno-omit-frame-pointer;${behaviour}>)
  target_link_options(qto_flags INTERFACE $<BUILD_INTERFACE:-fsanitize=address,undefined>)
endif()

# The headers that clients see.
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS
  ${PROJECT_SOURCE_DIR}/qto/public_headers.txt)
file(STRINGS ${PROJECT_SOURCE_DIR}/qto/public_headers.txt QTO_PUBLIC_HEADERS REGEX "^qto/")
list(TRANSFORM QTO_PUBLIC_HEADERS PREPEND ${PROJECT_SOURCE_DIR}/)

# qto_sources(<variable> <glob>...): the files for the system that is built for. Those whose names
# end in _windows are for Windows alone, those in _posix, _icu and _openssl for the others.
function(qto_sources variable)
  file(GLOB files CONFIGURE_DEPENDS ${ARGN})
  if(WIN32)
    list(FILTER files EXCLUDE REGEX "_(posix|icu|openssl)\\.[ch]pp$")
    # The system's header defines words of everyday use.
    set(alone ${files})
    list(FILTER alone INCLUDE REGEX "_windows\\.cpp$")
    if(alone)
      set_source_files_properties(${alone} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
    endif()
  else()
    list(FILTER files EXCLUDE REGEX "_windows\\.[ch]pp$")
  endif()
  set(${variable} ${files} PARENT_SCOPE)
endfunction()

# qto_layer(<target> <folders> [<library>...]): the static library of a folder, or of a list of
# them. The libraries it looks down on are part of its interface, so a client links one name. Its
# public headers are installed with it, see qto_install().
function(qto_layer target folders)
  list(TRANSFORM folders PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
  list(TRANSFORM folders APPEND /*.cpp OUTPUT_VARIABLE globs)
  qto_sources(sources ${globs})
  list(TRANSFORM folders APPEND /*.hpp OUTPUT_VARIABLE globs)
  qto_sources(headers ${globs})
  set(internal ${headers})
  list(REMOVE_ITEM internal ${QTO_PUBLIC_HEADERS})
  list(REMOVE_ITEM headers _ ${internal})
  if(sources)
    add_library(${target} STATIC ${sources})
    set(scope PUBLIC)
  else()
    add_library(${target} INTERFACE)
    set(scope INTERFACE)
  endif()
  target_include_directories(${target} ${scope}
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
  target_link_libraries(${target} ${scope} qto::flags ${ARGN})
  target_sources(${target} ${scope} FILE_SET HEADERS
    BASE_DIRS ${PROJECT_SOURCE_DIR} FILES ${headers})
endfunction()

# qto_install(<component> <target>...): the libraries of a component of the CMake package, with their
# public headers.
function(qto_install component)
  install(TARGETS ${ARGN} EXPORT qto-${component}-targets FILE_SET HEADERS)
  install(EXPORT qto-${component}-targets NAMESPACE qto::
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/qto)
endfunction()

# qto_test(<area> <library>...): one test program for tests/<area>.
function(qto_test area)
  qto_sources(sources ${CMAKE_CURRENT_SOURCE_DIR}/${area}/*.cpp)
  if(NOT sources)
    message(FATAL_ERROR "tests/${area} holds no tests")
  endif()
  add_executable(test_${area} ${sources})
  target_include_directories(test_${area} PRIVATE ${PROJECT_SOURCE_DIR})
  target_link_libraries(test_${area} PRIVATE ${ARGN} GTest::gtest_main GTest::gmock)
  target_compile_definitions(test_${area} PRIVATE
    QTO_TEST_DATA="${CMAKE_CURRENT_SOURCE_DIR}/data" QTO_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
  if(QTO_SANITIZE)
    # Behaviour is watched in what is tested; of the tests themselves only their memory.
    set_target_properties(test_${area} PROPERTIES QTO_MEMORY_ONLY ON)
    target_compile_options(test_${area} PRIVATE -O0)
  endif()
  if(CMAKE_CROSSCOMPILING)  # an emulator takes its time to start a program
    add_test(NAME ${area} COMMAND test_${area} --gtest_brief=1)
    set_tests_properties(${area} PROPERTIES TIMEOUT 300)
  else()
    gtest_discover_tests(test_${area} DISCOVERY_MODE PRE_TEST PROPERTIES TIMEOUT 300)
  endif()
endfunction()
