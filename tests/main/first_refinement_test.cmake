# Runs the commands of the README's "Your first refinement" (its lines beginning "$ "), in
# their order, in a copy of the examples, with kalden on the PATH; each must succeed.
# Called by ctest with -DKALDEN=<binary> -DSOURCE=<repository> -DWORK=<dir>.

file(READ ${SOURCE}/README.md readme)
string(FIND "${readme}" "## Your first refinement" begin)
if(begin EQUAL -1)
  message(FATAL_ERROR "README.md has no section \"Your first refinement\"")
endif()
string(SUBSTRING "${readme}" ${begin} -1 section)
string(FIND "${section}" "\n## " end)
string(SUBSTRING "${section}" 0 ${end} section)
string(REGEX MATCHALL "\n\\$ [^\n]*" commands "${section}")
set(script "set -e\n")
foreach(command ${commands})
  string(REGEX REPLACE "^\n\\$ " "" command "${command}")
  string(APPEND script "${command}\n")
endforeach()

file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})
file(COPY ${SOURCE}/examples DESTINATION ${WORK})
get_filename_component(bin ${KALDEN} DIRECTORY)
execute_process(COMMAND ${CMAKE_COMMAND} -E env "PATH=${bin}:$ENV{PATH}" sh -c "${script}"
                WORKING_DIRECTORY ${WORK} RESULT_VARIABLE code OUTPUT_VARIABLE out
                ERROR_VARIABLE err)
if(NOT code EQUAL 0)
  message(FATAL_ERROR "the first refinement stopped (exit ${code}):\n${script}\n${out}\n${err}")
endif()
# What the README says the last run shows.
file(STRINGS ${WORK}/examples/rutile-neutron/first.out residuals REGEX "Rwp =")
list(GET residuals -1 last)
if(NOT last MATCHES "Rwp =  4\\.87")
  message(FATAL_ERROR "the last residuals differ from the README's:\n${last}")
endif()
if(NOT EXISTS ${WORK}/examples/rutile-neutron/first.png)
  message(FATAL_ERROR "the first refinement drew no plot")
endif()
