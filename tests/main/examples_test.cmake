# The example projects refined as they stand: each refined parameter file against its golden
# file. Called by ctest with -DKALDEN=<binary> -DEXAMPLES=<examples> -DDATA=<tests/data>
# -DWORK=<dir>; with -DUPDATE=1 the golden files are rewritten.

foreach(name alumina-fluorite rutile-neutron)
  set(dir ${WORK}/${name})
  file(REMOVE_RECURSE ${dir})
  file(COPY ${EXAMPLES}/${name} DESTINATION ${WORK})
  execute_process(COMMAND ${KALDEN} run ${name}.rec WORKING_DIRECTORY ${dir}
                  RESULT_VARIABLE code OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT code EQUAL 0)
    message(FATAL_ERROR "kalden run ${name}.rec: exit ${code}\n${out}\n${err}")
  endif()
  set(golden ${DATA}/examples/${name}.par)
  if(UPDATE)
    file(COPY_FILE ${dir}/${name}.par ${golden})
  endif()
  execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files ${dir}/${name}.par ${golden}
                  RESULT_VARIABLE differs)
  if(differs)
    message(FATAL_ERROR "the refined ${name}.par differs from ${golden}")
  endif()
endforeach()
