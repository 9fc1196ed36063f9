# Runs the command-line tool as a user would and checks its output and exit codes.
# Called by ctest with -DKALDEN=<binary> -DDATA=<tests/data>.

function(expect_run expected_code)
  execute_process(COMMAND ${KALDEN} ${ARGN} RESULT_VARIABLE code OUTPUT_VARIABLE out
                  ERROR_VARIABLE err)
  if(NOT code EQUAL expected_code)
    message(FATAL_ERROR "kalden ${ARGN}: exit ${code}, expected ${expected_code}\n${out}\n${err}")
  endif()
  set(out "${out}" PARENT_SCOPE)
  set(err "${err}" PARENT_SCOPE)
endfunction()

expect_run(0 help)
if(NOT out MATCHES "kalden records FILE KEY")
  message(FATAL_ERROR "help does not list the records command:\n${out}")
endif()
expect_run(0 help records)
expect_run(1 help nonsense)
expect_run(0 --version)
if(NOT out MATCHES "^kalden [0-9]+\\.[0-9]+\\.[0-9]+")
  message(FATAL_ERROR "unexpected version line: ${out}")
endif()
expect_run(1 frobnicate)
expect_run(1 records)

# A missing file: the store's box on standard error, exit code 1.
expect_run(1 records ${DATA}/main/absent.rec CELL)
if(NOT err MATCHES "Error opening: .*absent.rec")
  message(FATAL_ERROR "no 'Error opening' box for a missing file:\n${err}")
endif()

# Hand-edited records as the store reads them, against the golden output.
expect_run(0 records ${DATA}/main/hand_edited.rec TITL cell xyz CXYZ XYZ LRES ZZZZ)
file(READ ${DATA}/main/hand_edited.records expected)
if(NOT out STREQUAL expected)
  file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/hand_edited.records.actual "${out}")
  message(FATAL_ERROR "records output differs from hand_edited.records:\n${out}")
endif()
