# Read by the presets before the first project(): compile through ccache where it is installed.
find_program(QTO_CCACHE ccache)
mark_as_advanced(QTO_CCACHE)
if(QTO_CCACHE AND NOT DEFINED CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${QTO_CCACHE})
endif()
