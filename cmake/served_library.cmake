# Shared libraries that serve classes through the four standard exports and show nothing else.

set(QTO_EXPORTS ${PROJECT_SOURCE_DIR}/qto/server/exports)

if(WIN32)
  enable_language(RC)
  find_program(QTO_WIDL x86_64-w64-mingw32-widl REQUIRED)  # writes libraries of either width
  find_path(QTO_STANDARD_TYPES stdole2.tlb NO_CMAKE_FIND_ROOT_PATH REQUIRED
    PATHS /usr/lib/x86_64-linux-gnu/wine/x86_64-windows /usr/lib/i386-linux-gnu/wine/i386-windows)
  # The surface is written out by a program that runs here.
  set(QTO_DESCRIBE_SURFACE "" CACHE FILEPATH
    "A describe_surface that runs here; without one it is built in build/release")
  set(describe ${QTO_DESCRIBE_SURFACE})
  if(NOT describe)
    set(describe ${PROJECT_SOURCE_DIR}/build/release/bin/describe_surface)
    add_custom_target(native_describe_surface
      COMMAND ${CMAKE_COMMAND} -D source=${PROJECT_SOURCE_DIR}
        -P ${PROJECT_SOURCE_DIR}/cmake/native_describe_surface.cmake
      BYPRODUCTS ${describe} VERBATIM)
  endif()
endif()

# qto_type_library(<target> <file name> <describe_surface argument>...): the type library and the
# C++ header of a library's interfaces, in the build folder; sets type_library for the caller.
function(qto_type_library target name)
  set(base ${PROJECT_BINARY_DIR}/types/${name})
  file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/types)
  if(CMAKE_SIZEOF_VOID_P EQUAL 8)
    set(bits -m64)
  else()
    set(bits -m32)
  endif()
  set(widl ${QTO_WIDL} ${bits} -I ${PROJECT_SOURCE_DIR}/qto/server/idl
    -L ${QTO_STANDARD_TYPES})
  add_custom_command(OUTPUT ${base}.idl
    COMMAND ${describe} idl ${ARGN} > ${base}.idl DEPENDS ${describe}
    VERBATIM)
  add_custom_command(OUTPUT ${base}.tlb ${base}.h
    COMMAND ${widl} -t -o ${base}.tlb ${base}.idl
    COMMAND ${widl} -h -H ${base}.h ${base}.idl DEPENDS ${base}.idl VERBATIM)
  add_custom_target(${target}_types DEPENDS ${base}.tlb ${base}.h)
  set(type_library ${base}.tlb PARENT_SCOPE)
endfunction()

# qto_served_library(<target> <file name> <description> <source> <library>...)
function(qto_served_library target name description source)
  add_library(${target} MODULE ${QTO_EXPORTS}/exports.cpp ${source})
  target_link_libraries(${target} PRIVATE ${ARGN})
  set_target_properties(${target} PROPERTIES OUTPUT_NAME ${name})
  if(WIN32)
    set(record ${PROJECT_BINARY_DIR}/types/${name}.rc)
    configure_file(${QTO_EXPORTS}/module.rc.in ${record} @ONLY)
    set_source_files_properties(${record} PROPERTIES OBJECT_DEPENDS ${type_library})
    target_sources(${target} PRIVATE ${record} ${QTO_EXPORTS}/exports.def)
    add_dependencies(${target} ${target}_types)
    # The exports have no decoration on 32 bit either, and no other library is needed.
    target_link_options(${target} PRIVATE -static -Wl,--enable-stdcall-fixup -Wl,--gc-sections)
    set_target_properties(${target} PROPERTIES PREFIX "")
    install(TARGETS ${target} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
      LIBRARY DESTINATION ${CMAKE_INSTALL_BINDIR})
  else()
    target_sources(${target} PRIVATE ${QTO_EXPORTS}/version_record_posix.cpp)
    target_compile_definitions(${target} PRIVATE QTO_MODULE_DESCRIPTION="${description}"
      QTO_MODULE_NAME="lib${name}.so" QTO_MODULE_VERSION="${PROJECT_VERSION}")
    target_link_options(${target} PRIVATE
      -Wl,--version-script=${QTO_EXPORTS}/exports.map -Wl,--gc-sections)
    set_target_properties(${target} PROPERTIES LINK_DEPENDS ${QTO_EXPORTS}/exports.map)
    install(TARGETS ${target} LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/qto)
  endif()
endfunction()
