file(REMOVE_RECURSE ${WORK})

function(run)
  execute_process(COMMAND ${ARGV} RESULT_VARIABLE status OUTPUT_VARIABLE output
    ERROR_VARIABLE output)
  if(NOT status EQUAL 0)
    list(JOIN ARGV " " command)
    message(FATAL_ERROR "${command}\nended with ${status}:\n${output}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

# use(<client> <expected output> <argument>...): builds a client and runs it.
function(use client expected)
  set(folder ${WORK}/${client})
  run(${CMAKE_COMMAND} -S ${CLIENTS}/${client} -B ${folder} -G ${GENERATOR}
    -D CMAKE_CXX_COMPILER=${COMPILER} -D CMAKE_PREFIX_PATH=${WORK}/prefix)
  run(${CMAKE_COMMAND} --build ${folder})
  run(${folder}/client ${ARGN})
  if(NOT output STREQUAL "${expected}\n")
    message(FATAL_ERROR "unexpected answer of ${client}: ${output}")
  endif()
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/prefix)
use(client "Costs!D8" ${BOOK})
use(engine_client "80040001")
