# Builds describe_surface for this machine: in the release build, which is configured when it is not
# there yet. Nothing of the cross build's environment is to reach it.
foreach(variable CC CXX CFLAGS CXXFLAGS LDFLAGS)
  unset(ENV{${variable}})
endforeach()
if(NOT EXISTS ${source}/build/release/build.ninja)
  execute_process(COMMAND ${CMAKE_COMMAND} --preset release
    WORKING_DIRECTORY ${source} OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
endif()
execute_process(COMMAND ${CMAKE_COMMAND} --build --preset release --target describe_surface
  WORKING_DIRECTORY ${source} OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
