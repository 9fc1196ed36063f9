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

# Space groups: the operators of a symbol, compact symbols converted, failures reset.
expect_run(0 spacegroup "P 21/C")
if(NOT out MATCHES "operators     4\n    1  x,y,z\n    2  -x,y\\+1/2,-z\\+1/2")
  message(FATAL_ERROR "unexpected spacegroup output:\n${out}")
endif()
expect_run(0 spacegroup Fd-3m --json)
if(NOT out MATCHES "\"operatorCount\": 192")
  message(FATAL_ERROR "unexpected spacegroup --json output:\n${out}")
endif()
expect_run(1 spacegroup "Q 9")
if(NOT err MATCHES "Spacegroup problems \\(1\\): Reset to P 1")
  message(FATAL_ERROR "no reset message for a bad symbol:\n${err}")
endif()
expect_run(1 spacegroup "P 1" --xml)

# Elements: table data at a wavelength, neutrons, unknown symbols.
expect_run(0 element Fe)
if(NOT out MATCHES "55.847" OR NOT out MATCHES "-1.1336")
  message(FATAL_ERROR "unexpected element output:\n${out}")
endif()
expect_run(0 element H --wavelength 0)
if(NOT out MATCHES "-3.739")
  message(FATAL_ERROR "no neutron scattering length for H:\n${out}")
endif()
expect_run(1 element Xx)
expect_run(1 element Fe --wavelength abc)

# Raw data: a pattern as the engine reads it; a missing file is refused.
expect_run(0 rawdata ${DATA}/main/three_points.xy --format 5 --points)
if(NOT out MATCHES "points            3" OR NOT out MATCHES "10.02000          7.0000")
  message(FATAL_ERROR "unexpected rawdata output:\n${out}")
endif()
expect_run(1 rawdata ${DATA}/main/absent.xy --format 5)
expect_run(1 rawdata ${DATA}/main/three_points.xy)
